#pragma once

#include <chrono>
#include <optional>
#include <utility>

#include <QList>
#include <QtGlobal>

namespace velto {

struct CostEstimate;
struct TranslationProgress;

// A guess at how long a translation still needs, from the pace at which the engine's answers
// come back. Up to `concurrency` batches start together, so the first answers come while the
// rest are still on their way: there is no guess until that many came back. The pace is taken
// over the latest answers only, so a service that slows down (or speeds up) shows within a few
// batches. Between answers the guess counts down, until the wait outlasts a round: then the
// engine stalls, the wait counts as pace and the guess grows. Cache hits are no pace at all.
// Until the first round is back, the guess is the job's estimate, counted down.
class TimeLeft {
public:
    using Clock = std::chrono::steady_clock;

    explicit TimeLeft(qint64 concurrency);

    // One report of the translator, seen at `now`; the first one marks the start.
    void observe(const TranslationProgress& progress, Clock::time_point now);
    // The job's estimate as the translation starts at `now`: the guess until answers set a pace.
    void expect(const CostEstimate& estimate, Clock::time_point now);
    // Seconds still needed at `now`; none until the first batches have set a pace or an
    // estimate came.
    std::optional<double> secondsLeft(Clock::time_point now) const;

private:
    // How many cues the engine had settled (answered or given up) at a moment.
    struct Mark {
        Clock::time_point at;
        qint64 settled = 0;
    };

    qint64 m_concurrency;
    qint64 m_answers = 0;
    qint64 m_left = 0;
    // The start, then one mark per answer, the oldest dropped past the window.
    QList<Mark> m_marks;
    // The estimate's likely seconds, and when it was made.
    std::optional<std::pair<double, Clock::time_point>> m_expected;
};

} // namespace velto
