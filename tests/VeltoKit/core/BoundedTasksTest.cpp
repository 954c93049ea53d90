#include "VeltoKit/core/BoundedTasks.h"

#include <condition_variable>
#include <mutex>
#include <stdexcept>

#include <gtest/gtest.h>

#include "VeltoKit/core/VeltoError.h"

using namespace velto;

namespace {

// Waits give up after a minute, so a pool that never lets the awaited moment happen fails
// instead of hanging.
constexpr auto patience = std::chrono::minutes(1);

// What the tasks of one test tell each other.
struct Shared {
    std::mutex mutex;
    std::condition_variable_any changed;
    int started = 0;
    int ended = 0;
    bool halted = false;
    // Announces a change, then waits for `ready`.
    bool await(std::unique_lock<std::mutex>& lock, const std::function<bool()>& ready) {
        changed.notify_all();
        return changed.wait_for(lock, patience, ready);
    }
};

} // namespace

TEST(BoundedTasks, RunsAsManyAtOnceAsAllowedAndNeverMore) {
    Shared shared;
    int inFlight = 0, peak = 0;
    BoundedTasks(3).run(12,
                        [&](qsizetype k, std::stop_token) {
                            std::unique_lock lock(shared.mutex);
                            peak = std::max(peak, ++inFlight);
                            ++shared.started;
                            // The first three wait for each other and end last to first; later ones
                            // stay until then, so one that started too early shows in the peak.
                            EXPECT_TRUE(shared.await(lock, [&] {
                                return k < 3 ? shared.started >= 3 && shared.ended == 2 - k
                                             : shared.ended >= 3;
                            }));
                            ++shared.ended;
                            --inFlight;
                            shared.changed.notify_all();
                        },
                        {});
    EXPECT_EQ(peak, 3);
    EXPECT_EQ(shared.ended, 12);
}

TEST(BoundedTasks, TheFirstFailureStopsTheOthersAndIsPassedOnOnceTheyEnded) {
    Shared shared;
    EXPECT_THROW(BoundedTasks(2).run(
                     10,
                     [&](qsizetype k, std::stop_token stop) {
                         std::unique_lock lock(shared.mutex);
                         ++shared.started;
                         EXPECT_TRUE(shared.await(lock, [&] { return shared.started >= 2; }));
                         if (k == 1)
                             throw std::runtime_error("roto");
                         // Task 0 holds until the failure stops it; its Cancelled is not the
                         // failure.
                         if (k == 0)
                             shared.changed.wait_for(lock, stop, patience, [] { return false; });
                         ++shared.ended;
                         throwIfStopped(stop);
                     },
                     {}),
                 std::runtime_error);
    EXPECT_EQ(shared.started, 2);
    EXPECT_EQ(shared.ended, 1);
}

TEST(BoundedTasks, AHaltLetsRunningTasksEndAndStartsNoOther) {
    Shared shared;
    BoundedTasks tasks(2);
    tasks.run(10,
              [&](qsizetype k, std::stop_token stop) {
                  std::unique_lock lock(shared.mutex);
                  ++shared.started;
                  EXPECT_TRUE(shared.await(lock, [&] { return shared.started >= 2; }));
                  // Task 0 is still running when task 1 halts.
                  if (k == 1) {
                      tasks.halt();
                      shared.halted = true;
                  }
                  EXPECT_TRUE(shared.await(lock, [&] { return shared.halted; }));
                  EXPECT_FALSE(stop.stop_requested());
              },
              {});
    EXPECT_EQ(shared.started, 2);
}

TEST(BoundedTasks, TheCallersStopReachesTheTasksAndEndsTheRunCancelled) {
    std::stop_source caller;
    int started = 0;
    EXPECT_THROW(BoundedTasks(1).run(
                     5,
                     [&](qsizetype, std::stop_token stop) {
                         ++started;
                         caller.request_stop();
                         EXPECT_TRUE(stop.stop_requested());
                     },
                     caller.get_token()),
                 Cancelled);
    EXPECT_EQ(started, 1);
}
