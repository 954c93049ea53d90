#include "VeltoKit/media/FFmpeg.h"

#include <sys/stat.h>

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/FailureText.h"
#include "support/MediaFixtures.h"
#include "support/ShellScripts.h"
#include "support/SubtitleCorpus.h"

using namespace velto;
using namespace velto::MediaFixtures;
using namespace Qt::StringLiterals;
using testing::StartsWith;

namespace {

// A real-world SRT when the corpus is there; the fixture's own lines on a fresh clone.
QByteArray englishSrt() {
    const QByteArray real =
        readFile(SubtitleCorpus::directory() +
                 u"/dualsub/Game of Thrones 1x01 - Winter Is Coming (English).srt"_s);
    return real.isEmpty() ? srtText(SubtitleRecipe().lines) : real;
}

QStringList entries(const QString& directory) {
    return QDir(directory).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
}

// What mkvmerge reads in a file: every track (codec, language, name, the flags that are set),
// every attachment, the chapters.
QStringList mkvmergeReport(const QString& file) {
    const QJsonObject identified = mkvmergeIdentify(file);
    QStringList lines;
    for (const QJsonValue track : identified[u"tracks"].toArray()) {
        const QJsonValue properties = track[u"properties"];
        lines << u"%1 %2 «%3»"_s.arg(track[u"codec"].toString(), properties[u"language"].toString(),
                                     properties[u"track_name"].toString());
        for (const QString& flag :
             {u"default_track"_s, u"forced_track"_s, u"flag_hearing_impaired"_s})
            if (properties[flag].toBool())
                lines.last() += u' ' + flag;
    }
    for (const QJsonValue attachment : identified[u"attachments"].toArray())
        lines << attachment[u"file_name"].toString() + u' ' +
                     QString::number(attachment[u"size"].toInteger());
    for (const QJsonValue chapters : identified[u"chapters"].toArray())
        lines << u"%1 chapters"_s.arg(chapters[u"num_entries"].toInt());
    return lines;
}

// SRT "eng" default+SDH (englishSrt), ASS "ger" forced, WebVTT "fre", PGS "spa", DVD
// untagged; a font and two chapters. Streams: 0 video, 1 audio, 2..6 subtitles, 7 the font.
// Written once and shared: no test may change it.
const QString& richMkv() {
    static QTemporaryDir dir;
    static const QString path = [] {
        const QString file = dir.filePath(u"rich.mkv"_s);
        using enum SubtitleFormat;
        VideoRecipe recipe{.fontAttachment = true, .chapters = true};
        recipe.subtitles = {
            {.language = u"eng"_s, .title = u"SDH"_s, .isDefault = true, .hearingImpaired = true},
            {.format = ass, .language = u"ger"_s, .title = u"Signs"_s, .forced = true},
            {.format = webvtt, .language = u"fre"_s, .title = u"Français"_s},
            {.format = pgs, .language = u"spa"_s},
            {.format = dvdSubtitle}};
        recipe.subtitles[0].contents = englishSrt();
        writeVideo(file, recipe);
        return file;
    }();
    return path;
}

class FFmpegTest : public testing::Test {
protected:
    FFmpegTest() { QDir(m_dir.path()).mkdir(u"out"_s); }
    QString path(const QString& name) const { return m_dir.filePath(name); }

    QTemporaryDir m_dir;
};

} // namespace

TEST_F(FFmpegTest, LocatesBothToolsAndReportsWhatWentWrong) {
    const QString ffmpeg = writeShellScript(path(u"ffmpeg"_s), {});
    EXPECT_EQ(FFmpeg::locate(m_dir.path()).value().ffmpeg, tools().ffmpeg); // no ffprobe here
    const QString ffprobe = writeShellScript(path(u"ffprobe"_s), {});
    const FFmpeg located = FFmpeg::locate(m_dir.path()).value();
    EXPECT_EQ(located.ffmpeg, ffmpeg);
    EXPECT_EQ(located.ffprobe, ffprobe);
    EXPECT_EQ(located.version(), u"desconocida"_s); // it prints nothing
    EXPECT_TRUE(tools().version().startsWith(u"ffmpeg version "_s));
    EXPECT_THAT(failureText([&] { FFmpeg().inspect(ffmpeg); }),
                StartsWith("No encuentro «ffprobe»."));
}

// A missing, empty or folder input is said through veltomkv-cli (tests/cli).
TEST_F(FFmpegTest, SaysInItsOwnWordsWhatIsNoVideoAndTakesNamesThatLookLikeOptions) {
    writeFile(path(u"notes.mkv"_s), "Esto no es un video.\n");
    ASSERT_EQ(::mkfifo(QFile::encodeName(path(u"pipe.mkv"_s)).constData(), 0600), 0);
    writeVideo(path(u"-trailer.mkv"_s), {.subtitles = {{.language = u"eng"_s}}});
    const QString before = QDir::currentPath();
    QDir::setCurrent(m_dir.path()); // relative names, as a user types them
    EXPECT_EQ(failureText([&] { tools().inspect(u"notes.mkv"_s); }),
              "«notes.mkv» no es un video que pueda leer: su formato no se reconoce o el archivo "
              "está dañado. Elegí un archivo de video, por ejemplo un .mkv o un .mp4.");
    EXPECT_EQ(failureText([&] { tools().inspect(u"pipe.mkv"_s); }),
              "«pipe.mkv» no es un archivo común (es una tubería o un dispositivo). Elegí un "
              "archivo de video.");
    EXPECT_EQ(tools().inspect(u"-trailer.mkv"_s).tracks.size(), 1);
    QDir::setCurrent(before);
}

TEST_F(FFmpegTest, InspectsEveryKindOfTrackAndExtractsTheTextOnes) {
    const MediaInfo info = tools().inspect(richMkv());
    EXPECT_EQ(info.sizeBytes, QFileInfo(richMkv()).size());
    EXPECT_EQ(
        describeTracks(info),
        (QStringList{u"subrip: #2  inglés  «SDH»  [predeterminada, SDH]"_s,
                     u"ass: #3  alemán  «Signs»  [forzada]"_s, u"webvtt: #4  francés  «Français»"_s,
                     u"hdmv_pgs_subtitle: #5  español  [imagen]"_s,
                     u"dvd_subtitle: #6  idioma desconocido  [imagen]"_s}));
    EXPECT_EQ(info.spanishStatus(), SpanishStatus::full);

    // A stand-in that writes nothing: the image track is refused before it would run.
    const FFmpeg silent{writeShellScript(path(u"silent"_s), {}), {}};
    EXPECT_EQ(failureText([&] { silent.extract(info.tracks[3], richMkv(), m_dir.path()); }),
              "ffmpeg falló (código 1):\nLa pista #5 es de tipo imagen (hdmv_pgs_subtitle). Haría "
              "falta OCR para traducirla; VeltoMKV solo maneja subtítulos de texto.");
    EXPECT_EQ(failureText([&] { silent.extract(info.tracks[0], richMkv(), m_dir.path()); }),
              "La pista #2 está vacía: no tiene ningún subtítulo para traducir. Elegí otra pista.");

    // SRT and ASS come out as they are, WebVTT as SRT.
    for (const SubtitleTrack& track : info.tracks.mid(0, 3))
        tools().extract(track, richMkv(), m_dir.path());
    EXPECT_EQ(readFile(path(u"source_2.srt"_s)), englishSrt());
    EXPECT_TRUE(readFile(path(u"source_3.ass"_s))
                    .contains("Dialogue: 0,0:00:01.50,0:00:02.40,Default,,0,0,0,,How are you?"));
    EXPECT_EQ(readFile(path(u"source_4.srt"_s)), srtText(SubtitleRecipe().lines));
}

TEST_F(FFmpegTest, Mp4TracksAreMovTextOnTheWayInAndOut) {
    const QString source = path(u"clip.mp4"_s);
    writeVideo(source, {.subtitles = {{.format = SubtitleFormat::movText, .language = u"eng"_s}}});
    const QString srt =
        tools().extract(tools().inspect(source).tracks.value(0), source, m_dir.path());
    EXPECT_EQ(readFile(srt), srtText(SubtitleRecipe().lines));
    // A copied SRT would be refused by MP4, whatever the case of the extension.
    const QString output = path(u"clip.es.MP4"_s);
    tools().mux(source, srt, output, 1, {.title = u"Español"_s});
    const SubtitleTrack added = tools().inspect(output).tracks.value(1);
    EXPECT_EQ(added.codec + u' ' + added.language + u' ' + added.title, u"mov_text spa Español"_s);
    EXPECT_EQ(probeStreams(output).size(), 4); // video, audio and both subtitles
}

TEST_F(FFmpegTest, ExtractThenMuxKeepsEverythingAndAddsOneSpanishTrackFlaggedAsAsked) {
    const QByteArray sourceBytes = readFile(richMkv());
    const QDateTime sourceTime = QFileInfo(richMkv()).lastModified();
    const MediaInfo info = tools().inspect(richMkv());
    const QString srt = tools().extract(info.pickSource(u"eng"_s).value(), richMkv(), m_dir.path());
    const QString output = path(u"out/rich.es.mkv"_s);
    tools().mux(richMkv(), srt, output, info.tracks.size(),
                {.title = u"Español (VeltoMKV)"_s, .makeDefault = true});
    EXPECT_EQ(entries(path(u"out"_s)), QStringList{u"rich.es.mkv"_s});
    // The new default track clears every flag of the older subtitles.
    EXPECT_EQ(mkvmergeReport(output),
              (QStringList{u"MPEG-4p2 und «»"_s, u"PCM und «»"_s, u"SubRip/SRT eng «SDH»"_s,
                           u"SubStationAlpha ger «Signs»"_s, u"D_WEBVTT/SUBTITLES fre «Français»"_s,
                           u"HDMV PGS spa «»"_s, u"VobSub und «»"_s,
                           u"SubRip/SRT spa «Español (VeltoMKV)» default_track"_s,
                           u"VeltoSans.ttf 4096"_s, u"2 chapters"_s}));

    // Forced, not default: every other flag stays as it was; the text arrives intact.
    writeFile(srt, srtText({u"¡Hola, che!"_s}));
    tools().mux(richMkv(), srt, output, 5, {.title = u"Carteles"_s, .forced = true});
    QStringList expected = mkvmergeReport(richMkv());
    expected.insert(7, u"SubRip/SRT spa «Carteles» forced_track"_s);
    EXPECT_EQ(mkvmergeReport(output), expected);
    const SubtitleTrack added = tools().inspect(output).tracks.last();
    EXPECT_EQ(readFile(tools().extract(added, output, m_dir.path())), readFile(srt));

    EXPECT_EQ(
        failureText([&] { tools().mux(richMkv(), srt, richMkv() + u"/../rich.mkv"_s, 5, {}); }),
        "La salida no puede ser el mismo archivo que la entrada.");
    EXPECT_EQ(readFile(richMkv()), sourceBytes);
    EXPECT_EQ(QFileInfo(richMkv()).lastModified(), sourceTime);
}
