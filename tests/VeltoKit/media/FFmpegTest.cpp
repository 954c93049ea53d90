#include "VeltoKit/media/FFmpeg.h"

#include <condition_variable>
#include <fcntl.h>
#include <mutex>
#include <poll.h>
#include <signal.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

#include <QCryptographicHash>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include "VeltoKit/core/VeltoError.h"
#include "VeltoKit/media/Shell.h"
#include "VeltoKit/media/ShellError.h"
#include "support/Eventually.h"
#include "support/MediaFixtures.h"
#include "support/QStringPrinter.h"
#include "support/ShellScripts.h"

using namespace velto;
using MediaFixtures::SubtitleFormat;
using MediaFixtures::SubtitleRecipe;

namespace {

SubtitleRecipe subtitle(SubtitleFormat format, const char* language, const char* title = "") {
    SubtitleRecipe recipe;
    recipe.format = format;
    recipe.language = QString::fromLatin1(language);
    recipe.title = QString::fromUtf8(title);
    return recipe;
}

// SRT "eng" default+SDH, ASS "ger" forced, WebVTT "fre", PGS "spa", DVD untagged; a font and
// two chapters. Streams: 0 video, 1 audio, 2..6 subtitles, 7 the font.
MediaFixtures::VideoRecipe richMkv() {
    MediaFixtures::VideoRecipe recipe;
    recipe.fontAttachment = true;
    recipe.chapters = true;
    SubtitleRecipe srt = subtitle(SubtitleFormat::srt, "eng", "English SDH");
    srt.isDefault = true;
    srt.hearingImpaired = true;
    SubtitleRecipe ass = subtitle(SubtitleFormat::ass, "ger", "Signs");
    ass.forced = true;
    recipe.subtitles = {srt, ass, subtitle(SubtitleFormat::webvtt, "fre", "Français"),
                        subtitle(SubtitleFormat::pgs, "spa"),
                        subtitle(SubtitleFormat::dvdSubtitle, "")};
    return recipe;
}

QByteArray readAll(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QStringList entries(const QString& directory) {
    return QDir(directory).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
}

// An ffmpeg stand-in that records its arguments (one per line) and writes a byte into the
// file named by its last argument.
FFmpeg recordingTools(const QTemporaryDir& dir) {
    const QString script = writeShellScript(
        dir.filePath(QStringLiteral("ffmpeg")),
        QStringLiteral(
            "for a in \"$@\"; do printf '%s\\n' \"$a\"; done > \"$(dirname \"$0\")/args\"\n"
            "for a in \"$@\"; do last=$a; done; printf x > \"$last\""));
    return FFmpeg{script, script};
}

QStringList recordedArguments(const QTemporaryDir& dir) {
    return QString::fromUtf8(readAll(dir.filePath(QStringLiteral("args"))))
        .split(u'\n', Qt::SkipEmptyParts);
}

QJsonArray mkvTracks(const QString& path) {
    return MediaFixtures::mkvmergeIdentify(path).value(u"tracks").toArray();
}

// Feeds a file into a FIFO and keeps it open without an end, so the reader waits for more
// data until the feeder is destroyed. Holding a read end too means no SIGPIPE, ever.
class EndlessFifo {
public:
    EndlessFifo(const QString& path, QByteArray bytes)
        : m_path(path) {
        if (::mkfifo(QFile::encodeName(path).constData(), 0600) != 0)
            throw std::runtime_error("mkfifo failed");
        m_feeder = std::jthread([this, bytes = std::move(bytes)](std::stop_token stop) {
            const int fd = ::open(QFile::encodeName(m_path).constData(), O_RDWR | O_NONBLOCK);
            qsizetype written = 0;
            while (fd >= 0 && written < bytes.size() && !stop.stop_requested()) {
                const ssize_t n = ::write(fd, bytes.constData() + written, bytes.size() - written);
                if (n > 0) {
                    written += n;
                } else {
                    pollfd ready{fd, POLLOUT, 0};
                    ::poll(&ready, 1, 20);
                }
            }
            std::unique_lock lock(m_mutex);
            m_release.wait(lock, stop, [] { return false; });
            if (fd >= 0)
                ::close(fd);
        });
    }

private:
    QString m_path;
    std::mutex m_mutex;
    std::condition_variable_any m_release;
    std::jthread m_feeder;
};

struct MuxOutcome {
    bool cancelled = false;
    std::optional<int> failedStatus;
};

} // namespace

TEST(FFmpeg, LocatePrefersAFolderThatHoldsBothTools) {
    QTemporaryDir dir;
    const QString ffmpeg = writeShellScript(dir.filePath(QStringLiteral("ffmpeg")), {});
    EXPECT_NE(FFmpeg::locate(dir.path())->ffmpeg, ffmpeg); // no ffprobe there: the lookup wins
    const QString ffprobe = writeShellScript(dir.filePath(QStringLiteral("ffprobe")), {});
    const auto located = FFmpeg::locate(dir.path());
    ASSERT_TRUE(located);
    EXPECT_EQ(located->ffmpeg, ffmpeg);
    EXPECT_EQ(located->ffprobe, ffprobe);
    EXPECT_EQ(FFmpeg::locate()->ffmpeg, Shell::which(QStringLiteral("ffmpeg")));
}

TEST(FFmpeg, VersionIsTheFirstLineOrDesconocida) {
    EXPECT_TRUE(MediaFixtures::tools().version().startsWith(QStringLiteral("ffmpeg version ")));
    QTemporaryDir dir;
    const QString silent = writeShellScript(dir.filePath(QStringLiteral("ffmpeg")), {});
    EXPECT_EQ((FFmpeg{silent, silent}.version()), QStringLiteral("desconocida"));
    EXPECT_THROW(FFmpeg{}.version(), ShellError);
}

TEST(FFmpeg, InspectClassifiesEveryKindOfTrack) {
    QTemporaryDir dir;
    const QString video = dir.filePath(QStringLiteral("rich.mkv"));
    MediaFixtures::writeVideo(video, richMkv());
    const MediaInfo info = MediaFixtures::tools().inspect(video);

    EXPECT_EQ(info.path, video);
    EXPECT_EQ(info.sizeBytes, QFileInfo(video).size());
    ASSERT_TRUE(info.duration);
    EXPECT_NEAR(*info.duration, 3.0, 0.5);
    QStringList summaries;
    for (const SubtitleTrack& track : info.tracks)
        summaries << track.summary();
    EXPECT_EQ(summaries, (QStringList{
                             QStringLiteral("#2  inglés  «English SDH»  [predeterminada, SDH]"),
                             QStringLiteral("#3  alemán  «Signs»  [forzada]"),
                             QStringLiteral("#4  francés  «Français»"),
                             QStringLiteral("#5  español  [imagen]"),
                             QStringLiteral("#6  idioma desconocido  [imagen]"),
                         }));
    QStringList codecs;
    for (const SubtitleTrack& track : info.tracks)
        codecs << track.codec;
    EXPECT_EQ(codecs, (QStringList{QStringLiteral("subrip"), QStringLiteral("ass"),
                                   QStringLiteral("webvtt"), QStringLiteral("hdmv_pgs_subtitle"),
                                   QStringLiteral("dvd_subtitle")}));
    EXPECT_EQ(info.tracks[4].relativeIndex, 4);
    EXPECT_EQ(info.spanishStatus(), SpanishStatus::full);
    EXPECT_EQ(info.pickSource(QStringLiteral("eng"))->index, 2);
    EXPECT_EQ(info.pickSource(QStringLiteral("spa")), std::nullopt); // only images
}

TEST(FFmpeg, InspectReportsWhatWentWrong) {
    QTemporaryDir dir;
    try {
        MediaFixtures::tools().inspect(dir.filePath(QStringLiteral("missing.mkv")));
        FAIL() << "expected a failure";
    } catch (const ShellError& error) {
        EXPECT_EQ(error.tool(), QStringLiteral("ffprobe"));
        EXPECT_TRUE(error.description().startsWith(QStringLiteral("ffprobe falló (código 1):\n")));
        EXPECT_TRUE(error.description().contains(QStringLiteral("missing.mkv")));
    }
    const QString garbage =
        writeShellScript(dir.filePath(QStringLiteral("ffprobe")), QStringLiteral("echo hola"));
    try {
        FFmpeg{garbage, garbage}.inspect(dir.path());
        FAIL() << "expected a failure";
    } catch (const ShellError& error) {
        EXPECT_EQ(error.description(),
                  QStringLiteral("ffprobe falló (código 1):\nNo pude leer la salida de ffprobe."));
    }
    try {
        FFmpeg{}.inspect(dir.path());
        FAIL() << "expected notFound";
    } catch (const ShellError& error) {
        EXPECT_EQ(error.kind(), ShellError::Kind::notFound);
        EXPECT_TRUE(error.description().startsWith(QStringLiteral("No encuentro «ffprobe».")));
    }
}

TEST(FFmpeg, ExtractCopiesSrtAndAssAndConvertsTheOtherTextFormats) {
    QTemporaryDir dir;
    const QString video = dir.filePath(QStringLiteral("rich.mkv"));
    MediaFixtures::writeVideo(video, richMkv());
    const FFmpeg tools = MediaFixtures::tools();
    const MediaInfo info = tools.inspect(video);

    const QString srt = tools.extract(info.tracks[0], video, dir.path());
    EXPECT_EQ(srt, dir.filePath(QStringLiteral("source_2.srt")));
    EXPECT_EQ(readAll(srt), MediaFixtures::srtText(SubtitleRecipe().lines));

    const QString ass = tools.extract(info.tracks[1], video, dir.path());
    EXPECT_EQ(ass, dir.filePath(QStringLiteral("source_3.ass")));
    EXPECT_TRUE(readAll(ass).contains("Dialogue: 0,0:00:01.50,0:00:02.40,Default,,0,0,0,,How are "
                                      "you?\r\n"));

    const QString vtt = tools.extract(info.tracks[2], video, dir.path());
    EXPECT_EQ(vtt, dir.filePath(QStringLiteral("source_4.srt")));
    EXPECT_TRUE(readAll(vtt).contains("00:00:02,500 --> 00:00:03,400\nFine, thanks."));

    const QString mp4 = dir.filePath(QStringLiteral("clip.mp4"));
    MediaFixtures::VideoRecipe mp4Spec;
    mp4Spec.subtitles = {subtitle(SubtitleFormat::movText, "eng")};
    MediaFixtures::writeVideo(mp4, mp4Spec);
    const SubtitleTrack movText = tools.inspect(mp4).tracks.value(0);
    EXPECT_EQ(movText.codec, QStringLiteral("mov_text"));
    EXPECT_TRUE(readAll(tools.extract(movText, mp4, dir.path())).contains("How are you?"));
}

TEST(FFmpeg, ExtractKeepsEveryCueOfARealWorldFile) {
    const QString corpus = QStringLiteral(VELTO_CORPUS_DIR "/dualsub/Game of Thrones 1x01 - "
                                                           "Winter Is Coming (English).srt");
    const QByteArray original = readAll(corpus);
    if (original.isEmpty())
        GTEST_SKIP() << "the subtitle corpus is not here";
    QTemporaryDir dir;
    const QString video = dir.filePath(QStringLiteral("got.mkv"));
    MediaFixtures::VideoRecipe recipe;
    recipe.audio = false;
    SubtitleRecipe english = subtitle(SubtitleFormat::srt, "", "English");
    english.contents = original;
    recipe.subtitles = {english};
    MediaFixtures::writeVideo(video, recipe);

    const FFmpeg tools = MediaFixtures::tools();
    const auto track = tools.inspect(video).pickSource(QStringLiteral("eng"));
    ASSERT_TRUE(track); // untagged, named by its title
    const QByteArray extracted = readAll(tools.extract(*track, video, dir.path()));
    EXPECT_GT(original.count("-->"), 500);
    EXPECT_EQ(extracted.count("-->"), original.count("-->"));
}

TEST(FFmpeg, ExtractRefusesImageTracksBeforeRunningAnything) {
    QTemporaryDir dir;
    const FFmpeg recording = recordingTools(dir);
    SubtitleTrack pgs;
    pgs.index = 5;
    pgs.codec = QStringLiteral("hdmv_pgs_subtitle");
    try {
        recording.extract(pgs, QStringLiteral("/videos/x.mkv"), dir.path());
        FAIL() << "expected a refusal";
    } catch (const ShellError& error) {
        EXPECT_EQ(error.description(),
                  QStringLiteral("ffmpeg falló (código 1):\nLa pista #5 es de tipo imagen "
                                 "(hdmv_pgs_subtitle). Haría falta OCR para traducirla; VeltoMKV "
                                 "solo maneja subtítulos de texto."));
    }
    EXPECT_FALSE(QFile::exists(dir.filePath(QStringLiteral("args"))));

    const QString silent = writeShellScript(dir.filePath(QStringLiteral("quiet")), {});
    SubtitleTrack srt;
    srt.index = 2;
    srt.codec = QStringLiteral("subrip");
    try {
        FFmpeg{silent, silent}.extract(srt, QStringLiteral("/videos/x.mkv"), dir.path());
        FAIL() << "expected an empty extraction";
    } catch (const ShellError& error) {
        EXPECT_EQ(
            error.description(),
            QStringLiteral("ffmpeg falló (código 1):\nLa extracción de la pista #2 salió vacía."));
    }
}

TEST(FFmpeg, CommandLinesAreExactlyTheDocumentedOnes) {
    QTemporaryDir dir;
    const FFmpeg recording = recordingTools(dir);
    const QString source = QStringLiteral("/videos/in put.mkv");
    const auto args = [](const char* text) { return QString::fromUtf8(text).split(u' '); };

    SubtitleTrack movText;
    movText.index = 3;
    movText.codec = QStringLiteral("mov_text");
    recording.extract(movText, source, dir.path());
    EXPECT_EQ(recordedArguments(dir),
              args("-y -v error -i") + QStringList{source} + args("-map 0:3") +
                  QStringList{dir.filePath(QStringLiteral("source_3.srt"))});
    SubtitleTrack ass;
    ass.index = 2;
    ass.codec = QStringLiteral("ass");
    recording.extract(ass, source, dir.path());
    EXPECT_EQ(recordedArguments(dir).mid(5),
              args("-map 0:2 -c:s copy") +
                  QStringList{dir.filePath(QStringLiteral("source_2.ass"))});

    const QString output = dir.filePath(QStringLiteral("out.mkv"));
    MuxOptions options;
    options.title = QStringLiteral("Español (latino)");
    options.makeDefault = true;
    options.forced = true;
    recording.mux(source, QStringLiteral("/tmp/x.SRT"), output, 2, options);
    QStringList recorded = recordedArguments(dir);
    const QString temporary = recorded.takeLast();
    EXPECT_EQ(recorded,
              args("-y -v error -i") + QStringList{source} +
                  args("-sub_charenc UTF-8 -i /tmp/x.SRT -map 0 -map 1:0 -c copy -map_metadata 0 "
                       "-map_chapters 0 -metadata:s:s:2 language=spa -metadata:s:s:2") +
                  QStringList{QStringLiteral("title=Español (latino)")} +
                  args("-disposition:s:0 0 -disposition:s:1 0 -disposition:s:2 default"));
    EXPECT_EQ(QFileInfo(temporary).absolutePath(), dir.path());
    EXPECT_TRUE(QFileInfo(temporary).fileName().startsWith(QStringLiteral(".out.")));
    EXPECT_TRUE(temporary.endsWith(QStringLiteral(".mkv")));
    EXPECT_EQ(readAll(output), "x");

    options.makeDefault = false;
    options.forced = false;
    recording.mux(source, QStringLiteral("/tmp/x.ass"), output, 1, options);
    recorded = recordedArguments(dir);
    EXPECT_EQ(recorded.mid(5, 2), args("-i /tmp/x.ass")); // no character set for ASS
    EXPECT_EQ(recorded.mid(recorded.size() - 3, 2), args("-disposition:s:1 0"));
    options.forced = true;
    recording.mux(source, QStringLiteral("/tmp/x.srt"), dir.filePath(QStringLiteral("o.M4V")), 0,
                  options);
    recorded = recordedArguments(dir);
    EXPECT_EQ(recorded.mid(13, 4), args("-c copy -c:s:0 mov_text"));
    EXPECT_EQ(recorded.mid(recorded.size() - 3, 2), args("-disposition:s:0 forced"));
}

TEST(FFmpeg, ExtractThenMuxKeepsEverythingAndAddsOneSpanishTrack) {
    QTemporaryDir dir;
    const QString source = dir.filePath(QStringLiteral("rich.mkv"));
    MediaFixtures::writeVideo(source, richMkv());
    const QByteArray sourceHash =
        QCryptographicHash::hash(readAll(source), QCryptographicHash::Sha256);
    const QDateTime sourceTime = QFileInfo(source).lastModified();
    const FFmpeg tools = MediaFixtures::tools();
    const MediaInfo info = tools.inspect(source);
    const QString srt =
        tools.extract(info.pickSource(QStringLiteral("eng")).value(), source, dir.path());

    QDir(dir.path()).mkdir(QStringLiteral("out"));
    const QString output = dir.filePath(QStringLiteral("out/rich.es.mkv"));
    MuxOptions options;
    options.title = QStringLiteral("Español (VeltoMKV)");
    options.makeDefault = true;
    tools.mux(source, srt, output, info.tracks.size(), options);

    EXPECT_EQ(QCryptographicHash::hash(readAll(source), QCryptographicHash::Sha256), sourceHash);
    EXPECT_EQ(QFileInfo(source).lastModified(), sourceTime);
    EXPECT_EQ(entries(dir.filePath(QStringLiteral("out"))),
              QStringList{QStringLiteral("rich.es.mkv")});

    const QJsonObject before = MediaFixtures::mkvmergeIdentify(source);
    const QJsonObject after = MediaFixtures::mkvmergeIdentify(output);
    const QJsonArray oldTracks = before.value(u"tracks").toArray();
    const QJsonArray newTracks = after.value(u"tracks").toArray();
    ASSERT_EQ(newTracks.size(), oldTracks.size() + 1);
    for (qsizetype i = 0; i < oldTracks.size(); ++i) {
        const QJsonObject was = oldTracks[i].toObject();
        const QJsonObject now = newTracks[i].toObject();
        EXPECT_EQ(now.value(u"codec"), was.value(u"codec")) << i;
        const QJsonObject wasProperties = was.value(u"properties").toObject();
        const QJsonObject properties = now.value(u"properties").toObject();
        for (const char* key : {"language", "track_name", "codec_private_data"})
            EXPECT_EQ(properties.value(QLatin1String(key)), wasProperties.value(QLatin1String(key)))
                << i << key;
        // Making the new track the default resets every disposition of the older subtitles.
        if (now.value(u"type") == QStringLiteral("subtitles")) {
            EXPECT_EQ(properties.value(u"default_track"), false) << i;
            EXPECT_EQ(properties.value(u"forced_track"), false) << i;
        }
    }
    const QJsonObject added = newTracks.last().toObject();
    const QJsonObject properties = added.value(u"properties").toObject();
    EXPECT_EQ(added.value(u"type"), QStringLiteral("subtitles"));
    EXPECT_EQ(added.value(u"codec"), QStringLiteral("SubRip/SRT"));
    EXPECT_EQ(properties.value(u"language"), QStringLiteral("spa"));
    EXPECT_EQ(properties.value(u"track_name"), QStringLiteral("Español (VeltoMKV)"));
    EXPECT_EQ(properties.value(u"default_track"), true);
    EXPECT_EQ(properties.value(u"forced_track"), false);
    const QJsonArray attachments = after.value(u"attachments").toArray();
    ASSERT_EQ(attachments.size(), 1);
    for (const char* key : {"file_name", "content_type", "size"})
        EXPECT_EQ(attachments[0][QLatin1String(key)],
                  before.value(u"attachments")[0][QLatin1String(key)])
            << key;
    EXPECT_EQ(after.value(u"chapters")[0][u"num_entries"], 2);
    EXPECT_EQ(tools.inspect(output).tracks.size(), info.tracks.size() + 1);
}

TEST(FFmpeg, MuxMarksTheNewTrackForcedOnlyWhenItIsNotDefault) {
    QTemporaryDir dir;
    const QString source = dir.filePath(QStringLiteral("rich.mkv"));
    MediaFixtures::writeVideo(source, richMkv());
    const QString srt = dir.filePath(QStringLiteral("es.srt"));
    MediaFixtures::writeFile(srt, MediaFixtures::srtText({QStringLiteral("¡Hola, che!")}));
    const QString output = dir.filePath(QStringLiteral("forced.mkv"));
    MuxOptions options;
    options.title = QStringLiteral("Carteles");
    options.forced = true;
    MediaFixtures::tools().mux(source, srt, output, 5, options);

    const QJsonArray tracks = mkvTracks(output);
    const QJsonObject added = tracks.last()[u"properties"].toObject();
    EXPECT_EQ(added.value(u"forced_track"), true);
    EXPECT_EQ(added.value(u"default_track"), false);
    // Everything the source said about its own tracks stays.
    const QJsonArray sourceTracks = mkvTracks(source);
    ASSERT_EQ(tracks.size(), sourceTracks.size() + 1);
    for (qsizetype i = 0; i < sourceTracks.size(); ++i)
        for (const char* key : {"default_track", "forced_track", "flag_hearing_impaired"})
            EXPECT_EQ(tracks[i][u"properties"][QLatin1String(key)],
                      sourceTracks[i][u"properties"][QLatin1String(key)])
                << i << key;
    EXPECT_EQ(tracks[2][u"properties"][u"default_track"], true);
    QDir(dir.path()).mkdir(QStringLiteral("x"));
    const QString extracted =
        MediaFixtures::tools().extract(MediaFixtures::tools().inspect(output).tracks.last(), output,
                                       dir.filePath(QStringLiteral("x")));
    EXPECT_EQ(readAll(extracted), readAll(srt)); // UTF-8 text arrives intact
}

TEST(FFmpeg, MuxIntoMp4EncodesTheNewTrackAsMovText) {
    QTemporaryDir dir;
    const QString source = dir.filePath(QStringLiteral("clip.mp4"));
    MediaFixtures::VideoRecipe recipe;
    recipe.subtitles = {subtitle(SubtitleFormat::movText, "eng")};
    MediaFixtures::writeVideo(source, recipe);
    const FFmpeg tools = MediaFixtures::tools();
    const QString srt = tools.extract(tools.inspect(source).tracks.value(0), source, dir.path());
    const QString output = dir.filePath(QStringLiteral("clip.es.mp4"));
    tools.mux(source, srt, output, 1, MuxOptions());

    const MediaInfo result = tools.inspect(output);
    ASSERT_EQ(result.tracks.size(), 2);
    EXPECT_EQ(result.tracks[1].codec, QStringLiteral("mov_text"));
    EXPECT_EQ(result.tracks[1].language, QStringLiteral("spa"));
    EXPECT_EQ(result.tracks[0].language, QStringLiteral("eng"));
    EXPECT_EQ(MediaFixtures::probeStreams(output).size(), 4); // video, audio, both subtitles
}

TEST(FFmpeg, FailedMuxLeavesNothingBehindAndNeverTouchesTheSource) {
    QTemporaryDir dir;
    const QString source = dir.filePath(QStringLiteral("in.mkv"));
    MediaFixtures::writeVideo(source, MediaFixtures::VideoRecipe());
    const QByteArray original = readAll(source);
    QDir(dir.path()).mkdir(QStringLiteral("out"));
    const QString output = dir.filePath(QStringLiteral("out/in.es.mkv"));
    try {
        MediaFixtures::tools().mux(source, dir.filePath(QStringLiteral("missing.srt")), output, 0,
                                   {});
        FAIL() << "expected a failure";
    } catch (const ShellError& error) {
        EXPECT_TRUE(error.description().startsWith(QStringLiteral("ffmpeg falló (código ")));
        EXPECT_TRUE(error.description().contains(QStringLiteral("missing.srt")));
    }
    EXPECT_EQ(entries(dir.filePath(QStringLiteral("out"))), QStringList());

    const QString srt = dir.filePath(QStringLiteral("es.srt"));
    MediaFixtures::writeFile(srt, MediaFixtures::srtText({QStringLiteral("Hola")}));
    try {
        MediaFixtures::tools().mux(source, srt, dir.filePath(QStringLiteral("out/../in.mkv")), 0,
                                   {});
        FAIL() << "expected a refusal";
    } catch (const FileError& error) {
        EXPECT_EQ(error.description(),
                  QStringLiteral("La salida no puede ser el mismo archivo que la entrada."));
    }
    EXPECT_EQ(readAll(source), original);
}

TEST(FFmpeg, CancelledMuxLeavesNeitherTemporaryNorOutput) {
    QTemporaryDir dir;
    const QString video = dir.filePath(QStringLiteral("in.mkv"));
    MediaFixtures::writeVideo(video, richMkv());
    const QString fifo = dir.filePath(QStringLiteral("stream.mkv"));
    const EndlessFifo feeder(fifo, readAll(video));
    const QString srt = dir.filePath(QStringLiteral("es.srt"));
    MediaFixtures::writeFile(srt, MediaFixtures::srtText({QStringLiteral("Hola")}));
    QDir(dir.path()).mkdir(QStringLiteral("out"));
    const QString outDir = dir.filePath(QStringLiteral("out"));

    std::stop_source stop;
    MuxOutcome outcome;
    std::jthread mux([&] {
        try {
            MediaFixtures::tools().mux(fifo, srt, outDir + QStringLiteral("/in.es.mkv"), 5, {},
                                       stop.get_token());
        } catch (const Cancelled&) {
            outcome.cancelled = true;
        }
    });
    // ffmpeg has opened the temporary output and now waits for more input that never comes.
    ASSERT_TRUE(eventually([&] { return !entries(outDir).isEmpty(); }));
    stop.request_stop();
    mux.join();
    EXPECT_TRUE(outcome.cancelled);
    EXPECT_EQ(entries(outDir), QStringList());
}

TEST(FFmpeg, KilledMuxLeavesNeitherTemporaryNorOutput) {
    QTemporaryDir dir;
    const QString video = dir.filePath(QStringLiteral("in.mkv"));
    MediaFixtures::writeVideo(video, richMkv());
    const QString fifo = dir.filePath(QStringLiteral("stream.mkv"));
    const EndlessFifo feeder(fifo, readAll(video));
    const QString srt = dir.filePath(QStringLiteral("es.srt"));
    MediaFixtures::writeFile(srt, MediaFixtures::srtText({QStringLiteral("Hola")}));
    QDir(dir.path()).mkdir(QStringLiteral("out"));
    const QString outDir = dir.filePath(QStringLiteral("out"));
    // The real ffmpeg under a wrapper that tells us its pid, so the test can kill it.
    const QString pidFile = dir.filePath(QStringLiteral("ffmpeg.pid"));
    const QString wrapper = writeShellScript(
        dir.filePath(QStringLiteral("ffmpeg")),
        QStringLiteral("'%1' \"$@\" &\necho $! > '%2.tmp'; mv '%2.tmp' '%2'\nwait $!")
            .arg(MediaFixtures::tools().ffmpeg, pidFile));

    MuxOutcome outcome;
    std::jthread mux([&] {
        try {
            FFmpeg{wrapper, wrapper}.mux(fifo, srt, outDir + QStringLiteral("/in.es.mkv"), 5, {});
        } catch (const ShellError& error) {
            outcome.failedStatus = error.status();
        }
    });
    ASSERT_TRUE(eventually([&] { return !entries(outDir).isEmpty() && QFile::exists(pidFile); }));
    ::kill(static_cast<pid_t>(readAll(pidFile).trimmed().toLongLong()), SIGKILL);
    mux.join();
    EXPECT_EQ(outcome.failedStatus, 128 + SIGKILL);
    EXPECT_EQ(entries(outDir), QStringList());
}
