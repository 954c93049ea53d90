#include "VeltoKit/core/BoundedTasks.h"

#include <algorithm>
#include <exception>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <vector>

#include "VeltoKit/core/VeltoError.h"

namespace velto {

BoundedTasks::BoundedTasks(qint64 concurrency)
    : m_concurrency(concurrency) {
    if (m_concurrency < 1)
        throw std::invalid_argument("BoundedTasks needs at least one thread");
}

void BoundedTasks::run(qsizetype count, const Task& task, std::stop_token stop) {
    // Requested by the caller, or by the first failure to halt its siblings.
    std::stop_source stopAll;
    const std::stop_callback followCaller(stop, [&stopAll] { stopAll.request_stop(); });
    const std::stop_token shared = stopAll.get_token();
    std::atomic<qsizetype> next = 0;
    std::mutex mutex;
    std::exception_ptr firstError;
    auto work = [&] {
        try {
            for (qsizetype k = next++; k < count && !shared.stop_requested() && !m_halted;
                 k = next++)
                task(k, shared);
        } catch (...) {
            // Recorded before the stop, so a sibling's Cancelled never takes its place.
            const std::lock_guard lock(mutex);
            if (!firstError)
                firstError = std::current_exception();
            stopAll.request_stop();
        }
    };
    {
        std::vector<std::jthread> workers;
        for (qint64 i = 0; i < std::min<qint64>(m_concurrency, count); ++i)
            workers.emplace_back(work);
    }
    if (firstError)
        std::rethrow_exception(firstError);
    throwIfStopped(stop);
}

} // namespace velto
