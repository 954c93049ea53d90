#include "VeltoKit/translation/FailureStreak.h"

#include <algorithm>

namespace velto {

FailureStreak::FailureStreak(int limit)
    : m_limit(std::max(1, limit)) {}

void FailureStreak::answered() {
    const std::lock_guard lock(m_mutex);
    m_count = 0;
}

bool FailureStreak::failed(const QString& message) {
    const std::lock_guard lock(m_mutex);
    ++m_count;
    m_last = message;
    return m_count >= m_limit;
}

QString FailureStreak::lastFailure() const {
    const std::lock_guard lock(m_mutex);
    return m_last;
}

} // namespace velto
