#pragma once

#include <atomic>
#include <functional>
#include <stop_token>

#include <QtGlobal>

namespace velto {

// Runs tasks 0, 1, … count - 1 on at most `concurrency` threads, each thread taking the next task
// as it ends one, and returns once every thread has ended. The first exception a task lets out
// stops the others (the token they were handed is requested) and is passed on at the end.
class BoundedTasks {
public:
    using Task = std::function<void(qsizetype index, std::stop_token stop)>;

    // concurrency must be at least 1 (std::invalid_argument otherwise).
    explicit BoundedTasks(qint64 concurrency);

    // Throws the first exception a task let out, else Cancelled when `stop` was requested.
    // Tasks end early on a stop as they see fit, Cancelled included.
    void run(qsizetype count, const Task& task, std::stop_token stop);

    // No task starts after this, in this run or a later one; those running end as they would.
    // Thread-safe: a task may call it, and so may anyone while run() waits.
    void halt() { m_halted = true; }

private:
    qint64 m_concurrency;
    std::atomic<bool> m_halted = false;
};

} // namespace velto
