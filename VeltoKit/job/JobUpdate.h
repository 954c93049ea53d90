#pragma once

#include <optional>

#include <QString>

#include "VeltoKit/job/CostEstimate.h"
#include "VeltoKit/job/JobStage.h"
#include "VeltoKit/translation/TranslationProgress.h"

namespace velto {

// One progress event of a running job.
struct JobUpdate {
    JobStage stage = JobStage::analyzing;
    // A free line under the stage label: the track, the counts, the engine's name.
    QString detail;
    // Fraction of the stage's work done, 0...1; absent when no fraction is known.
    std::optional<double> progress;
    // On the reports of the translation: the translator's own counts and the cues that just
    // arrived, for a front end that words them itself or shows them as they come.
    std::optional<TranslationProgress> translation{};
    // Once, as the translation starts: what the requests still to send will take.
    std::optional<CostEstimate> estimate{};

    bool operator==(const JobUpdate&) const = default;
};

// The stage's label for this update: the muxing stage names the container actually written
// ("Escribiendo el MP4"), which its fixed label calls MKV.
QString label(const JobUpdate& update);

} // namespace velto
