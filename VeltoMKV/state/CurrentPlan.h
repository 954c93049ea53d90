#pragma once

#include <optional>

#include "VeltoKit/job/JobPlan.h"

namespace velto {

class AppState;
class Preferences;

// The plan of the job the window would start now: the open file, its chosen track and output,
// and the options as they stand. None while no file has been probed.
std::optional<JobPlan> currentPlan(const AppState& state, const Preferences& preferences);

} // namespace velto
