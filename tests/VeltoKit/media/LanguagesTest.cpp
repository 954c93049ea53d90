#include "VeltoKit/media/Languages.h"

#include <QStringList>

#include <gtest/gtest.h>

#include "support/QStringPrinter.h"

using namespace velto;

namespace {

// ISO 639-1 as published, independent of the table under test.
const QStringList iso6391 =
    QStringLiteral(
        "aa ab ae af ak am an ar as av ay az ba be bg bh bi bm bn bo br bs ca ce ch co cr cs cu cv "
        "cy da de dv dz ee el en eo es et eu fa ff fi fj fo fr fy ga gd gl gn gu gv ha he hi ho hr "
        "ht hu hy hz ia id ie ig ii ik io is it iu ja jv ka kg ki kj kk kl km kn ko kr ks ku kv kw "
        "ky la lb lg li ln lo lt lu lv mg mh mi mk ml mn mr ms mt my na nb nd ne ng nl nn no nr nv "
        "ny oc oj om or os pa pi pl ps pt qu rm rn ro ru rw sa sc sd se sg si sk sl sm sn so sq sr "
        "ss st su sv sw ta te tg th ti tk tl tn to tr ts tt tw ty ug uk ur uz ve vi vo wa wo xh yi "
        "yo za zh zu")
        .split(u' ');

} // namespace

TEST(Languages, NormalizesCodesRegionalTagsAndNames) {
    const std::pair<const char*, const char*> cases[] = {
        {"en", "eng"},       {"EN", "eng"},         {"eng", "eng"},
        {"en-US", "eng"},    {"pt_BR", "por"},      {"es-419", "spa"},
        {" es ", "spa"},     {"fra", "fre"},        {"fre", "fre"},
        {"deu", "ger"},      {"ger", "ger"},        {"zho", "chi"},
        {"nld", "dut"},      {"ces", "cze"},        {"iw", "heb"},
        {"English", "eng"},  {"inglés", "eng"},     {"Ingles", "eng"},
        {"Español", "spa"},  {"castellano", "spa"}, {"Castilian", "spa"},
        {"JAPANESE", "jpn"}, {"Brazilian", "und"},  {"", "und"},
        {"xx", "und"},       {"qqq", "und"},        {"klingon", "und"},
        {"und", "und"},      {"yue", "yue"},        {"Norwegian Bokmål", "nob"},
    };
    for (const auto& [tag, code] : cases)
        EXPECT_EQ(Languages::normalize(QString::fromUtf8(tag)), QString::fromLatin1(code)) << tag;
}

TEST(Languages, EveryTwoLetterCodeHasACodeAndASpanishNameThatLeadsBack) {
    ASSERT_EQ(iso6391.size(), 184);
    for (const QString& alpha2 : iso6391) {
        const QString code = Languages::normalize(alpha2);
        EXPECT_EQ(code.size(), 3) << qPrintable(alpha2);
        EXPECT_TRUE(Languages::isKnown(code)) << qPrintable(alpha2);
        const QString name = Languages::displayName(code);
        EXPECT_NE(name, QStringLiteral("idioma desconocido")) << qPrintable(alpha2);
        EXPECT_TRUE(name.at(0).isLower()) << qPrintable(name);
        EXPECT_EQ(Languages::normalize(name), code) << qPrintable(name);
    }
}

TEST(Languages, DisplayNamesAreSpanish) {
    EXPECT_EQ(Languages::displayName(QStringLiteral("eng")), QStringLiteral("inglés"));
    EXPECT_EQ(Languages::displayName(QStringLiteral("fra")), QStringLiteral("francés"));
    EXPECT_EQ(Languages::displayName(QStringLiteral("fre")), QStringLiteral("francés"));
    EXPECT_EQ(Languages::displayName(QStringLiteral("ja")), QStringLiteral("japonés"));
    EXPECT_EQ(Languages::displayName(QStringLiteral("spa")), QStringLiteral("español"));
    EXPECT_EQ(Languages::displayName(QStringLiteral("dut")), QStringLiteral("neerlandés"));
    EXPECT_EQ(Languages::displayName(QStringLiteral("und")), QStringLiteral("idioma desconocido"));
    EXPECT_EQ(Languages::displayName(QString()), QStringLiteral("idioma desconocido"));
    EXPECT_EQ(Languages::displayName(QStringLiteral("Undetermined")),
              QStringLiteral("idioma desconocido"));
    EXPECT_EQ(Languages::displayName(QStringLiteral("qaa")), QStringLiteral("qaa"));
    EXPECT_FALSE(Languages::isKnown(QStringLiteral("und")));
    EXPECT_FALSE(Languages::isKnown(QStringLiteral("mul")));
    EXPECT_FALSE(Languages::isKnown(QStringLiteral("qaa")));
}

TEST(Languages, GuessesTheLanguageATitleNames) {
    const std::pair<const char*, const char*> cases[] = {
        {"English SDH", "eng"},
        {"Español (Latinoamérica)", "spa"},
        {"CASTELLANO", "spa"},
        {"es-MX", "spa"},
        {"Spanish / English", "spa"},
        {"en-GB", "eng"},
        {"Inglés", "eng"},
        {"Português (Brasil)", "por"},
        {"pt-BR", "por"},
        {"Français", "fre"},
        {"Italiano", "ita"},
    };
    for (const auto& [title, code] : cases)
        EXPECT_EQ(Languages::guessFromTitle(QString::fromUtf8(title)), QString::fromLatin1(code))
            << title;
    EXPECT_EQ(Languages::guessFromTitle(QStringLiteral("Commentary")), std::nullopt);
    EXPECT_EQ(Languages::guessFromTitle(QString()), std::nullopt);
}

TEST(Languages, RecognisesForcedAndSDHTitlesAsWholeWords) {
    for (const char* title :
         {"Spanish (Forced)", "FORZADOS", "forzada", "Foreign Parts", "foreign-part"})
        EXPECT_TRUE(Languages::looksForced(QString::fromUtf8(title))) << title;
    for (const char* title : {"Forcedly", "Reinforced", "Full", ""})
        EXPECT_FALSE(Languages::looksForced(QString::fromUtf8(title))) << title;
    for (const char* title :
         {"English SDH", "CC", "Hearing Impaired", "hearing-impaired", "Closed Caption"})
        EXPECT_TRUE(Languages::looksSDH(QString::fromUtf8(title))) << title;
    for (const char* title : {"Access", "Accent", "SDHX", "Full"})
        EXPECT_FALSE(Languages::looksSDH(QString::fromUtf8(title))) << title;
}
