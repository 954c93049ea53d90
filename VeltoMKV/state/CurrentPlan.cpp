#include "VeltoMKV/state/CurrentPlan.h"

#include "VeltoKit/providers/Preferences.h"
#include "VeltoMKV/state/AppState.h"

namespace velto {

std::optional<JobPlan> currentPlan(const AppState& state, const Preferences& preferences) {
    if (!state.sourceURL() || !state.info())
        return std::nullopt;
    return JobPlan::make(
        *state.sourceURL(), *state.info(),
        preferences.makeJobOptions(state.outputURL(), state.selectedTrack(), state.force()));
}

} // namespace velto
