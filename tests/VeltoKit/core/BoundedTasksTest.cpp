#include "VeltoKit/core/BoundedTasks.h"

#include <condition_variable>
#include <mutex>
#include <stdexcept>

#include <gtest/gtest.h>

#include "VeltoKit/core/VeltoError.h"

using namespace velto;

namespace {

// What the tasks of one run tell each other; waits give up after a minute rather than hang.
struct Meeting {
    std::mutex mutex;
    std::condition_variable_any changed;
    int started = 0;
    int ended = 0;
    bool halted = false;
    // Announces a change, then waits for `ready` or a stop.
    bool await(std::unique_lock<std::mutex>& lock, const std::function<bool()>& ready,
               std::stop_token stop = {}) {
        changed.notify_all();
        return changed.wait_for(lock, stop, std::chrono::minutes(1), ready);
    }
};

} // namespace

TEST(BoundedTasks, RunsAsManyAtOnceAsAllowedAndNeverMore) {
    Meeting m;
    int inFlight = 0, peak = 0;
    auto task = [&](qsizetype k, std::stop_token) {
        std::unique_lock lock(m.mutex);
        peak = std::max(peak, ++inFlight);
        ++m.started;
        // The first three wait for each other and end last to first; later ones stay until then,
        // so one that started too early shows in the peak.
        EXPECT_TRUE(m.await(
            lock, [&] { return k < 3 ? m.started >= 3 && m.ended == 2 - k : m.ended >= 3; }));
        ++m.ended;
        --inFlight;
        m.changed.notify_all();
    };
    BoundedTasks(3).run(12, task, {});
    EXPECT_EQ(peak, 3);
}

// Task 1 fails, halts or cancels the run while task 0 runs. A failure or a cancel stops task 0 and
// ends the run, once task 0 ended; a halt lets task 0 end as it would. None starts another task.
TEST(BoundedTasks, AFailureOrACancelStopsTheRunningTasksAHaltOnlyStartsNoMore) {
    enum { fail, halt, cancel };
    for (const int mode : {fail, halt, cancel}) {
        Meeting m;
        std::stop_source caller;
        BoundedTasks tasks(2);
        auto task = [&](qsizetype k, std::stop_token stop) {
            std::unique_lock lock(m.mutex);
            ++m.started;
            EXPECT_TRUE(m.await(lock, [&] { return m.started >= 2; }));
            if (k == 1 && mode == fail)
                throw std::runtime_error("roto");
            if (k == 1)
                mode == halt ? tasks.halt() : void(caller.request_stop());
            m.halted = m.halted || k == 1;
            m.await(
                lock, [&] { return m.halted; }, stop);
            EXPECT_EQ(stop.stop_requested(), mode != halt);
            ++m.ended;
        };
        try {
            tasks.run(10, task, caller.get_token());
            EXPECT_EQ(mode, halt);
        } catch (const std::runtime_error&) {
            EXPECT_EQ(mode, fail);
        } catch (const Cancelled&) {
            EXPECT_EQ(mode, cancel);
        }
        EXPECT_EQ(m.started, 2);
        EXPECT_EQ(m.ended, mode == fail ? 1 : 2);
    }
}
