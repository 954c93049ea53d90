#pragma once

#include <optional>

#include <QString>

#include "VeltoKit/job/JobPlan.h"
#include "VeltoKit/job/JobResult.h"
#include "VeltoKit/job/JobUpdate.h"
#include "VeltoKit/media/MediaInfo.h"

namespace velto {

// One video of the queue: what the probe found, what the job will do with it, and how far it got.
struct QueueRow {
    enum class State { waiting, analysing, translating, done, skipped, failed, cancelled };

    // Stays with the video while rows are added, moved and removed around it.
    quint64 id = 0;
    QString source{};
    std::optional<MediaInfo> info{};
    // Made again whenever the track or «Traducir igual» changes; absent until probed.
    std::optional<JobPlan> plan{};
    // The track picked by hand; absent means the job's own choice.
    std::optional<qint64> chosenTrack{};
    State state = State::waiting;
    // The running job's last report.
    JobUpdate progress{};
    // Why it was skipped or failed, as the window says it.
    QString message{};
    std::optional<JobResult> result{};
    // Part of the run under way: it runs when its turn comes.
    bool queued = false;

    // Its job has begun or ended: its track and place are no longer the user's to change.
    bool started() const {
        return state != State::waiting && state != State::analysing && state != State::skipped;
    }
    // The job or probe working on it now.
    bool active() const { return state == State::analysing || state == State::translating; }
};

} // namespace velto
