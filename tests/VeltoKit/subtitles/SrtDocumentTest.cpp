#include "VeltoKit/subtitles/SrtDocument.h"

#include <gtest/gtest.h>

#include "SubtitleTestSupport.h"
#include "VeltoKit/subtitles/SubtitleError.h"

using namespace velto;
using namespace Qt::StringLiterals;

namespace {

QString parseError(const QString& text)
{
    try {
        SrtDocument::parse(text);
    } catch (const SubtitleError& error) {
        EXPECT_EQ(error.kind(), SubtitleError::Kind::empty);
        return error.description();
    }
    return QStringLiteral("(parsed)");
}

} // namespace

TEST(SrtDocument, KeepsTimestampsAndTrailingTimingTextVerbatim)
{
    const SrtDocument document = SrtDocument::parse(
        QStringLiteral("7\r\n00:00:01.5 --> 00:00:02.25 X1:100 X2:200  \t\r\n  indented\r\n\r\n"
                       "8\r00:00:03,000-->00:00:04,4560\rglued\r\r"
                       "9\n-0:00:05,1 --> 100:00:06,000\n"));
    ASSERT_EQ(document.cues().size(), 3);
    EXPECT_EQ(document.timingSignature()[0].fields,
              QStringList({u"7"_s, u"00:00:01.5"_s, u"00:00:02.25"_s, u" X1:100 X2:200"_s}));
    EXPECT_EQ(document.timingSignature()[1].fields,
              QStringList({u"8"_s, u"00:00:03,000"_s, u"00:00:04,456"_s, u"0"_s}));
    EXPECT_EQ(document.timingSignature()[2].fields,
              QStringList({u"9"_s, u"-0:00:05,1"_s, u"100:00:06,000"_s, u""_s}));
    EXPECT_EQ(document.texts(), QStringList({u"  indented"_s, u"glued"_s, u""_s}));
    EXPECT_EQ(document.render(),
              QStringLiteral("7\n00:00:01.5 --> 00:00:02.25 X1:100 X2:200\n  indented\n\n"
                             "8\n00:00:03,000 --> 00:00:04,4560\nglued\n\n"
                             "9\n-0:00:05,1 --> 100:00:06,000\n\n\n"));
}

TEST(SrtDocument, KeepsNumbersAsWrittenAndNumbersOnlyWhatHasNone)
{
    const SrtDocument document =
        SrtDocument::parse(QStringLiteral("0\n00:00:01,000 --> 00:00:02,000\na\n\n"
                                          "00:00:03,000 --> 00:00:04,000\nb\n\n"
                                          "  0 \n00:00:05,000 --> 00:00:06,000\nc\n\n\n\n"
                                          "00:00:07,000 --> 00:00:08,000\nd\n"));
    QStringList numbers;
    for (const SrtCue& cue : document.cues())
        numbers.append(cue.number);
    EXPECT_EQ(numbers, QStringList({u"0"_s, u"2"_s, u"0"_s, u"4"_s}));
}

TEST(SrtDocument, DropsBlocksWithoutATimingLineAndReadsOn)
{
    const SrtDocument document =
        SrtDocument::parse(QStringLiteral("1\nnot a time\nlost too\n\n"
                                          "2\n00:00:01 --> 00:00:02\n\n"
                                          "3\n00:00:03,000 --> 00:00:04,000\nkept\n\n"
                                          "4"));
    ASSERT_EQ(document.cues().size(), 1);
    EXPECT_EQ(document.cues()[0].number, QStringLiteral("3"));
    EXPECT_EQ(document.texts(), QStringList({u"kept"_s}));
}

TEST(SrtDocument, RefusesTextWithoutAReadableCue)
{
    const QString message = QStringLiteral("El archivo SRT no contiene ningún subtítulo legible.");
    EXPECT_EQ(parseError(QString()), message);
    EXPECT_EQ(parseError(QStringLiteral(" \n\t\r\n\n")), message);
    EXPECT_EQ(parseError(QStringLiteral("1\n00:00:01 --> 00:00:02\nno milliseconds\n")), message);
}

TEST(SrtDocument, SetTextsChangesOnlyTextsAndCannotBreakTheFile)
{
    SrtDocument document =
        SrtDocument::parse(QStringLiteral("1\n00:00:01,000 --> 00:00:02,000\none\n\n"
                                          "2\n00:00:03,000 --> 00:00:04,000 X1:1\ntwo\nlines\n"));
    const SrtDocument original = document;

    try {
        document.setTexts({QStringLiteral("solo uno")});
        ADD_FAILURE() << "a missing text was accepted";
    } catch (const SubtitleError& error) {
        EXPECT_EQ(error.description(), QStringLiteral("Se esperaban 2 textos y llegaron 1"));
    }
    EXPECT_EQ(document.render(), original.render());

    document.setTexts({QStringLiteral("uno\r\n\r\n  \ncon espacio "), QString()});
    EXPECT_EQ(document.texts(), QStringList({u"uno\ncon espacio "_s, u""_s}));
    EXPECT_EQ(document.timingSignature(), original.timingSignature());
    EXPECT_EQ(SrtDocument::parse(document.render()).timingSignature(), original.timingSignature());
}
