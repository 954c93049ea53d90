#include "VeltoKit/subtitles/SrtDocument.h"

#include "SubtitleTestSupport.h"

using namespace velto;
using namespace Qt::StringLiterals;

namespace {

// "number|start|end|extra|text" per cue, or the parser's error.
QStringList cuesOf(const QString& text) {
    QStringList out;
    const QString error = errorOf([&] {
        const SrtDocument document = SrtDocument::parse(text);
        for (const SrtCue& cue : document.cues())
            out.append(QStringList{cue.number, cue.start, cue.end, cue.extra, cue.text}.join(u'|'));
    });
    return out.isEmpty() ? QStringList{error} : out;
}

} // namespace

TEST(SrtDocument, ReadsNumbersTimesAndTextsVerbatim) {
    const QStringList noCue = {u"empty: El archivo SRT no contiene ningún subtítulo legible."_s};
    const std::vector<std::pair<QString, QStringList>> cases = {
        // Any line end; '.' or ','; short fractions; what follows the end time, trimmed at its end.
        {u"7\r\n00:00:01.5 --> 00:00:02.25 X1:100  \t\r\n  indented\r\n\r\n"
         u"8\r0:00:03,000-->0:00:04,4560\rglued\r\r9\n-0:00:05,1 --> 100:00:06,000\n"_s,
         {u"7|00:00:01.5|00:00:02.25| X1:100|  indented"_s, u"8|0:00:03,000|0:00:04,456|0|glued"_s,
          u"9|-0:00:05,1|100:00:06,000||"_s}},
        // Numbers kept as written, even repeated; a cue without one is numbered by its position.
        {u"0\n0:00:01,0 --> 0:00:02,0\na\n\n0:00:03,0 --> 0:00:04,0\nb\n\n"
         u"  0 \n0:00:05,0 --> 0:00:06,0\nc\n\n\n\n0:00:07,0 --> 0:00:08,0\nd\n"_s,
         {u"0|0:00:01,0|0:00:02,0||a"_s, u"2|0:00:03,0|0:00:04,0||b"_s,
          u"0|0:00:05,0|0:00:06,0||c"_s, u"4|0:00:07,0|0:00:08,0||d"_s}},
        // A block without a timing line (milliseconds included) is dropped whole.
        {u"1\nnot a time\nlost too\n\n2\n00:00:01 --> 00:00:02\n\n"
         u"3\n0:00:03,0 --> 0:00:04,0\nkept\n\n4"_s,
         {u"3|0:00:03,0|0:00:04,0||kept"_s}},
        {u""_s, noCue},
        {u" \n\t\r\n\n"_s, noCue},
        {u"1\n00:00:01 --> 00:00:02\nno milliseconds\n"_s, noCue},
    };
    for (const auto& [text, cues] : cases) {
        SCOPED_TRACE(text.toStdString());
        EXPECT_EQ(cuesOf(text), cues);
    }
}

TEST(SrtDocument, RendersWhatItReadAndNoTextCanBreakIt) {
    SrtDocument document = SrtDocument::parse(u"7\r\n00:00:01.5 --> 00:00:02.25 X1:100 \t\r\na\r\n"
                                              u"\r\n8\r00:00:03,000-->00:00:04,4560\rb\r"_s);
    const QString original = document.render();
    EXPECT_EQ(errorOf([&] { document.setTexts({u"solo uno"_s}); }),
              u"empty: Se esperaban 2 textos y llegaron 1"_s);
    EXPECT_EQ(document.render(), original);

    document.setTexts({u"uno\r\n\r\n  \ncon espacio "_s, QString()});
    EXPECT_EQ(document.render(), u"7\n00:00:01.5 --> 00:00:02.25 X1:100\nuno\ncon espacio \n\n"
                                 u"8\n00:00:03,000 --> 00:00:04,4560\n\n\n"_s);
}
