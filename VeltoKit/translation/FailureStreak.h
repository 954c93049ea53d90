#pragma once

#include <mutex>

#include <QString>

namespace velto {

// Tells an engine that fails request after request from one that stumbles now and then. Each
// request already went through the engine's own retries; once `limit` of them in a row end in a
// failure, with no answer between them, asking again only repeats it (a 503 and a 502 taking
// turns are one outage).
// Thread-safe: every batch of a translation records into one streak.
class FailureStreak {
public:
    // limit must be at least 1.
    explicit FailureStreak(int limit);

    // The engine answered: the streak starts over.
    void answered();
    // The engine failed with `message`; true when this is the limit-th failure in a row.
    bool failed(const QString& message);
    // The engine's last failure, empty while it never failed.
    QString lastFailure() const;

private:
    mutable std::mutex m_mutex;
    int m_limit;
    int m_count = 0;
    QString m_last;
};

} // namespace velto
