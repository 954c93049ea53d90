#pragma once

#include <atomic>
#include <functional>
#include <thread>

namespace velto::cli {

// Turns Ctrl-C (SIGINT, and SIGTERM, SIGHUP) into a call of `onInterrupt` on a thread of its
// own, so the job can be cancelled cleanly; a second one ends the process at once, still taking
// away what the job had on disk. A reader that closed the output cancels the same way. One per
// process.
class InterruptWatcher {
public:
    explicit InterruptWatcher(std::function<void()> onInterrupt);
    ~InterruptWatcher();
    InterruptWatcher(const InterruptWatcher&) = delete;
    InterruptWatcher& operator=(const InterruptWatcher&) = delete;

    bool interrupted() const { return m_interrupted.load(); }

private:
    void watch();
    void interrupt();
    void outputClosed();
#if defined(_WIN32)
    static int __stdcall onConsoleEvent(unsigned long event);
#endif

    std::function<void()> m_onInterrupt;
    std::atomic<bool> m_interrupted = false;
    std::thread m_thread;
};

} // namespace velto::cli
