#pragma once

#include <optional>
#include <stop_token>

#include <QString>

#include "VeltoKit/media/MediaInfo.h"
#include "VeltoKit/media/MuxOptions.h"

namespace velto {

// The two media tools, by location. Every operation runs them as child processes without a
// time limit, so a hung tool ends only when `stop` is requested (then Cancelled is thrown).
// Failures are ShellError with the tool's last lines of standard error.
struct FFmpeg {
    QString ffmpeg;
    QString ffprobe;

    // Both tools from `preferredDirectory` when it holds both, else from Shell::which.
    static std::optional<FFmpeg> locate(const std::optional<QString>& preferredDirectory = {});

    // First line of `ffmpeg -version`, or "desconocida".
    QString version(std::stop_token stop = {}) const;

    // The subtitle streams of `path`, its duration and size.
    MediaInfo inspect(const QString& path, std::stop_token stop = {}) const;

    // Copies `track` out of `source` into `directory`/source_<index>.srt (.ass for ASS/SSA;
    // other text formats are converted to SRT) and returns that path. Image tracks are refused
    // before anything runs.
    QString extract(const SubtitleTrack& track, const QString& source, const QString& directory,
                    std::stop_token stop = {}) const;

    // Why `output` cannot receive a copy of the file `source` describes, in the user's words:
    // a folder, no extension, a container the mux does not write, or one that cannot hold the
    // source's subtitle tracks as they are. None when the mux can write it.
    static std::optional<QString> outputProblem(const QString& output, const MediaInfo& source);
    // Whether the mux writes a container with this file extension ("mkv", "MP4"...).
    static bool writesContainer(const QString& extension);

    // Writes `output`: every stream, chapter and tag of `source` copied, plus `subtitle` as one
    // more subtitle track (numbered `existingSubtitleCount` among the subtitle streams). The
    // file is written under a hidden temporary name beside `output` and renamed into place
    // only when complete; a failure or cancellation removes it. MP4/MOV/M4V outputs get the new
    // track as mov_text, the format those containers accept. With options.makeDefault every
    // older subtitle track loses all its flags (default, forced, SDH), as ffmpeg's "0" does.
    // Throws FileError when `output` is `source` itself.
    void mux(const QString& source, const QString& subtitle, const QString& output,
             qint64 existingSubtitleCount, const MuxOptions& options,
             std::stop_token stop = {}) const;
};

} // namespace velto
