#include "support/MediaFixtures.h"

#include <stdexcept>

#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QTemporaryDir>
#include <QTime>

#include "VeltoKit/media/Shell.h"

namespace velto::MediaFixtures {

using namespace Qt::StringLiterals;

namespace {

constexpr int cueLengthMs = 900;

[[noreturn]] void fail(const QString& message) {
    throw std::runtime_error(message.toStdString());
}

int cueStartMs(qsizetype i) {
    return 500 + static_cast<int>(i) * 1000;
}

QStringList words(const QString& text) {
    return text.split(u' ');
}

QByteArray bigEndian(quint32 value, int bytes) {
    QByteArray out;
    for (int shift = 8 * (bytes - 1); shift >= 0; shift -= 8)
        out += static_cast<char>((value >> shift) & 0xff);
    return out;
}

// One PGS segment: "PG", PTS (90 kHz), DTS, type, payload length, payload.
QByteArray segment(int ms, char type, const QByteArray& payload) {
    return "PG" + bigEndian(ms * 90, 4) + bigEndian(0, 4) + type +
           bigEndian(static_cast<quint32>(payload.size()), 2) + payload;
}

// Shows a 64x16 box of palette colour 1 at (100, 300) on a 720x480 screen, or clears it.
QByteArray displaySet(int ms, qsizetype number, bool show) {
    const QByteArray place = bigEndian(100, 2) + bigEndian(300, 2);
    // Screen, frame rate, number, epoch start or normal, no palette update, palette 0, objects.
    QByteArray composition = bigEndian(720, 2) + bigEndian(480, 2) + '\x10' +
                             bigEndian(static_cast<quint32>(number), 2) +
                             bigEndian(show ? 0x80000001 : 0, 4);
    if (show) // object 0 in window 0, uncropped
        composition += bigEndian(0, 4) + place;
    QByteArray set = segment(ms, 0x16, composition) +
                     segment(ms, 0x17, bigEndian(0x0100, 2) + place + bigEndian(0x00400010, 4));
    if (show) {
        // Palette 0: colour 0 transparent, colour 1 opaque white (Y, Cr, Cb, alpha).
        set += segment(ms, 0x14, QByteArray::fromHex("0000 00 10 80 80 00 01 eb 80 80 ff"));
        // Each line: a run of 64 pixels of colour 1, then end of line.
        const QByteArray data =
            bigEndian(0x00400010, 4) + QByteArray::fromHex("00c040010000").repeated(16);
        set += segment(ms, 0x15,
                       bigEndian(0x0000'00c0, 4) + bigEndian(static_cast<quint32>(data.size()), 3) +
                           data);
    }
    return set + segment(ms, char(0x80), {});
}

QByteArray pgsStream(qsizetype count) {
    QByteArray out;
    for (qsizetype i = 0; i < count; ++i)
        out += displaySet(cueStartMs(i), 2 * i, true) +
               displaySet(cueStartMs(i) + cueLengthMs, 2 * i + 1, false);
    return out;
}

QString disposition(const SubtitleRecipe& subtitle) {
    QStringList flags;
    for (const auto& [on, flag] :
         {std::pair(subtitle.isDefault, "default"), std::pair(subtitle.forced, "forced"),
          std::pair(subtitle.hearingImpaired, "hearing_impaired")})
        if (on)
            flags << QString::fromLatin1(flag);
    return flags.isEmpty() ? u"0"_s : flags.join(u'+');
}

ProcessResult runChecked(const QString& executable, const QStringList& arguments) {
    ProcessResult result = Shell::run(executable, arguments);
    if (result.status != 0)
        fail(QFileInfo(executable).fileName() + u" failed: "_s + result.standardError);
    return result;
}

} // namespace

QByteArray srtText(const QStringList& lines) {
    const auto clock = [](int ms) {
        return QTime::fromMSecsSinceStartOfDay(ms).toString(u"hh:mm:ss,zzz"_s);
    };
    QString text;
    for (qsizetype i = 0; i < lines.size(); ++i)
        text += u"%1\n%2 --> %3\n%4\n\n"_s.arg(i + 1).arg(
            clock(cueStartMs(i)), clock(cueStartMs(i) + cueLengthMs), lines[i]);
    return text.toUtf8();
}

void writeFile(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        fail(u"cannot write "_s + path);
}

QByteArray readFile(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void writeVideo(const QString& path, const VideoRecipe& recipe) {
    QTemporaryDir scratch;
    const QString suffix = QFileInfo(path).suffix().toLower();
    const bool mp4 = suffix == u"mp4" || suffix == u"mov" || suffix == u"m4v";
    const bool webm = suffix == u"webm";
    QStringList inputs = words(u"-y -v error -f lavfi -i testsrc=size=64x48:rate=10:duration=3 "
                               "-f lavfi -i sine=sample_rate=8000:duration=3"_s);
    // AAC's priming delay would make ffmpeg shift every Matroska timestamp; PCM has none.
    QStringList outputs = webm ? words(u"-map 0 -map 1 -c:v libvpx -deadline realtime -c:a "
                                       "libopus"_s)
                               : words(u"-map 0 -map 1 -c:v mpeg4 -c:a"_s)
                                     << (mp4 ? u"aac"_s : u"pcm_s16le"_s);
    static const QStringList codecs = {u"copy"_s,     u"ass"_s,  u"webvtt"_s,
                                       u"mov_text"_s, u"copy"_s, u"dvdsub"_s}; // by format
    for (qsizetype i = 0; i < recipe.subtitles.size(); ++i) {
        const SubtitleRecipe& subtitle = recipe.subtitles[i];
        const bool image = subtitle.format == SubtitleFormat::pgs ||
                           subtitle.format == SubtitleFormat::dvdSubtitle;
        const QString file = scratch.filePath(QString::number(i) + (image ? u".sup" : u".srt"));
        writeFile(file, !subtitle.contents.isEmpty() ? subtitle.contents
                        : image                      ? pgsStream(subtitle.lines.size())
                                                     : srtText(subtitle.lines));
        // PGS gives no end times; without this the DVD track would last 2^32 ms.
        if (subtitle.format == SubtitleFormat::dvdSubtitle)
            inputs << u"-fix_sub_duration"_s;
        inputs << u"-i"_s << file;
        const QString s = QString::number(i);
        const bool plain = subtitle.format == SubtitleFormat::srt;
        const QString codec = mp4 && plain    ? u"mov_text"_s
                              : webm && plain ? u"webvtt"_s
                                              : codecs[static_cast<int>(subtitle.format)];
        outputs << u"-map"_s << QString::number(i + 2) << u"-c:s:"_s + s << codec
                << u"-disposition:s:"_s + s << disposition(subtitle) << u"-metadata:s:s:"_s + s
                << u"language="_s + subtitle.language << u"-metadata:s:s:"_s + s
                << u"title="_s + subtitle.title;
    }
    if (recipe.chapters) {
        const QString file = scratch.filePath(u"chapters.txt"_s);
        writeFile(file, ";FFMETADATA1\n[CHAPTER]\nTIMEBASE=1/1000\nSTART=0\nEND=1000\ntitle=Uno\n"
                        "[CHAPTER]\nTIMEBASE=1/1000\nSTART=1000\nEND=2000\ntitle=Dos\n");
        inputs << u"-i"_s << file;
        outputs << u"-map_chapters"_s << QString::number(recipe.subtitles.size() + 2);
    }
    if (recipe.fontAttachment) {
        const QString file = scratch.filePath(u"VeltoSans.ttf"_s);
        writeFile(file, QByteArray(4096, '\x5a'));
        outputs << u"-attach"_s << file << u"-metadata:s:t"_s
                << u"mimetype=application/x-truetype-font"_s;
    }
    runChecked(tools().ffmpeg, inputs + outputs + QStringList{path});
}

FFmpeg tools() {
    static const std::optional<FFmpeg> located = FFmpeg::locate();
    if (!located)
        fail(u"ffmpeg and ffprobe are needed by the media tests"_s);
    return *located;
}

QJsonArray probeStreams(const QString& path) {
    const ProcessResult result =
        runChecked(tools().ffprobe, words(u"-v error -print_format json -show_streams"_s) << path);
    return QJsonDocument::fromJson(result.standardOutput.toUtf8())[u"streams"].toArray();
}

QString subtitleText(const QString& path, int n) {
    return runChecked(tools().ffmpeg, words(u"-v error -i"_s)
                                          << path << u"-map"_s << u"0:s:%1"_s.arg(n)
                                          << words(u"-f srt -"_s))
        .standardOutput;
}

QStringList describeTracks(const MediaInfo& info) {
    QStringList lines;
    for (const SubtitleTrack& track : info.tracks)
        lines << track.codec + u": "_s + track.summary();
    return lines;
}

QJsonObject mkvmergeIdentify(const QString& path) {
    static const std::optional<QString> mkvmerge = Shell::which(u"mkvmerge"_s);
    if (!mkvmerge)
        fail(u"mkvmerge (MKVToolNix) is needed by the media tests"_s);
    const ProcessResult result = Shell::run(*mkvmerge, {u"-J"_s, path});
    // mkvmerge exits 1 for warnings; 2 is an error.
    if (result.status > 1)
        fail(u"mkvmerge failed: "_s + result.standardOutput);
    return QJsonDocument::fromJson(result.standardOutput.toUtf8()).object();
}

} // namespace velto::MediaFixtures
