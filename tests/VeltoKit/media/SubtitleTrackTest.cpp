#include "VeltoKit/media/SubtitleTrack.h"

#include <gtest/gtest.h>

#include "support/QStringPrinter.h"

using namespace velto;

TEST(SubtitleTrack, SummaryJoinsTheKnownPiecesWithTwoSpaces) {
    SubtitleTrack track;
    track.index = 3;
    track.codec = QStringLiteral("subrip");
    track.language = QStringLiteral("eng");
    track.title = QStringLiteral("Full");
    track.isDefault = true;
    track.hearingImpaired = true;
    track.frameCount = 812;
    EXPECT_EQ(track.summary(),
              QStringLiteral("#3  inglés  «Full»  [predeterminada, SDH]  (812 eventos)"));

    SubtitleTrack image;
    image.index = 7;
    image.codec = QStringLiteral("hdmv_pgs_subtitle");
    image.language = QStringLiteral("spa");
    image.forced = true;
    EXPECT_EQ(image.flags(), (QStringList{QStringLiteral("forzada"), QStringLiteral("imagen")}));
    EXPECT_EQ(image.summary(), QStringLiteral("#7  español  [forzada, imagen]"));

    SubtitleTrack bare;
    EXPECT_EQ(bare.summary(), QStringLiteral("#0  idioma desconocido"));
    EXPECT_EQ(bare.languageName(), QStringLiteral("idioma desconocido"));
}

TEST(SubtitleTrack, CodecsAreTextImageOrNeither) {
    for (const char* codec :
         {"subrip", "srt", "ass", "ssa", "webvtt", "mov_text", "text", "microdvd", "subviewer",
          "subviewer1", "sami", "realtext", "stl", "jacosub", "mpl2", "pjs", "vplayer"}) {
        EXPECT_TRUE(SubtitleTrack::isTextCodec(QString::fromLatin1(codec))) << codec;
        EXPECT_FALSE(SubtitleTrack::isBitmapCodec(QString::fromLatin1(codec))) << codec;
    }
    for (const char* codec :
         {"hdmv_pgs_subtitle", "dvd_subtitle", "dvb_subtitle", "xsub", "dvb_teletext"}) {
        EXPECT_TRUE(SubtitleTrack::isBitmapCodec(QString::fromLatin1(codec))) << codec;
        EXPECT_FALSE(SubtitleTrack::isTextCodec(QString::fromLatin1(codec))) << codec;
    }
    for (const char* codec : {"eia_608", "unknown", "SUBRIP", ""}) {
        EXPECT_FALSE(SubtitleTrack::isTextCodec(QString::fromLatin1(codec))) << codec;
        EXPECT_FALSE(SubtitleTrack::isBitmapCodec(QString::fromLatin1(codec))) << codec;
    }
}
