#include "VeltoMKV/state/TimeLeft.h"

#include <algorithm>

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

std::optional<double> TimeLeft::secondsLeft(Clock::time_point now) const {
    if (m_answers < m_concurrency)
        return std::nullopt;
    if (m_left == 0)
        return 0.0;
    const Mark& from = m_marks.first();
    const double seconds = std::chrono::duration<double>(now - from.at).count();
    const auto settled = static_cast<double>(m_marks.last().settled - from.settled);
    if (seconds <= 0 || settled <= 0)
        return std::nullopt;
    return static_cast<double>(m_left) * seconds / settled;
}

} // namespace velto
