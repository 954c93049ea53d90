#include "VeltoMKV/state/TimeLeft.h"

#include <algorithm>

#include "VeltoKit/job/CostEstimate.h"
#include "VeltoKit/translation/TranslationProgress.h"

namespace velto {

namespace {
// Answers the pace is taken over, in whole rounds of `concurrency`: batches that started
// together come back together, and a window of whole rounds spans whole batch times.
constexpr qint64 roundsInWindow = 4;
} // namespace

TimeLeft::TimeLeft(qint64 concurrency)
    : m_concurrency(std::max<qint64>(concurrency, 1)) {}

void TimeLeft::observe(const TranslationProgress& progress, Clock::time_point now) {
    m_left = std::max<qint64>(progress.total - progress.done, 0);
    const qint64 settled = progress.done - progress.cached;
    if (m_marks.isEmpty()) {
        m_marks.append({now, settled});
        return;
    }
    if (settled <= m_marks.last().settled)
        return;
    ++m_answers;
    m_marks.append({now, settled});
    while (m_marks.size() > roundsInWindow * m_concurrency + 1)
        m_marks.removeFirst();
}

void TimeLeft::expect(const CostEstimate& estimate, Clock::time_point now) {
    // The middle of the range: the low end assumes the fastest service, the high end the slowest.
    m_expected = {(estimate.secondsLow + estimate.secondsHigh) / 2, now};
}

std::optional<double> TimeLeft::secondsLeft(Clock::time_point now) const {
    if (m_answers < m_concurrency) {
        if (!m_expected)
            return std::nullopt;
        const double spent = std::chrono::duration<double>(now - m_expected->second).count();
        return std::max(m_expected->first - spent, 0.0);
    }
    if (m_left == 0)
        return 0.0;
    const auto seconds = [](Clock::duration span) {
        return std::chrono::duration<double>(span).count();
    };
    const Mark& from = m_marks.first();
    const Mark& last = m_marks.last();
    const double span = seconds(last.at - from.at);
    const auto settled = static_cast<double>(last.settled - from.settled);
    if (span <= 0 || settled <= 0)
        return std::nullopt;
    const double sinceLast = seconds(now - last.at);
    // Between answers the guess counts down; answers come in rounds, and measuring the pace up
    // to now would make it grow between them and fall at each one.
    const double round =
        span / static_cast<double>(m_marks.size() - 1) * static_cast<double>(m_concurrency);
    if (sinceLast <= round)
        return std::max(static_cast<double>(m_left) * span / settled - sinceLast, 0.0);
    // No answer for longer than a round takes: the engine stalls, and the wait counts as pace.
    return static_cast<double>(m_left) * (span + sinceLast) / settled;
}

} // namespace velto
