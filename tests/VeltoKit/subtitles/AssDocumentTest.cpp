#include "VeltoKit/subtitles/AssDocument.h"

#include <gtest/gtest.h>

#include "SubtitleTestSupport.h"
#include "VeltoKit/subtitles/Subtitles.h"

using namespace velto;
using namespace Qt::StringLiterals;

namespace {

const QString standardFormat =
    u"Format: Layer, Start, End, Style, Name, MarginL, MarginR, MarginV, Effect, Text\n"_s;

AssDocument loadFixture(const QString& name) {
    return AssDocument::parse(Subtitles::readText(testDataFile(name)));
}

} // namespace

TEST(AssDocument, ReadsFieldsByTheFormatLineWhateverItsOrder) {
    AssDocument odd = loadFixture(u"odd-format-order.ass"_s);
    EXPECT_EQ(odd.texts(),
              QStringList({u"Text first, then the rest"_s, u"A second line, it too has commas"_s}));
    EXPECT_EQ(odd.timingSignature()[0].fields,
              QStringList({u"dialogue"_s, u"0:00:01.00"_s, u"0:00:02.00"_s, u"Default"_s, u"0"_s}));
    const QList<TimingSignature> before = odd.timingSignature();
    odd.setTexts({u"Primero, el texto"_s, u"Otra, con, comas"_s});
    const AssDocument reread = AssDocument::parse(odd.render());
    EXPECT_EQ(reread.timingSignature(), before);
    EXPECT_EQ(reread.texts(), QStringList({u"Primero, el texto"_s, u"Otra, con, comas"_s}));

    EXPECT_EQ(loadFixture(u"v4plusplus-margins.ass"_s).timingSignature()[0].fields,
              QStringList({u"Dialogue"_s, u"0:00:01.00"_s, u"0:00:02.00"_s, u"0"_s, u"Default"_s,
                           u""_s, u"0"_s, u"0"_s, u"20"_s, u"5"_s, u""_s}));
    EXPECT_EQ(loadFixture(u"five-field-format.ass"_s).texts(),
              QStringList(
                  {u"Five fields only, and a comma."_s, u"⟪1⟫Second one⟪2⟫with a hard space."_s}));
}

TEST(AssDocument, CommentEventsAreTimedButNeverTranslated) {
    const AssDocument document = loadFixture(u"comments-and-actor.ass"_s);
    QStringList kinds;
    for (const TimingSignature& signature : document.timingSignature())
        kinds.append(signature.fields.first());
    EXPECT_EQ(kinds, QStringList({u"Comment"_s, u"Dialogue"_s, u"Dialogue"_s, u"Comment"_s,
                                  u"Dialogue"_s}));
    EXPECT_EQ(document.timingSignature()[1].fields[5], u"ANNA"_s);
    EXPECT_EQ(document.texts(),
              QStringList({u"⟪1⟫Where were you,⟪2⟫ last night?"_s,
                           u"[door slams]⟪1⟫Out. With friends."_s, u"⟪1⟫ANNA: Which friends?"_s}));
}

TEST(AssDocument, KeepsEveryLineAndRestoresPlaceholdersFromASloppyTranslation) {
    const QString head = u"[Script Info]\r\nTitle: mixed line ends\r[Events]\n"_s + standardFormat;
    const QString comment = u"Comment: 0,0:00:02.00,0:00:03.00,Default,,0,0,0,,{\\i1}note\r"_s;
    AssDocument document = AssDocument::parse(
        head + u"Dialogue: 0,0:00:01.00,0:00:02.00,Default,,0,0,0,,{\\an8}A\\NB{\\i1}C\r\n"_s +
        comment + u"Dialogue: 0,0:00:03.00,0:00:04.00,Default,,0,0,0,,x ⟪2⟫ y"_s);
    EXPECT_EQ(document.texts(), QStringList({u"⟪1⟫A⟪2⟫B⟪3⟫C"_s, u"x ⟪1⟫ y"_s}));

    // ⟪2⟫ lost, ⟪1⟫ doubled (once padded), ⟪9⟫ invented, a real line break added.
    document.setTexts({u"⟪3⟫c ⟪ 1 ⟫a⟪1⟫ ⟪9⟫b"_s, u"z ⟪1⟫\nw"_s});
    EXPECT_EQ(
        document.render(),
        head +
            u"Dialogue: 0,0:00:01.00,0:00:02.00,Default,,0,0,0,,{\\i1}c {\\an8}a{\\an8} b\r\n"_s +
            comment + u"Dialogue: 0,0:00:03.00,0:00:04.00,Default,,0,0,0,,z ⟪2⟫\\Nw"_s);
}

TEST(AssDocument, FindsEventsWithoutHeadersButNeverInsideAttachedData) {
    const AssDocument bare = AssDocument::parse(
        u"Dialogue: 0,0:00:00.00,0:00:01.23,Default,Olly,First{ignored}.\n"
        u"Dialogue: 0,0:00:04:56,0:00:08:90,Default,Olly,Third, with a comma.\n"_s);
    EXPECT_EQ(bare.texts(), QStringList({u"First⟪1⟫."_s, u"Third, with a comma."_s}));
    EXPECT_TRUE(bare.guessedFieldOrder());
    EXPECT_EQ(bare.timingSignature()[0].fields,
              QStringList({u"Dialogue"_s, u"0:00:00.00"_s, u"0:00:01.23"_s, u"0"_s, u"Default"_s,
                           u"Olly"_s}));

    const AssDocument ssa = AssDocument::parse(
        u"Dialogue: Marked=0,0:00:01.18,0:00:06.85,DefaultVCD, NTP,0000,0000,0000,,Like, so\n"_s);
    EXPECT_EQ(ssa.texts(), QStringList({u"Like, so"_s}));
    EXPECT_EQ(ssa.timingSignature()[0].fields[3], u"Marked=0"_s);

    // Uuencoded font data uses '!' to '`': brackets and capitals, never lower case.
    const AssDocument withFonts = AssDocument::parse(
        u"[Fonts]\nfontname: a_0.ttf\n[UU9:/?E]\nDIALOGUE:0,0:00:09.00,0:00:10.00,X,,0,0,0,,NOPE\n"
        u"[Script Info]\nDialogue: 0,0:00:01.00,0:00:02.00,Default,,0,0,0,,Real\n"_s);
    EXPECT_EQ(withFonts.texts(), QStringList({u"Real"_s}));
    EXPECT_FALSE(loadFixture(u"five-field-format.ass"_s).guessedFieldOrder());
}

TEST(AssDocument, RefusesAScriptWithoutDialogueAndKeepsMalformedLines) {
    const QString tooShort = u"Dialogue: 0,0:00:01.00,0:00:02.00\n"_s;
    for (const QString& script : QStringList{
             u"[Script Info]\nTitle: nothing\n"_s,
             u"[Events]\n"_s + standardFormat + u"Comment: 0,0:00:01.00,0:00:02.00,D,,0,0,0,,c\n"_s,
             u"[Events]\n"_s + standardFormat + tooShort,
             u"[V4+ Styles]\nDialogue: 0,0:00:01.00,0:00:02.00,Default,,0,0,0,,in styles\n"_s}) {
        EXPECT_EQ(subtitleErrorOf([&] { AssDocument::parse(script); }),
                  u"empty: El archivo ASS no contiene líneas de diálogo."_s);
    }
    const QString mixed = u"[Events]\n"_s + standardFormat + tooShort +
                          u"Dialogue: 0,0:00:01.00,0:00:02.00,Default,,0,0,0,,ok\n"_s;
    const AssDocument document = AssDocument::parse(mixed);
    EXPECT_EQ(document.timingSignature().size(), 1);
    EXPECT_EQ(document.render(), mixed);
}
