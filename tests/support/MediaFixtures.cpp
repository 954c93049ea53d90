#include "support/MediaFixtures.h"

#include <stdexcept>

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QTemporaryDir>
#include <QtEndian>

#include "VeltoKit/media/Shell.h"

namespace velto::MediaFixtures {

namespace {

constexpr int cueStartMs = 500;
constexpr int cueStepMs = 1000;
constexpr int cueLengthMs = 900;

[[noreturn]] void fail(const QString& message) {
    throw std::runtime_error(message.toStdString());
}

QString clock(int ms, QChar fractionSeparator, int fractionDigits) {
    const int fraction = fractionDigits == 3 ? ms % 1000 : (ms % 1000) / 10;
    return QStringLiteral("%1:%2:%3%4%5")
        .arg(ms / 3600000, fractionDigits == 3 ? 2 : 1, 10, QLatin1Char('0'))
        .arg(ms / 60000 % 60, 2, 10, QLatin1Char('0'))
        .arg(ms / 1000 % 60, 2, 10, QLatin1Char('0'))
        .arg(fractionSeparator)
        .arg(fraction, fractionDigits, 10, QLatin1Char('0'));
}

int cueStart(qsizetype i) {
    return cueStartMs + static_cast<int>(i) * cueStepMs;
}

// PGS: one segment is "PG", PTS and DTS (90 kHz), type, payload length, payload.
void appendSegment(QByteArray& out, quint32 pts, quint8 type, const QByteArray& payload) {
    out += "PG";
    char header[11];
    qToBigEndian<quint32>(pts, header);
    qToBigEndian<quint32>(0, header + 4);
    header[8] = static_cast<char>(type);
    qToBigEndian<quint16>(static_cast<quint16>(payload.size()), header + 9);
    out.append(header, sizeof header);
    out += payload;
}

QByteArray bigEndian16(std::initializer_list<quint16> values) {
    QByteArray bytes;
    for (const quint16 value : values) {
        bytes += static_cast<char>(value >> 8);
        bytes += static_cast<char>(value & 0xff);
    }
    return bytes;
}

// A display set that shows a width x height box of palette colour 1, or clears the screen.
void appendDisplaySet(QByteArray& out, quint32 pts, quint16 composition, bool show) {
    constexpr quint16 width = 64, height = 16, x = 100, y = 300;
    QByteArray pcs = bigEndian16({720, 480}) + '\x10' + bigEndian16({composition});
    pcs += show ? '\x80' : '\x00';                               // epoch start / normal
    pcs += QByteArray("\x00\x00", 2) + (show ? '\x01' : '\x00'); // palette, object count
    if (show)
        pcs += bigEndian16({0}) + QByteArray("\x00\x00", 2) + bigEndian16({x, y});
    appendSegment(out, pts, 0x16, pcs);
    appendSegment(out, pts, 0x17,
                  QByteArray(1, '\x01') + '\x00' + bigEndian16({x, y, width, height}));
    if (show) {
        appendSegment(out, pts, 0x14,
                      QByteArray("\x00\x00"
                                 "\x00\x10\x80\x80\x00"
                                 "\x01\xeb\x80\x80\xff",
                                 12));
        QByteArray rle;
        for (int line = 0; line < height; ++line) // a run of colour 1, then end of line
            rle += QByteArray("\x00", 1) + char(0xc0 | (width >> 8)) + char(width & 0xff) +
                   QByteArray("\x01\x00\x00", 3);
        const QByteArray data = bigEndian16({width, height}) + rle;
        QByteArray ods = bigEndian16({0}) + QByteArray("\x00\xc0", 2);
        ods += char(data.size() >> 16) + bigEndian16({static_cast<quint16>(data.size() & 0xffff)});
        appendSegment(out, pts, 0x15, ods + data);
    }
    appendSegment(out, pts, 0x80, {});
}

struct Sidecar {
    QString fileName;
    QByteArray bytes;
    QString codec; // the -c:s value
};

Sidecar sidecarFor(const SubtitleRecipe& subtitle, bool mp4Family) {
    switch (subtitle.format) {
    case SubtitleFormat::srt:
        return {QStringLiteral("srt"), srtText(subtitle.lines),
                mp4Family ? QStringLiteral("mov_text") : QStringLiteral("copy")};
    case SubtitleFormat::ass:
        return {QStringLiteral("ass"), assText(subtitle.lines), QStringLiteral("copy")};
    case SubtitleFormat::webvtt:
        return {QStringLiteral("vtt"), webvttText(subtitle.lines), QStringLiteral("copy")};
    case SubtitleFormat::movText:
        return {QStringLiteral("srt"), srtText(subtitle.lines), QStringLiteral("mov_text")};
    case SubtitleFormat::pgs:
        return {QStringLiteral("sup"), pgsStream(static_cast<int>(subtitle.lines.size())),
                QStringLiteral("copy")};
    case SubtitleFormat::dvdSubtitle:
        return {QStringLiteral("sup"), pgsStream(static_cast<int>(subtitle.lines.size())),
                QStringLiteral("dvdsub")};
    }
    return {};
}

QString dispositionOf(const SubtitleRecipe& subtitle) {
    QStringList flags;
    if (subtitle.isDefault)
        flags << QStringLiteral("default");
    if (subtitle.forced)
        flags << QStringLiteral("forced");
    if (subtitle.hearingImpaired)
        flags << QStringLiteral("hearing_impaired");
    return flags.isEmpty() ? QStringLiteral("0") : flags.join(u'+');
}

ProcessResult runChecked(const QString& executable, const QStringList& arguments) {
    ProcessResult result = Shell::run(executable, arguments);
    if (result.status != 0)
        fail(QFileInfo(executable).fileName() + QStringLiteral(" failed: ") + result.standardError);
    return result;
}

} // namespace

QByteArray srtText(const QStringList& lines) {
    QString text;
    for (qsizetype i = 0; i < lines.size(); ++i)
        text += QString::number(i + 1) + u'\n' + clock(cueStart(i), u',', 3) +
                QStringLiteral(" --> ") + clock(cueStart(i) + cueLengthMs, u',', 3) + u'\n' +
                lines[i] + QStringLiteral("\n\n");
    return text.toUtf8();
}

QByteArray assText(const QStringList& lines) {
    QString text = QStringLiteral(
        "[Script Info]\nScriptType: v4.00+\nPlayResX: 384\nPlayResY: 288\n\n"
        "[V4+ Styles]\nFormat: Name, Fontname, Fontsize, PrimaryColour, SecondaryColour, "
        "OutlineColour, BackColour, Bold, Italic, Underline, StrikeOut, ScaleX, ScaleY, "
        "Spacing, Angle, BorderStyle, Outline, Shadow, Alignment, MarginL, MarginR, MarginV, "
        "Encoding\nStyle: Default,Velto Sans,20,&H00FFFFFF,&H000000FF,&H00000000,&H00000000,"
        "0,0,0,0,100,100,0,0,1,2,0,2,10,10,10,1\n\n"
        "[Events]\nFormat: Layer, Start, End, Style, Name, MarginL, MarginR, MarginV, Effect, "
        "Text\n");
    for (qsizetype i = 0; i < lines.size(); ++i)
        text += QStringLiteral("Dialogue: 0,") + clock(cueStart(i), u'.', 2) + u',' +
                clock(cueStart(i) + cueLengthMs, u'.', 2) + QStringLiteral(",Default,,0,0,0,,") +
                lines[i] + u'\n';
    return text.toUtf8();
}

QByteArray webvttText(const QStringList& lines) {
    QString text = QStringLiteral("WEBVTT\n\n");
    for (qsizetype i = 0; i < lines.size(); ++i)
        text += clock(cueStart(i), u'.', 3) + QStringLiteral(" --> ") +
                clock(cueStart(i) + cueLengthMs, u'.', 3) + u'\n' + lines[i] +
                QStringLiteral("\n\n");
    return text.toUtf8();
}

QByteArray pgsStream(int count) {
    QByteArray out;
    for (int i = 0; i < count; ++i) {
        const auto ticks = [](int ms) { return static_cast<quint32>(ms) * 90; };
        appendDisplaySet(out, ticks(cueStart(i)), static_cast<quint16>(2 * i), true);
        appendDisplaySet(out, ticks(cueStart(i) + cueLengthMs), static_cast<quint16>(2 * i + 1),
                         false);
    }
    return out;
}

void writeFile(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        fail(QStringLiteral("cannot write ") + path);
}

void writeVideo(const QString& path, const VideoRecipe& recipe) {
    QTemporaryDir scratch;
    const QString seconds = QString::number(recipe.seconds);
    const QString suffix = QFileInfo(path).suffix().toLower();
    const bool mp4Family = suffix == u"mp4" || suffix == u"mov" || suffix == u"m4v";
    QStringList inputs = {QStringLiteral("-f"), QStringLiteral("lavfi"), QStringLiteral("-i"),
                          QStringLiteral("testsrc=size=64x48:rate=10:duration=") + seconds};
    QStringList outputs = {QStringLiteral("-map"), QStringLiteral("0"), QStringLiteral("-c:v"),
                           QStringLiteral("mpeg4")};
    int inputCount = 1;
    if (recipe.audio) {
        // AAC's priming delay would make ffmpeg shift every Matroska timestamp; PCM has none.
        inputs << QStringLiteral("-f") << QStringLiteral("lavfi") << QStringLiteral("-i")
               << QStringLiteral("sine=frequency=440:sample_rate=8000:duration=") + seconds;
        outputs << QStringLiteral("-map") << QString::number(inputCount++) << QStringLiteral("-c:a")
                << (mp4Family ? QStringLiteral("aac") : QStringLiteral("pcm_s16le"));
    }
    for (qsizetype i = 0; i < recipe.subtitles.size(); ++i) {
        const SubtitleRecipe& subtitle = recipe.subtitles[i];
        Sidecar sidecar = sidecarFor(subtitle, mp4Family);
        if (!subtitle.contents.isEmpty())
            sidecar.bytes = subtitle.contents;
        const QString file =
            scratch.filePath(QStringLiteral("track%1.%2").arg(i).arg(sidecar.fileName));
        writeFile(file, sidecar.bytes);
        const QString s = QString::number(i);
        // PGS gives no end times; without this the DVD track would last 2^32 ms.
        if (subtitle.format == SubtitleFormat::dvdSubtitle)
            inputs << QStringLiteral("-fix_sub_duration");
        inputs << QStringLiteral("-i") << file;
        outputs << QStringLiteral("-map") << QString::number(inputCount++)
                << QStringLiteral("-c:s:") + s << sidecar.codec
                << QStringLiteral("-disposition:s:") + s << dispositionOf(subtitle);
        if (!subtitle.language.isEmpty())
            outputs << QStringLiteral("-metadata:s:s:") + s
                    << QStringLiteral("language=") + subtitle.language;
        if (!subtitle.title.isEmpty())
            outputs << QStringLiteral("-metadata:s:s:") + s
                    << QStringLiteral("title=") + subtitle.title;
    }
    if (recipe.chapters) {
        const QString file = scratch.filePath(QStringLiteral("chapters.txt"));
        writeFile(file, ";FFMETADATA1\n[CHAPTER]\nTIMEBASE=1/1000\nSTART=0\nEND=1000\ntitle=Uno\n"
                        "[CHAPTER]\nTIMEBASE=1/1000\nSTART=1000\nEND=2000\ntitle=Dos\n");
        inputs << QStringLiteral("-i") << file;
        outputs << QStringLiteral("-map_chapters") << QString::number(inputCount++);
    }
    if (recipe.fontAttachment) {
        const QString file = scratch.filePath(QStringLiteral("VeltoSans.ttf"));
        writeFile(file, QByteArray(4096, '\x5a'));
        outputs << QStringLiteral("-attach") << file << QStringLiteral("-metadata:s:t")
                << QStringLiteral("mimetype=application/x-truetype-font");
    }
    runChecked(tools().ffmpeg,
               QStringList{QStringLiteral("-y"), QStringLiteral("-v"), QStringLiteral("error")} +
                   inputs + outputs + QStringList{path});
}

FFmpeg tools() {
    static const std::optional<FFmpeg> located = FFmpeg::locate();
    if (!located)
        fail(QStringLiteral("ffmpeg and ffprobe are needed by the media tests"));
    return *located;
}

QJsonArray probeStreams(const QString& path) {
    const ProcessResult result =
        runChecked(tools().ffprobe,
                   {QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-print_format"),
                    QStringLiteral("json"), QStringLiteral("-show_streams"), path});
    return QJsonDocument::fromJson(result.standardOutput.toUtf8())
        .object()
        .value(u"streams")
        .toArray();
}

QJsonObject mkvmergeIdentify(const QString& path) {
    static const std::optional<QString> mkvmerge = Shell::which(QStringLiteral("mkvmerge"));
    if (!mkvmerge)
        fail(QStringLiteral("mkvmerge (MKVToolNix) is needed by the media tests"));
    const ProcessResult result = Shell::run(*mkvmerge, {QStringLiteral("-J"), path});
    // mkvmerge exits 1 for warnings; 2 is an error.
    if (result.status > 1)
        fail(QStringLiteral("mkvmerge failed: ") + result.standardOutput);
    return QJsonDocument::fromJson(result.standardOutput.toUtf8()).object();
}

} // namespace velto::MediaFixtures
