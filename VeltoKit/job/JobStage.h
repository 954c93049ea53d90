#pragma once

#include <QString>

namespace velto {

// Where a job is. The declaration order is the ordinal, not the order a job runs through
// (stripping runs before checking, reviewing right after translating).
enum class JobStage : quint8 {
    analyzing,
    extracting,
    checking,
    translating,
    rebuilding,
    stripping,
    muxing,
    verifying,
    done,
    // Cues that came back wrong asked again, one by one, after the translation.
    reviewing,
};

// The position in the declaration order, from 0.
constexpr int ordinal(JobStage stage) {
    return static_cast<int>(stage);
}

// The Spanish label shown to the user; it is also the stage's raw value.
QString label(JobStage stage);
// The case's own name ("translating"), for machine-readable output.
QString caseName(JobStage stage);

} // namespace velto
