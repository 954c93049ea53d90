#pragma once

#include <array>
#include <optional>

#include <QString>
#include <QStringView>

namespace velto {

// What a job writes: the copy of the video with the new track, that copy and a subtitle file
// beside it, or the subtitle file alone, for libraries whose videos must stay as they are and
// for containers the mux cannot write.
enum class JobOutputs : quint8 { video, videoAndSidecar, sidecarOnly };

// Every case, in the order pickers show them.
const std::array<JobOutputs, 3>& allJobOutputs();

// "video", "videoAndSidecar", "sidecarOnly": how a preference stores it.
QString rawValue(JobOutputs outputs);
// Exact match on the raw value only; anything else is none and the caller picks its default.
std::optional<JobOutputs> jobOutputsFromRawValue(QStringView raw);

bool writesVideo(JobOutputs outputs);
bool writesSidecar(JobOutputs outputs);

} // namespace velto
