#include "VeltoKit/media/Languages.h"

#include <QStringList>

#include <gtest/gtest.h>

using namespace velto;
using namespace Qt::StringLiterals;

TEST(Languages, NormalizesAndNamesCodesRegionalTagsAndNames) {
    // tag=normalised code=Spanish name
    for (const QString& row : u"EN=eng=inglés|en-US=eng=inglés|pt_BR=por=portugués|"
                              " es-419 =spa=español|fra=fre=francés|fre=fre=francés|iw=heb=hebreo|"
                              "ja=jpn=japonés|nld=dut=neerlandés|Ingles=eng=inglés|"
                              "Castilian=spa=español|JAPANESE=jpn=japonés|yue=yue=cantonés|"
                              "Norwegian Bokmål=nob=noruego bokmål|=und=idioma desconocido|"
                              "Undetermined=und=idioma desconocido|Brazilian=und=Brazilian|"
                              "xx=und=xx|qaa=und=qaa"_s.split(u'|')) {
        const QStringList cells = row.split(u'=');
        EXPECT_EQ(Languages::normalize(cells[0]), cells[1]) << qPrintable(row);
        EXPECT_EQ(Languages::displayName(cells[0]), cells[2]) << qPrintable(row);
    }
    for (const QString& placeholder : {u"und"_s, u"mul"_s, u"qaa"_s})
        EXPECT_FALSE(Languages::isKnown(placeholder)) << qPrintable(placeholder);
}

TEST(Languages, EveryTwoLetterCodeHasACodeAndASpanishNameThatLeadsBack) {
    // ISO 639-1 as published, independent of the table under test.
    const QStringList iso6391 =
        u"aa ab ae af ak am an ar as av ay az ba be bg bh bi bm bn bo br bs ca ce ch co cr cs cu "
        "cv cy da de dv dz ee el en eo es et eu fa ff fi fj fo fr fy ga gd gl gn gu gv ha he hi ho "
        "hr ht hu hy hz ia id ie ig ii ik io is it iu ja jv ka kg ki kj kk kl km kn ko kr ks ku kv "
        "kw ky la lb lg li ln lo lt lu lv mg mh mi mk ml mn mr ms mt my na nb nd ne ng nl nn no nr "
        "nv ny oc oj om or os pa pi pl ps pt qu rm rn ro ru rw sa sc sd se sg si sk sl sm sn so sq "
        "sr ss st su sv sw ta te tg th ti tk tl tn to tr ts tt tw ty ug uk ur uz ve vi vo wa wo xh "
        "yi yo za zh zu"_s.split(u' ');
    ASSERT_EQ(iso6391.size(), 184);
    for (const QString& alpha2 : iso6391) {
        const QString code = Languages::normalize(alpha2);
        const QString name = Languages::displayName(code);
        EXPECT_TRUE(Languages::isKnown(code)) << qPrintable(alpha2);
        EXPECT_TRUE(name.at(0).isLower()) << qPrintable(name);
        EXPECT_EQ(Languages::normalize(name), code) << qPrintable(name);
    }
}

TEST(Languages, ReadsTheLanguageAndTheMarksOfTitles) {
    // title=language=marks; marks are whole words
    for (const QString& row :
         u"English SDH=eng=sdh|Español (Latinoamérica)=spa=|es-MX=spa=|"
         "Spanish / English=spa=|en-GB=eng=|Português (Brasil)=por=|"
         "Français=fre=|Italiano=ita=|Commentary==|==|"
         "Spanish (Forced)=spa=forced|FORZADOS==forced|Foreign Parts==forced|"
         "foreign-part==forced|Forcedly==|Reinforced==|CC==sdh|"
         "hearing-impaired==sdh|Closed Caption==sdh|Access==|SDHX==|Full=="_s.split(u'|')) {
        const QStringList cells = row.split(u'=');
        EXPECT_EQ(Languages::guessFromTitle(cells[0]).value_or(QString()), cells[1])
            << qPrintable(row);
        EXPECT_EQ((Languages::looksForced(cells[0]) ? u"forced"_s : QString()) +
                      (Languages::looksSDH(cells[0]) ? u"sdh"_s : QString()),
                  cells[2])
            << qPrintable(row);
    }
}
