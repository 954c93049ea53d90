#include "VeltoKit/engines/Retry.h"

#include <condition_variable>
#include <mutex>

namespace velto::Retry {

std::chrono::seconds backoffDelay(int attempt) {
    return std::chrono::seconds(attempt >= 4 ? 16 : (1 << attempt));
}

void cancellableWait(std::chrono::seconds duration, std::stop_token stop) {
    std::mutex mutex;
    std::condition_variable_any woken;
    std::unique_lock lock(mutex);
    woken.wait_for(lock, stop, duration, [] { return false; });
}

} // namespace velto::Retry
