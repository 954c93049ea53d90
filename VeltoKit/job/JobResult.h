#pragma once

#include <optional>

#include <QList>
#include <QString>
#include <QStringList>

#include "VeltoKit/job/QualityFinding.h"
#include "VeltoKit/media/SubtitleTrack.h"
#include "VeltoKit/translation/TokenUsage.h"

namespace velto {

// How a finished job ended.
struct JobResult {
    // The video written; empty when only the subtitle file was asked for.
    QString outputURL;
    // The subtitle file written beside the source, when one was asked for.
    std::optional<QString> sidecarURL;
    qint64 translatedCount = 0;
    // Removals reported by SDH stripping; 0 when stripping was off.
    qint64 removedDescriptions = 0;
    // Cues left in the original language because the engine failed on them.
    qint64 failedLines = 0;
    // In the order they arose.
    QStringList warnings;
    double elapsed = 0;
    // The subtitle tracks of the written file, probed again.
    QList<SubtitleTrack> finalTracks;
    // Cues a viewer would trip over, in cue order; `warnings` sums them up.
    QList<QualityFinding> qualityFindings;
    // What the engine's requests took, and what they cost in US dollars (absent when the
    // price is unknown).
    TokenUsage usage;
    qint64 requests = 0;
    std::optional<double> cost;

    // What a person looks for first: the video, else the subtitle file.
    const QString& written() const {
        return outputURL.isEmpty() && sidecarURL ? *sidecarURL : outputURL;
    }
};

} // namespace velto
