#include "cli/InterruptWatcher.h"

#include <csignal>
#include <cstdlib>

#if defined(_WIN32)
#include <windows.h>
#else
#include <unistd.h>
#endif

namespace velto::cli {
namespace {

InterruptWatcher* g_watcher = nullptr;

#if !defined(_WIN32)
constexpr char interruptByte = 'i';
constexpr char quitByte = 'q';

// A signal handler may only write to a pipe; the watcher thread does the rest.
int g_pipe[2] = {-1, -1};

extern "C" void onSignal(int) {
    const char byte = interruptByte;
    [[maybe_unused]] const auto written = write(g_pipe[1], &byte, 1);
}
#endif

} // namespace

void InterruptWatcher::interrupt() {
    // The second Ctrl-C is someone who does not want to wait for the clean-up.
    if (m_interrupted.exchange(true))
        std::_Exit(130);
    m_onInterrupt();
}

#if defined(_WIN32)

int __stdcall InterruptWatcher::onConsoleEvent(unsigned long) {
    if (g_watcher)
        g_watcher->interrupt();
    return TRUE;
}

InterruptWatcher::InterruptWatcher(std::function<void()> onInterrupt)
    : m_onInterrupt(std::move(onInterrupt)) {
    g_watcher = this;
    SetConsoleCtrlHandler(onConsoleEvent, TRUE);
}

InterruptWatcher::~InterruptWatcher() {
    SetConsoleCtrlHandler(onConsoleEvent, FALSE);
    g_watcher = nullptr;
}

void InterruptWatcher::watch() {}

#else

InterruptWatcher::InterruptWatcher(std::function<void()> onInterrupt)
    : m_onInterrupt(std::move(onInterrupt)) {
    if (g_watcher || pipe(g_pipe) != 0)
        return;
    g_watcher = this;
    struct sigaction action = {};
    action.sa_handler = onSignal;
    sigemptyset(&action.sa_mask);
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
    m_thread = std::thread([this] { watch(); });
}

InterruptWatcher::~InterruptWatcher() {
    if (!m_thread.joinable())
        return;
    signal(SIGINT, SIG_DFL);
    signal(SIGTERM, SIG_DFL);
    const char byte = quitByte;
    [[maybe_unused]] const auto written = write(g_pipe[1], &byte, 1);
    m_thread.join();
    close(g_pipe[0]);
    close(g_pipe[1]);
    g_watcher = nullptr;
}

void InterruptWatcher::watch() {
    char byte = 0;
    while (read(g_pipe[0], &byte, 1) == 1 && byte == interruptByte)
        interrupt();
}

#endif

} // namespace velto::cli
