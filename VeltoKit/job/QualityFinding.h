#pragma once

#include <optional>

#include <QList>
#include <QString>

namespace velto {

// What a viewer would trip over in one translated cue.
enum class QualityIssue {
    untranslated, // still reads as its source
    lost,         // empty, or far shorter than its source
    readingSpeed, // more than 20 characters per second on screen
    lineLength,   // a line over 42 characters, or more than two lines
    names,        // lacks a listed name or term as the list asks for it
};

// One translated cue as the written track holds it.
struct CheckedCue {
    // Position in the track, from 1: what a subtitle editor shows for a track cut out of a video.
    qint64 number = 0;
    // Absent when the times could not be read.
    std::optional<qint64> startMs{};
    std::optional<qint64> endMs{};
    // Both texts as written in the file, tags included.
    QString source{};
    QString translation{};
};

struct QualityFinding {
    QualityIssue issue = QualityIssue::untranslated;
    CheckedCue cue{};
};

} // namespace velto
