#include "VeltoKit/media/FFmpeg.h"

#include <filesystem>
#include <system_error>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStorageInfo>
#include <QStringList>
#include <QUuid>

#include "VeltoKit/core/Leftovers.h"
#include "VeltoKit/core/VeltoError.h"
#include "VeltoKit/media/Shell.h"
#include "VeltoKit/media/ShellError.h"
#include "VeltoKit/media/SubtitleTrack.h"

namespace velto {

namespace {

constexpr int failureLines = 12;

bool isExecutableFile(const QString& path) {
    const QFileInfo info(path);
    return info.isFile() && info.isExecutable();
}

QString expandTilde(const QString& path) {
    if (path == u"~" || path.startsWith(QStringLiteral("~/")))
        return QDir::homePath() + path.mid(1);
    return path;
}

QString quoted(const QString& path) {
    return QStringLiteral("«") + QDir::toNativeSeparators(path) + QStringLiteral("»");
}

// An absolute path never reads as an option ("-trailer.mkv") or a protocol ("concat:a").
QString toolPath(const QString& path) {
    return QFileInfo(path).absoluteFilePath();
}

FileError diskFull(const QString& tool, const QString& folder) {
    return FileError(QStringLiteral("Se llenó el disco de la carpeta ") + quoted(folder) +
                     QStringLiteral(" mientras ") + tool +
                     QStringLiteral(" escribía. Liberá espacio y probá de nuevo."));
}

// ffmpeg may end well with an empty file when the disk filled up as it closed it.
bool looksFull(const QString& folder) {
    constexpr qint64 nearlyNothing = 1 << 20;
    const QStorageInfo storage(folder);
    return storage.isValid() && storage.bytesAvailable() < nearlyNothing;
}

// Runs one of the two tools; a non-zero exit becomes "<tool> falló (código N):\n<stderr>".
// `writing` is the folder the tool writes into, named when its disk fills up.
ProcessResult runTool(const QString& tool, const QString& executable, const QStringList& arguments,
                      std::stop_token stop, const QString& writing = {}) {
    if (executable.isEmpty())
        throw ShellError::notFound(tool);
    ProcessResult result = Shell::run(executable, arguments, {}, std::move(stop));
    if (result.killed)
        throw ShellError::killed(tool, result.status);
    if (result.status == 0)
        return result;
    if (!writing.isEmpty() && result.standardError.contains(u"No space left on device"))
        throw diskFull(tool, writing);
    throw ShellError::failed(tool, result.status,
                             Shell::lastLines(result.standardError.trimmed(), failureLines));
}

// Said in the user's words before ffprobe starts, which would say it in English.
void checkReadableFile(const QString& path) {
    const QFileInfo info(path);
    if (!info.exists())
        throw FileError(QStringLiteral("No encuentro el video ") + quoted(path) +
                        QStringLiteral("."));
    if (info.isDir())
        throw FileError(quoted(path) +
                        QStringLiteral(" es una carpeta. Elegí un archivo de video."));
    if (!info.isReadable())
        throw FileError(QStringLiteral("No tengo permiso para leer ") + quoted(path) +
                        QStringLiteral("."));
    // A pipe or a device would be read up by the probe and then found empty by the extraction.
    std::error_code error;
    if (!std::filesystem::is_regular_file(path.toStdU16String(), error))
        throw FileError(quoted(path) + QStringLiteral(" no es un archivo común (es una tubería o "
                                                      "un dispositivo). Elegí un archivo de "
                                                      "video."));
    if (info.size() == 0)
        throw FileError(
            quoted(path) +
            QStringLiteral(" está vacío (0 bytes): no es un video. Elegí otro archivo."));
}

bool copiesAsIs(const QString& codec) {
    static const QStringList copied = {QStringLiteral("subrip"), QStringLiteral("srt"),
                                       QStringLiteral("ass"), QStringLiteral("ssa")};
    return copied.contains(codec);
}

// MP4-family containers only take subtitles as mov_text.
bool needsMovText(const QFileInfo& output) {
    static const QStringList suffixes = {QStringLiteral("mp4"), QStringLiteral("mov"),
                                         QStringLiteral("m4v")};
    return suffixes.contains(output.suffix().toLower());
}

bool isMatroska(const QFileInfo& output) {
    const QString suffix = output.suffix().toLower();
    return suffix == u"mkv" || suffix == u"mk3d";
}

QString containerList() {
    return QStringLiteral(".mkv, .mp4, .m4v o .mov");
}

bool sameFile(const QString& a, const QString& b) {
    const QFileInfo first(a);
    const QFileInfo second(b);
    if (QDir::cleanPath(first.absoluteFilePath()) == QDir::cleanPath(second.absoluteFilePath()))
        return true;
    const QString canonical = first.canonicalFilePath();
    return !canonical.isEmpty() && canonical == second.canonicalFilePath();
}

// Hidden, unique, and with the output's extension: ffmpeg picks the container from it.
QString temporaryPathBeside(const QFileInfo& output) {
    const QString random = QUuid::createUuid().toString(QUuid::Id128).left(12);
    QString name = u'.' + output.completeBaseName() + QStringLiteral(".partial-") + random;
    if (!output.suffix().isEmpty())
        name += u'.' + output.suffix();
    return output.absoluteDir().filePath(name);
}

void moveIntoPlace(const QString& from, const QString& to) {
    std::error_code error;
    // Replaces an existing output, as "-y" would have.
    std::filesystem::rename(std::filesystem::path(from.toStdU16String()),
                            std::filesystem::path(to.toStdU16String()), error);
    if (error)
        throw FileError(QStringLiteral("No pude guardar el video como «") +
                        QFileInfo(to).fileName() +
                        QStringLiteral("». Revisá que se pueda escribir en esa carpeta."));
}

QStringList muxArguments(const QString& source, const QString& subtitle, const QString& output,
                         qint64 existingSubtitleCount, const MuxOptions& options, bool movText) {
    const QString n = QString::number(existingSubtitleCount);
    QStringList arguments = {QStringLiteral("-y"), QStringLiteral("-v"), QStringLiteral("error"),
                             QStringLiteral("-i"), source};
    if (QFileInfo(subtitle).suffix().toLower() == u"srt")
        arguments << QStringLiteral("-sub_charenc") << QStringLiteral("UTF-8");
    arguments << QStringLiteral("-i") << subtitle << QStringLiteral("-map") << QStringLiteral("0")
              << QStringLiteral("-map") << QStringLiteral("1:0") << QStringLiteral("-c")
              << QStringLiteral("copy");
    if (movText)
        arguments << QStringLiteral("-c:s:") + n << QStringLiteral("mov_text");
    arguments << QStringLiteral("-map_metadata") << QStringLiteral("0")
              << QStringLiteral("-map_chapters") << QStringLiteral("0");
    arguments << QStringLiteral("-metadata:s:s:") + n
              << QStringLiteral("language=") + options.language
              << QStringLiteral("-metadata:s:s:") + n << QStringLiteral("title=") + options.title;
    // MP4 keeps no track title; its handler name is where players and probes look instead.
    if (movText)
        arguments << QStringLiteral("-metadata:s:s:") + n
                  << QStringLiteral("handler_name=") + options.title;
    if (options.makeDefault) {
        for (qint64 i = 0; i < existingSubtitleCount; ++i)
            arguments << QStringLiteral("-disposition:s:") + QString::number(i)
                      << QStringLiteral("0");
        arguments << QStringLiteral("-disposition:s:") + n << QStringLiteral("default");
    } else {
        arguments << QStringLiteral("-disposition:s:") + n
                  << (options.forced ? QStringLiteral("forced") : QStringLiteral("0"));
    }
    arguments << output;
    return arguments;
}

} // namespace

std::optional<FFmpeg> FFmpeg::locate(const std::optional<QString>& preferredDirectory) {
    if (preferredDirectory && !preferredDirectory->isEmpty()) {
        const QDir directory(expandTilde(*preferredDirectory));
        FFmpeg tools{directory.filePath(QStringLiteral("ffmpeg")),
                     directory.filePath(QStringLiteral("ffprobe"))};
        if (isExecutableFile(tools.ffmpeg) && isExecutableFile(tools.ffprobe))
            return tools;
    }
    const auto ffmpeg = Shell::which(QStringLiteral("ffmpeg"));
    const auto ffprobe = Shell::which(QStringLiteral("ffprobe"));
    if (!ffmpeg || !ffprobe)
        return std::nullopt;
    return FFmpeg{*ffmpeg, *ffprobe};
}

QString FFmpeg::version(std::stop_token stop) const {
    if (ffmpeg.isEmpty())
        throw ShellError::notFound(QStringLiteral("ffmpeg"));
    const ProcessResult result =
        Shell::run(ffmpeg, {QStringLiteral("-version")}, {}, std::move(stop));
    const QString firstLine = result.standardOutput.section(u'\n', 0, 0).trimmed();
    return firstLine.isEmpty() ? QStringLiteral("desconocida") : firstLine;
}

MediaInfo FFmpeg::inspect(const QString& path, std::stop_token stop) const {
    checkReadableFile(path);
    const QStringList arguments = {
        QStringLiteral("-v"),   QStringLiteral("error"),         QStringLiteral("-print_format"),
        QStringLiteral("json"), QStringLiteral("-show_streams"), QStringLiteral("-select_streams"),
        QStringLiteral("s"),    QStringLiteral("-show_format"),  toolPath(path),
    };
    try {
        const ProcessResult result =
            runTool(QStringLiteral("ffprobe"), ffprobe, arguments, std::move(stop));
        return MediaInfo::fromProbeJson(path, result.standardOutput.toUtf8());
    } catch (const ShellError& error) {
        // ffprobe's word for "no container I know" (a text file, a truncated download...).
        if (error.kind() == ShellError::Kind::failed &&
            error.description().contains(u"Invalid data found when processing input"))
            throw FileError(quoted(path) +
                            QStringLiteral(" no es un video que pueda leer: su formato no se "
                                           "reconoce o el archivo está dañado. Elegí un archivo de "
                                           "video, por ejemplo un .mkv o un .mp4."));
        throw;
    }
}

QString FFmpeg::extract(const SubtitleTrack& track, const QString& source, const QString& directory,
                        std::stop_token stop) const {
    const QString index = QString::number(track.index);
    if (track.isBitmap())
        throw ShellError::failed(
            QStringLiteral("ffmpeg"), 1,
            QStringLiteral("La pista #") + index + QStringLiteral(" es de tipo imagen (") +
                track.codec +
                QStringLiteral("). Haría falta OCR para traducirla; VeltoMKV solo maneja "
                               "subtítulos de texto."));
    const bool ass = track.codec == u"ass" || track.codec == u"ssa";
    QString output =
        QDir(directory).filePath(QStringLiteral("source_") + index +
                                 (ass ? QStringLiteral(".ass") : QStringLiteral(".srt")));
    QStringList arguments = {
        QStringLiteral("-y"),        QStringLiteral("-v"), QStringLiteral("error"),
        QStringLiteral("-i"),        toolPath(source),     QStringLiteral("-map"),
        QStringLiteral("0:") + index};
    if (copiesAsIs(track.codec))
        arguments << QStringLiteral("-c:s") << QStringLiteral("copy");
    arguments << output;
    runTool(QStringLiteral("ffmpeg"), ffmpeg, arguments, std::move(stop), directory);
    // ffmpeg succeeds on a track without a single cue; the track is at fault, not the tool.
    if (QFileInfo(output).size() <= 0 && looksFull(directory))
        throw diskFull(QStringLiteral("ffmpeg"), directory);
    if (QFileInfo(output).size() <= 0)
        throw FileError(QStringLiteral("La pista #") + index +
                        QStringLiteral(" está vacía: no tiene ningún subtítulo para traducir. "
                                       "Elegí otra pista."));
    return output;
}

bool FFmpeg::writesContainer(const QString& extension) {
    const QFileInfo named(QStringLiteral("x.") + extension);
    return needsMovText(named) || isMatroska(named);
}

std::optional<QString> FFmpeg::outputProblem(const QString& output, const MediaInfo& source) {
    const QFileInfo info(output);
    if (info.isDir())
        return quoted(output) +
               QStringLiteral(" es una carpeta. Indicá también el nombre del "
                              "archivo a escribir en ella, terminado en ") +
               containerList() + u'.';
    const QString suffix = info.suffix();
    if (suffix.isEmpty())
        return QStringLiteral("A ") + quoted(output) +
               QStringLiteral(" le falta la extensión: terminá el nombre en ") + containerList() +
               u'.';
    const bool movText = needsMovText(info);
    if (!writesContainer(suffix))
        return QStringLiteral("No puedo escribir un video «.") + suffix +
               QStringLiteral("»: terminá el nombre en ") + containerList() + u'.';
    QStringList refused;
    for (const SubtitleTrack& track : source.tracks) {
        if ((track.codec == u"mov_text") != movText && !refused.contains(track.codec))
            refused.append(track.codec);
    }
    if (refused.isEmpty())
        return std::nullopt;
    if (!movText)
        return QStringLiteral("Un «.") + suffix +
               QStringLiteral("» no puede guardar las pistas mov_text de este video. Guardá el "
                              "resultado como .mp4.");
    return QStringLiteral("Un «.") + suffix +
           QStringLiteral("» solo guarda subtítulos mov_text y este video trae pistas ") +
           refused.join(QStringLiteral(", ")) + QStringLiteral(". Guardá el resultado como .mkv.");
}

void FFmpeg::mux(const QString& source, const QString& subtitle, const QString& output,
                 qint64 existingSubtitleCount, const MuxOptions& options,
                 std::stop_token stop) const {
    if (sameFile(source, output))
        throw FileError(QStringLiteral("La salida no puede ser el mismo archivo que la entrada."));
    const QFileInfo outputInfo(output);
    const QString temporary = temporaryPathBeside(outputInfo);
    const QStringList arguments =
        muxArguments(toolPath(source), toolPath(subtitle), temporary, existingSubtitleCount,
                     options, needsMovText(outputInfo));
    const Leftovers::Path listed(temporary);
    try {
        runTool(QStringLiteral("ffmpeg"), ffmpeg, arguments, std::move(stop),
                outputInfo.absolutePath());
        if (QFileInfo(temporary).size() <= 0 && looksFull(outputInfo.absolutePath()))
            throw diskFull(QStringLiteral("ffmpeg"), outputInfo.absolutePath());
        if (QFileInfo(temporary).size() <= 0)
            throw ShellError::failed(QStringLiteral("ffmpeg"), 1,
                                     QStringLiteral("El archivo de salida quedó vacío."));
        moveIntoPlace(temporary, output);
    } catch (...) {
        QFile::remove(temporary);
        throw;
    }
}

} // namespace velto
