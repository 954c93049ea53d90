#include "VeltoKit/engines/Retry.h"

#include <algorithm>
#include <condition_variable>

namespace velto::Retry {

std::chrono::seconds backoffDelay(int attempt) {
    return std::chrono::seconds(attempt >= 4 ? 16 : (1 << attempt));
}

std::chrono::seconds pauseAfter(int attempt, std::chrono::milliseconds requested) {
    const auto asked = std::chrono::ceil<std::chrono::seconds>(requested);
    return std::max(backoffDelay(attempt), std::min(asked, longestRequestedPause));
}

void cancellableWait(std::chrono::seconds duration, std::stop_token stop) {
    std::mutex mutex;
    std::unique_lock lock(mutex);
    cancellableWaitHolding(duration, std::move(stop), lock);
}

void cancellableWaitHolding(std::chrono::seconds duration, std::stop_token stop,
                            std::unique_lock<std::mutex>& lock) {
    std::condition_variable_any woken;
    woken.wait_for(lock, std::move(stop), duration, [] { return false; });
}

} // namespace velto::Retry
