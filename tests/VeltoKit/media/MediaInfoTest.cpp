#include "VeltoKit/media/MediaInfo.h"

#include <gtest/gtest.h>

#include "support/FailureText.h"
#include "support/MediaFixtures.h"

using namespace velto;
using namespace Qt::StringLiterals;
using MediaFixtures::describeTracks;

namespace {

MediaInfo capture(const QString& name) {
    return MediaInfo::fromProbeJson(
        {}, MediaFixtures::readFile(u"" VELTO_TEST_DATA_DIR "/probe/"_s + name));
}

} // namespace

TEST(MediaInfo, ReadsCapturedProbesWithTitlesFillingTheGaps) {
    const MediaInfo info = capture(u"titles.json"_s);
    EXPECT_EQ(info.duration, 3.0);
    EXPECT_EQ(info.sizeBytes, 13320);
    // Untagged "English SDH" and unflagged "Spanish (Forced)" say what they are in their titles.
    EXPECT_EQ(describeTracks(info),
              (QStringList{u"subrip: #1  español  «Spanish (Forced)»  [forzada]"_s,
                           u"subrip: #2  inglés  [predeterminada]"_s,
                           u"subrip: #3  inglés  «English SDH»  [SDH]"_s}));
    EXPECT_EQ(info.spanishStatus(), SpanishStatus::forcedOnly);
    EXPECT_EQ(info.tracks.value(2).relativeIndex, 2);

    // Event counts come from the container or from mkvmerge's statistics tags.
    EXPECT_EQ(describeTracks(capture(u"mp4-mov-text.json"_s)),
              QStringList{u"mov_text: #1  inglés  [predeterminada]  (5 eventos)"_s});
    const MediaInfo sdh = capture(u"sdh-versus-plain.json"_s);
    EXPECT_EQ(describeTracks(sdh),
              (QStringList{u"subrip: #1  inglés  «SDH»  [predeterminada, SDH]  (1200 eventos)"_s,
                           u"subrip: #2  inglés  (900 eventos)"_s}));
    EXPECT_EQ(sdh.pickSource(u"eng"_s), sdh.tracks.value(1)); // plain beats SDH

    const MediaInfo images = capture(u"images-only.json"_s);
    EXPECT_EQ(images.spanishStatus(), SpanishStatus::none);
    EXPECT_EQ(images.pickSource(u"eng"_s), std::nullopt); // never an image track
}

TEST(MediaInfo, PickSourceRanksFullBeforeLongBeforeDefaultBeforeFirst) {
    MediaInfo info = MediaInfo::fromProbeJson({}, R"({"streams":[
        {"index":2,"codec_name":"subrip","tags":{"language":"eng","NUMBER_OF_FRAMES":"50"},
         "disposition":{"forced":1}},
        {"index":3,"codec_name":"subrip","tags":{"language":"eng"}},
        {"index":4,"codec_name":"subrip","tags":{"language":"eng","NUMBER_OF_FRAMES":"10"}}]})");
    EXPECT_EQ(info.pickSource(u"eng"_s).value().index, 4);
    info.tracks[2].frameCount.reset(); // no count: as good as none
    EXPECT_EQ(info.pickSource(u"eng"_s).value().index, 3);
    info.tracks[2].isDefault = true;
    EXPECT_EQ(info.pickSource(u"eng"_s).value().index, 4);

    // Untagged text stands in only when no text track has the language.
    info.tracks[1].language = u"und"_s;
    EXPECT_EQ(info.pickSource(u"fre"_s).value().index, 3);
    info.tracks[0].language = u"fre"_s;
    EXPECT_EQ(info.pickSource(u"fre"_s).value().index, 2);
}

TEST(MediaInfo, ToleratesMissingMembersAndRejectsOtherJson) {
    const MediaInfo bare = MediaInfo::fromProbeJson(
        {}, R"({"streams":[{"index":4,"tags":{"LANGUAGE":"ger","NUMBER_OF_FRAMES-eng":"17"}}]})");
    EXPECT_EQ(describeTracks(bare), QStringList{u"unknown: #4  alemán  (17 eventos)"_s});
    // MP4 keeps a track's title in its handler name, unless a tool left its default there.
    const MediaInfo mp4 = MediaInfo::fromProbeJson({}, R"j({"streams":[
        {"index":2,"codec_name":"mov_text","tags":{"handler_name":"Español (traducido)"}},
        {"index":3,"codec_name":"mov_text","tags":{"handler_name":"SubtitleHandler"}}]})j");
    EXPECT_EQ(describeTracks(mp4), (QStringList{u"mov_text: #2  español  «Español (traducido)»"_s,
                                                u"mov_text: #3  idioma desconocido"_s}));
    EXPECT_EQ(bare.duration, std::nullopt);
    EXPECT_EQ(bare.sizeBytes, 0);

    for (const char* json : {"", "not json", "[]", R"({"streams":{}})", R"({"streams":[3]})",
                             R"({"streams":[{"codec_name":"ass"}]})", R"({"format":[]})",
                             R"({"streams":[{"index":1,"tags":[]}]})"})
        EXPECT_EQ(failureText([&] { MediaInfo::fromProbeJson({}, json); }),
                  "ffprobe falló (código 1):\nNo pude leer la salida de ffprobe.")
            << json;
}
