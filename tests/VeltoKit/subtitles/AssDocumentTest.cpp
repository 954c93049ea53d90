#include "VeltoKit/subtitles/AssDocument.h"

#include "SubtitleTestSupport.h"

using namespace velto;
using namespace Qt::StringLiterals;

namespace {

// "<n> events[, guessed], last: <its timing signature>", then the texts; or the parser's error.
// Every script renders back to its own text, whatever it holds.
QStringList described(const QString& source) {
    const QString text =
        source.endsWith(u".ass") ? Subtitles::readText(testDataFile(source)) : source;
    QStringList out;
    const QString error = errorOf([&] {
        const AssDocument document = AssDocument::parse(text);
        const QList<TimingSignature> events = document.timingSignature();
        out = QStringList{QString::number(events.size()) + u" events"_s +
                          (document.guessedFieldOrder() ? u", guessed"_s : QString()) +
                          u", last: "_s + events.last().fields.join(u',')} +
              document.texts();
        EXPECT_EQ(document.render(), text);
    });
    return out.isEmpty() ? QStringList{error} : out;
}

} // namespace

TEST(AssDocument, ReadsEventsByTheirFormatLineOrTheStandardOne) {
    const QStringList noDialogue = {u"empty: El archivo ASS no contiene líneas de diálogo."_s};
    const QString tooShort = u"Dialogue: 0,0:00:01.00,0:00:02.00\n"_s;
    const std::vector<std::pair<QString, QStringList>> cases = {
        {u"odd-format-order.ass"_s,
         {u"2 events, last: DIALOGUE,0:00:03.00,0:00:04.00,Default,1"_s,
          u"Text first, then the rest"_s, u"A second line, it too has commas"_s}},
        {u"v4plusplus-margins.ass"_s,
         {u"2 events, last: Dialogue,0:00:03.00,0:00:04.00,0,Default,,0,0,0,40,"_s,
          u"Top margin twenty, bottom five."_s, u"Raised by the bottom margin."_s}},
        {u"five-field-format.ass"_s,
         {u"2 events, last: Dialogue,0:00:02.50,0:00:04.00,Default,Narrator"_s,
          u"Five fields only, and a comma."_s, u"⟪1⟫Second one⟪2⟫with a hard space."_s}},
        // Comments are events but never translated; ';' lines are neither.
        {u"comments-and-actor.ass"_s,
         {u"5 events, last: Dialogue,0:00:07.00,0:00:09.00,0,Default,ANNA,0,0,0,"_s,
          u"⟪1⟫Where were you,⟪2⟫ last night?"_s, u"[door slams]⟪1⟫Out. With friends."_s,
          u"⟪1⟫ANNA: Which friends?"_s}},
        // Without a Format: line, the standard order cut to the shortest event line (SSA's when
        // the first field is Marked=).
        {u"Dialogue: 0,0:00:00.00,0:00:01.23,Default,Olly,First{ignored}.\n"
         u"Dialogue: 0,0:00:04:56,0:00:08:90,Default,Olly,Third, with a comma.\n"_s,
         {u"2 events, guessed, last: Dialogue,0:00:04:56,0:00:08:90,0,Default,Olly"_s,
          u"First⟪1⟫."_s, u"Third, with a comma."_s}},
        {u"Dialogue: Marked=0,0:00:01.18,0:00:06.85,DefaultVCD, NTP,0000,0000,0000,,Like, so\n"_s,
         {u"1 events, guessed, last: Dialogue,0:00:01.18,0:00:06.85,Marked=0,DefaultVCD, "
          u"NTP,0000,0000,0000,"_s,
          u"Like, so"_s}},
        // Uuencoded font data uses '!' to '`': brackets and capitals, never lower case.
        {u"[Fonts]\nfontname: a_0.ttf\n[UU9:/?E]\nDIALOGUE:0,0:00:09.00,0:00:10.00,X,,0,0,0,,NOPE\n"
         u"[Script Info]\nDialogue: 0,0:00:01.00,0:00:02.00,Default,,0,0,0,,Real\n"_s,
         {u"1 events, guessed, last: Dialogue,0:00:01.00,0:00:02.00,0,Default,,0,0,0,"_s,
          u"Real"_s}},
        // A line with too few fields is kept but is no event.
        {assEvents + tooShort + u"Dialogue: 0,0:00:01.00,0:00:02.00,D,,0,0,0,,ok\n"_s,
         {u"1 events, last: Dialogue,0:00:01.00,0:00:02.00,0,D,,0,0,0,"_s, u"ok"_s}},
        {u"[Script Info]\nTitle: nothing\n"_s, noDialogue},
        {assEvents + u"Comment: 0,0:00:01.00,0:00:02.00,D,,0,0,0,,c\n"_s, noDialogue},
        {assEvents + tooShort, noDialogue},
        {u"[V4+ Styles]\nDialogue: 0,0:00:01.00,0:00:02.00,Default,,0,0,0,,in styles\n"_s,
         noDialogue},
    };
    for (const auto& [source, expected] : cases) {
        SCOPED_TRACE(source.toStdString());
        EXPECT_EQ(described(source), expected);
    }
}

TEST(AssDocument, KeepsEveryLineAndRestoresPlaceholdersFromASloppyTranslation) {
    const QString head = u"[Script Info]\r\nTitle: mixed line ends\r"_s + assEvents;
    const QString comment = u"Comment: 0,0:00:02.00,0:00:03.00,Default,,0,0,0,,{\\i1}note\r"_s;
    AssDocument document = AssDocument::parse(
        head + u"Dialogue: 0,0:00:01.00,0:00:02.00,Default,,0,0,0,,{\\an8}A\\NB{\\i1}C\r\n"_s +
        comment + u"Dialogue: 0,0:00:03.00,0:00:04.00,Default,,0,0,0,,x ⟪2⟫ y"_s);
    EXPECT_EQ(document.texts(), QStringList({u"⟪1⟫A⟪2⟫B⟪3⟫C"_s, u"x ⟪1⟫ y"_s}));

    // ⟪2⟫ lost, ⟪1⟫ doubled (once padded), ⟪9⟫ invented, line breaks added.
    document.setTexts({u"⟪3⟫c ⟪ 1 ⟫a⟪1⟫ ⟪9⟫b"_s, u"z ⟪1⟫\nw\rv"_s});
    EXPECT_EQ(
        document.render(),
        head +
            u"Dialogue: 0,0:00:01.00,0:00:02.00,Default,,0,0,0,,{\\i1}c {\\an8}a{\\an8} b\r\n"_s +
            comment + u"Dialogue: 0,0:00:03.00,0:00:04.00,Default,,0,0,0,,z ⟪2⟫\\Nw\\Nv"_s);
}
