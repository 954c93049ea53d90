#include "VeltoKit/subtitles/SrtDocument.h"

#include <gtest/gtest.h>

#include "SubtitleTestSupport.h"

using namespace velto;
using namespace Qt::StringLiterals;

TEST(SrtDocument, KeepsTimestampsAndTrailingTimingTextVerbatim) {
    const SrtDocument document = SrtDocument::parse(
        u"7\r\n00:00:01.5 --> 00:00:02.25 X1:100 X2:200  \t\r\n  indented\r\n\r\n"
        u"8\r00:00:03,000-->00:00:04,4560\rglued\r\r"
        u"9\n-0:00:05,1 --> 100:00:06,000\n"_s);
    EXPECT_EQ(
        document.timingSignature(),
        QList<TimingSignature>({{{u"7"_s, u"00:00:01.5"_s, u"00:00:02.25"_s, u" X1:100 X2:200"_s}},
                                {{u"8"_s, u"00:00:03,000"_s, u"00:00:04,456"_s, u"0"_s}},
                                {{u"9"_s, u"-0:00:05,1"_s, u"100:00:06,000"_s, u""_s}}}));
    EXPECT_EQ(document.texts(), QStringList({u"  indented"_s, u"glued"_s, u""_s}));
    EXPECT_EQ(document.render(), u"7\n00:00:01.5 --> 00:00:02.25 X1:100 X2:200\n  indented\n\n"
                                 u"8\n00:00:03,000 --> 00:00:04,4560\nglued\n\n"
                                 u"9\n-0:00:05,1 --> 100:00:06,000\n\n\n"_s);
}

TEST(SrtDocument, KeepsNumbersAsWrittenAndNumbersOnlyWhatHasNone) {
    const SrtDocument document =
        SrtDocument::parse(u"0\n00:00:01,000 --> 00:00:02,000\na\n\n"
                           u"00:00:03,000 --> 00:00:04,000\nb\n\n"
                           u"  0 \n00:00:05,000 --> 00:00:06,000\nc\n\n\n\n"
                           u"00:00:07,000 --> 00:00:08,000\nd\n"_s);
    QStringList numbers;
    for (const SrtCue& cue : document.cues())
        numbers.append(cue.number);
    EXPECT_EQ(numbers, QStringList({u"0"_s, u"2"_s, u"0"_s, u"4"_s}));
}

TEST(SrtDocument, DropsBlocksWithoutATimingLineAndRefusesFilesWithoutCues) {
    const SrtDocument document = SrtDocument::parse(u"1\nnot a time\nlost too\n\n"
                                                    u"2\n00:00:01 --> 00:00:02\n\n"
                                                    u"3\n00:00:03,000 --> 00:00:04,000\nkept\n\n"
                                                    u"4"_s);
    ASSERT_EQ(document.cues().size(), 1);
    EXPECT_EQ(document.cues()[0].number, u"3"_s);
    EXPECT_EQ(document.texts(), QStringList({u"kept"_s}));

    for (const QString& text :
         {u""_s, u" \n\t\r\n\n"_s, u"1\n00:00:01 --> 00:00:02\nno milliseconds\n"_s}) {
        EXPECT_EQ(subtitleErrorOf([&] { SrtDocument::parse(text); }),
                  u"empty: El archivo SRT no contiene ningún subtítulo legible."_s);
    }
}

TEST(SrtDocument, SetTextsChangesOnlyTextsAndCannotBreakTheFile) {
    SrtDocument document = SrtDocument::parse(u"1\n00:00:01,000 --> 00:00:02,000\none\n\n"
                                              u"2\n00:00:03,000 --> 00:00:04,000 X1:1\ntwo\n"_s);
    const SrtDocument original = document;
    EXPECT_EQ(subtitleErrorOf([&] { document.setTexts({u"solo uno"_s}); }),
              u"empty: Se esperaban 2 textos y llegaron 1"_s);
    EXPECT_EQ(document.render(), original.render());

    document.setTexts({u"uno\r\n\r\n  \ncon espacio "_s, QString()});
    EXPECT_EQ(document.texts(), QStringList({u"uno\ncon espacio "_s, u""_s}));
    EXPECT_EQ(SrtDocument::parse(document.render()).timingSignature(), original.timingSignature());
}
