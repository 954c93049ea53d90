#include "VeltoKit/media/MediaInfo.h"

#include <QFile>

#include <gtest/gtest.h>

#include "VeltoKit/media/ShellError.h"
#include "support/QStringPrinter.h"

using namespace velto;

namespace {

MediaInfo capture(const char* name) {
    QFile file(QStringLiteral(VELTO_TEST_DATA_DIR "/probe/") + QString::fromLatin1(name));
    if (!file.open(QIODevice::ReadOnly))
        throw std::runtime_error(std::string("missing capture ") + name);
    return MediaInfo::fromProbeJson(QStringLiteral("/videos/x.mkv"), file.readAll());
}

SubtitleTrack textTrack(qint64 relativeIndex, const char* language) {
    SubtitleTrack track;
    track.index = relativeIndex + 2;
    track.relativeIndex = relativeIndex;
    track.codec = QStringLiteral("subrip");
    track.language = QString::fromLatin1(language);
    return track;
}

} // namespace

TEST(MediaInfo, ReadsEveryFieldOfTheProbe) {
    const MediaInfo info = capture("titles.json");
    EXPECT_EQ(info.path, QStringLiteral("/videos/x.mkv"));
    EXPECT_EQ(info.duration, 3.0);
    EXPECT_EQ(info.sizeBytes, 13320);
    ASSERT_EQ(info.tracks.size(), 3);

    SubtitleTrack english;
    english.index = 2;
    english.relativeIndex = 1;
    english.codec = QStringLiteral("subrip");
    english.language = QStringLiteral("eng");
    english.rawLanguage = QStringLiteral("eng");
    english.isDefault = true;
    EXPECT_EQ(info.tracks[1], english);

    const MediaInfo mp4 = capture("mp4-mov-text.json");
    ASSERT_EQ(mp4.tracks.size(), 1);
    EXPECT_EQ(mp4.tracks[0].codec, QStringLiteral("mov_text"));
    EXPECT_EQ(mp4.tracks[0].frameCount, 5);

    const MediaInfo empty = capture("no-subtitles.json");
    EXPECT_TRUE(empty.tracks.isEmpty());
    EXPECT_EQ(empty.sizeBytes, 12678);
}

TEST(MediaInfo, TitlesSupplyLanguageForcedAndSDH) {
    const MediaInfo info = capture("titles.json");
    const SubtitleTrack& spanish = info.tracks[0];
    EXPECT_EQ(spanish.language, QStringLiteral("spa"));
    EXPECT_TRUE(spanish.forced);
    const SubtitleTrack& untagged = info.tracks[2];
    EXPECT_EQ(untagged.rawLanguage, QString()); // Matroska leaves "und" unwritten
    EXPECT_EQ(untagged.language, QStringLiteral("eng"));
    EXPECT_TRUE(untagged.hearingImpaired);
    EXPECT_FALSE(untagged.forced);
}

TEST(MediaInfo, SpanishStatusCountsOnlyUnforcedTracksAsFull) {
    EXPECT_EQ(capture("titles.json").spanishStatus(), SpanishStatus::forcedOnly);
    EXPECT_EQ(capture("images-only.json").spanishStatus(), SpanishStatus::none);
    MediaInfo info;
    info.tracks = {textTrack(0, "spa"), textTrack(1, "spa")};
    info.tracks[0].forced = true;
    EXPECT_EQ(info.spanishStatus(), SpanishStatus::full);
    info.tracks[1].codec = QStringLiteral("hdmv_pgs_subtitle"); // images count too
    EXPECT_EQ(info.spanishStatus(), SpanishStatus::full);
}

TEST(MediaInfo, PickSourcePrefersFullPlainLongTracks) {
    const MediaInfo sdh = capture("sdh-versus-plain.json");
    ASSERT_EQ(sdh.tracks.size(), 2);
    EXPECT_EQ(sdh.tracks[0].frameCount, 1200);
    EXPECT_TRUE(sdh.tracks[0].hearingImpaired);
    EXPECT_EQ(sdh.pickSource(QStringLiteral("eng")), sdh.tracks[1]);

    // Forced titles lose even with more events; without a count a track counts as empty.
    MediaInfo info;
    info.tracks = {textTrack(0, "eng"), textTrack(1, "eng"), textTrack(2, "eng")};
    info.tracks[0].forced = true;
    info.tracks[0].frameCount = 50;
    info.tracks[2].frameCount = 10;
    EXPECT_EQ(info.pickSource(QStringLiteral("eng"))->relativeIndex, 2);
    info.tracks[2].frameCount.reset();
    EXPECT_EQ(info.pickSource(QStringLiteral("eng"))->relativeIndex, 1);
    info.tracks[2].isDefault = true; // a tie goes to the default track, then to the first
    EXPECT_EQ(info.pickSource(QStringLiteral("eng"))->relativeIndex, 2);
}

TEST(MediaInfo, PickSourceFallsBackToUntaggedTextAndNeverToImages) {
    EXPECT_EQ(capture("images-only.json").pickSource(QStringLiteral("eng")), std::nullopt);

    MediaInfo info;
    info.tracks = {textTrack(0, "fre"), textTrack(1, "und"), textTrack(2, "eng")};
    info.tracks[2].codec = QStringLiteral("hdmv_pgs_subtitle");
    EXPECT_EQ(info.pickSource(QStringLiteral("eng"))->relativeIndex, 1);
    EXPECT_EQ(info.pickSource(QStringLiteral("fre"))->relativeIndex, 0);
    info.tracks.removeAt(1);
    EXPECT_EQ(info.pickSource(QStringLiteral("eng")), std::nullopt);
}

TEST(MediaInfo, ToleratesMissingMembersAndRejectsOtherJson) {
    const MediaInfo bare = MediaInfo::fromProbeJson(
        {}, R"({"streams":[{"index":4,"tags":{"LANGUAGE":"ger","NUMBER_OF_FRAMES-eng":"17"}}]})");
    ASSERT_EQ(bare.tracks.size(), 1);
    EXPECT_EQ(bare.tracks[0].codec, QStringLiteral("unknown"));
    EXPECT_EQ(bare.tracks[0].language, QStringLiteral("ger"));
    EXPECT_EQ(bare.tracks[0].frameCount, 17);
    EXPECT_EQ(bare.duration, std::nullopt);
    EXPECT_EQ(bare.sizeBytes, 0);
    EXPECT_TRUE(MediaInfo::fromProbeJson({}, "{}").tracks.isEmpty());

    for (const char* json : {"", "not json", "[]", R"({"streams":{}})", R"({"streams":[3]})",
                             R"({"streams":[{"codec_name":"ass"}]})", R"({"format":[]})",
                             R"({"streams":[{"index":1,"tags":[]}]})"}) {
        try {
            MediaInfo::fromProbeJson({}, json);
            ADD_FAILURE() << "accepted " << json;
        } catch (const ShellError& error) {
            EXPECT_EQ(
                error.description(),
                QStringLiteral("ffprobe falló (código 1):\nNo pude leer la salida de ffprobe."));
        }
    }
}
