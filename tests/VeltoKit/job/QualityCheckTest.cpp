#include "VeltoKit/job/QualityCheck.h"

#include <gtest/gtest.h>

#include "VeltoKit/subtitles/AssDocument.h"

using namespace velto;
using namespace Qt::StringLiterals;

namespace {

struct Pair {
    QString source;
    QString translation;
    bool expected;
};

QString letters(qsizetype count) {
    return QString(count, u'a');
}

template <typename Check>
void expectVerdicts(const QList<Pair>& pairs, Check check) {
    for (const Pair& pair : pairs)
        EXPECT_EQ(check(pair), pair.expected)
            << pair.source.toStdString() << " → " << pair.translation.toStdString();
}

} // namespace

TEST(QualityCheck, UntranslatedSetsAsideTagsCaseBlanksAndPunctuationButNotShortLinesOrNames) {
    const QList<Pair> pairs = {
        {u"Where are you going?"_s, u"Where are you going?"_s, true},
        {u"<i>Where are you going?</i>"_s, u"where are you  going"_s, true},
        {u"{\\i1}Where are you{\\i0}\\Ngoing?"_s, u"Where are\nyou going!"_s, true},
        {u"⟪1⟫I don't know him.⟪2⟫"_s, u"I don't know him."_s, true},
        {u"WHERE ARE YOU?"_s, u"WHERE ARE YOU?"_s, true},
        {u"Where are you going?"_s, u"¿Adónde vas?"_s, false},
        {u"Come here, now."_s, u"[ES] Come here, now."_s, false},
        {u"OK."_s, u"OK."_s, false},
        {u"¡Sí!"_s, u"¡Sí!"_s, false},
        {u"2019"_s, u"2019"_s, false},
        {u"1, 2, 3, 4"_s, u"1, 2, 3, 4"_s, false},
        {u"John Paul Jones"_s, u"John Paul Jones"_s, false},
        {u"¿Dónde está Juan ahora?"_s, u"¿Dónde está Juan ahora?"_s, false},
    };
    expectVerdicts(
        pairs, [](const Pair& p) { return QualityCheck::isUntranslated(p.source, p.translation); });
}

TEST(QualityCheck, LostIsEmptyOrUnderAThirdOfALineOfThreeWords) {
    const QList<Pair> pairs = {
        {u"Where are you going?"_s, u""_s, true},
        {u"Where are you going?"_s, u"<i> </i>{\\i1}"_s, true},
        {u"OK."_s, u"\n"_s, true},
        {u"Where are you going?"_s, u"¿Y?"_s, true},
        {u"Where are you going?"_s, u"¿Adónde?"_s, false},
        {u"Thank you so much."_s, u"Gracias"_s, false},
        {u"Hello!"_s, u"¡Ey!"_s, false},
    };
    expectVerdicts(pairs,
                   [](const Pair& p) { return QualityCheck::isLost(p.source, p.translation); });
}

TEST(QualityCheck, SpeedCountsVisibleCharactersAndLinesCountVisibleLines) {
    const QString twenty = letters(20);
    const QList<Pair> fast = {
        {letters(40), u""_s, false},
        {letters(41), u""_s, true},
        {u"<i>"_s + letters(40) + u"</i>"_s, u""_s, false},
        {twenty + u"\n"_s + twenty, u""_s, true},
        {twenty + u"\\N"_s + twenty, u""_s, true},
    };
    expectVerdicts(fast, [](const Pair& p) {
        return QualityCheck::readsTooFast(
            {.startMs = 1000, .endMs = 3000, .translation = p.source});
    });
    EXPECT_FALSE(QualityCheck::readsTooFast({.translation = letters(200)})) << "no times";

    const QList<Pair> long_ = {
        {letters(42), u""_s, false},
        {letters(43), u""_s, true},
        {u"<font color=\"#fff\">"_s + letters(42) + u"</font>"_s, u""_s, false},
        {letters(42) + u"\n"_s + letters(42), u""_s, false},
        {u"- Uno.\n- Dos.\n- Tres."_s, u""_s, true},
        {u"Uno\n\nDos\n"_s, u""_s, false},
    };
    expectVerdicts(long_, [](const Pair& p) { return QualityCheck::hasLongLines(p.source); });
}

TEST(QualityCheck, ReadsTheTimesOfEveryDocumentKind) {
    EXPECT_EQ(QualityCheck::milliseconds(u"00:01:02,500"), 62'500);
    EXPECT_EQ(QualityCheck::milliseconds(u"0:01:02.50"), 62'500);
    EXPECT_EQ(QualityCheck::milliseconds(u" 01:02.5 "), 62'500);
    EXPECT_EQ(QualityCheck::milliseconds(u"100:00:00,000"), 360'000'000);
    for (const QString& bad : {u"soon"_s, u"62.5"_s, u"1:2:3:4"_s, u"00:01:-2,500"_s})
        EXPECT_EQ(QualityCheck::milliseconds(bad), std::nullopt) << bad.toStdString();

    // Comments have timings but no text, a drawing is never sent; placeholders come back as
    // the track holds them.
    const QString drawing = u"{\\an8}m 0 0 l 100 0 100 100 0 100 0 0 l 100 0 100 100 0 100"_s;
    const AssDocument ass = AssDocument::parse(
        u"[Events]\nFormat: Layer, Start, End, Style, Text\n"
        "Comment: 0,0:00:00.00,0:00:01.00,Default,nota\n"
        "Dialogue: 0,0:00:00.00,0:00:01.00,Default,"_s +
        drawing +
        u"\n"
        "Dialogue: 0,0:01:02.50,0:01:04.00,Default,{\\i1}Hello{\\i0}\\Nthere, friend.\n"_s);
    const QList<CheckedCue> cues =
        QualityCheck::cues(ass, {ass.texts().value(0), u"⟪1⟫Hola⟪2⟫⟪3⟫amigo."_s});
    ASSERT_EQ(cues.size(), 1);
    EXPECT_EQ(cues[0].number, 2);
    EXPECT_EQ(cues[0].startMs, 62'500);
    EXPECT_EQ(cues[0].endMs, 64'000);
    EXPECT_EQ(cues[0].translation, u"{\\i1}Hola{\\i0}\\Namigo."_s);
}
