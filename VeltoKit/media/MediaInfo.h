#pragma once

#include <optional>

#include <QByteArray>
#include <QList>
#include <QString>

#include "VeltoKit/media/SubtitleTrack.h"

namespace velto {

// Whether a file already carries Spanish subtitles.
enum class SpanishStatus { none, forcedOnly, full };

// What one ffprobe run tells about a file's subtitle tracks.
struct MediaInfo {
    QString path;
    QList<SubtitleTrack> tracks;    // in stream order
    std::optional<double> duration; // seconds
    qint64 sizeBytes = 0;

    // Decodes the JSON of `ffprobe -print_format json -show_streams -show_format`.
    // Throws ShellError ("No pude leer la salida de ffprobe.") when it is not that JSON.
    static MediaInfo fromProbeJson(const QString& path, const QByteArray& json);

    SpanishStatus spanishStatus() const;
    // The best text track in `language` (a normalised code), else the best untagged one.
    // Full subtitles beat forced ones, plain beat SDH, more events beat fewer, a default
    // track beats the others, and then the first one wins.
    std::optional<SubtitleTrack> pickSource(const QString& language) const;
};

} // namespace velto
