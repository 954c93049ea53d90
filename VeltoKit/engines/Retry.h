#pragma once

#include <chrono>
#include <cstdlib>
#include <exception>
#include <functional>
#include <mutex>
#include <stop_token>

#include "VeltoKit/translation/TranslationError.h"

namespace velto::Retry {

// Waits between attempts; tests inject one that records instead of sleeping.
using Wait = std::function<void(std::chrono::seconds, std::stop_token)>;

// Sleeps, waking early when a stop is requested.
void cancellableWait(std::chrono::seconds duration, std::stop_token stop);
// The same wait on the caller's locked mutex, released while asleep: whoever takes the mutex
// and then requests the stop knows the wait was already under way.
void cancellableWaitHolding(std::chrono::seconds duration, std::stop_token stop,
                            std::unique_lock<std::mutex>& lock);

// The pause after the failure of attempt number `attempt` (0-based): 1, 2, 4, 8, 16, 16... s.
std::chrono::seconds backoffDelay(int attempt);
// The longest a service may ask to be left alone before the next attempt.
constexpr std::chrono::seconds longestRequestedPause{60};
// The back-off, or the pause the failure asked for when longer (whole seconds, at most
// longestRequestedPause).
std::chrono::seconds pauseAfter(int attempt, std::chrono::milliseconds requested);

// Calls operation(attempt) up to `attempts` times. A fatal TranslationError ends the loop at
// once; any other error is retried after a back-off, lengthened to the pause the service asked
// for, and the last one is rethrown unchanged.
// `stop` cuts a wait short; an interrupted wait is not an error, the next attempt surfaces the
// cancellation.
template <typename Operation>
auto withBackoff(int attempts, Operation&& operation, std::stop_token stop,
                 const Wait& wait = cancellableWait) -> decltype(operation(0)) {
    if (attempts < 0)
        std::abort();
    if (attempts == 0)
        throw TranslationError::transient(QStringLiteral("Fallo desconocido"));
    for (int attempt = 0;; ++attempt) {
        std::chrono::milliseconds requested{0};
        try {
            return operation(attempt);
        } catch (const TranslationError& error) {
            if (error.isFatal() || attempt == attempts - 1)
                throw;
            requested = error.requestedPause();
        } catch (...) {
            if (attempt == attempts - 1)
                throw;
        }
        wait(pauseAfter(attempt, requested), stop);
    }
}

} // namespace velto::Retry
