#include "cli/InterruptWatcher.h"

#include <csignal>
#include <cstdlib>

#include "VeltoKit/core/Leftovers.h"
#include "cli/TerminalText.h"

#if defined(_WIN32)
#include <windows.h>
#else
#include <cerrno>
#include <poll.h>
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
    // The second Ctrl-C is someone who does not want to wait for the tools to wind down.
    if (m_interrupted.exchange(true)) {
        Leftovers::removeNow();
        std::_Exit(130);
    }
    m_onInterrupt();
}

void InterruptWatcher::outputClosed() {
    if (!m_interrupted.exchange(true))
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
    for (const int signalNumber : {SIGINT, SIGTERM, SIGHUP})
        sigaction(signalNumber, &action, nullptr);
    // A closed reader then shows up as a failed write, which cancels like Ctrl-C, instead of
    // killing the process before it removed its files.
    signal(SIGPIPE, SIG_IGN);
    onClosedOutput([this] { outputClosed(); });
    m_thread = std::thread([this] { watch(); });
}

InterruptWatcher::~InterruptWatcher() {
    if (!m_thread.joinable())
        return;
    for (const int signalNumber : {SIGINT, SIGTERM, SIGHUP})
        signal(signalNumber, SIG_DFL);
    const char byte = quitByte;
    [[maybe_unused]] const auto written = write(g_pipe[1], &byte, 1);
    m_thread.join();
    onClosedOutput({});
    close(g_pipe[0]);
    close(g_pipe[1]);
    g_watcher = nullptr;
}

void InterruptWatcher::watch() {
    // Standard output is watched too: a reader that quits in the middle of a long mux is heard
    // at once, not at the next line written.
    pollfd watched[] = {{g_pipe[0], POLLIN, 0}, {STDOUT_FILENO, 0, 0}};
    while (true) {
        if (poll(watched, 2, -1) < 0) {
            if (errno == EINTR)
                continue;
            return;
        }
        // An output closed before the start (POLLNVAL) is no reader leaving; it is just let be.
        if (watched[1].revents & (POLLERR | POLLHUP | POLLNVAL)) {
            watched[1].fd = -1;
            if (!(watched[1].revents & POLLNVAL))
                markOutputClosed();
        }
        char byte = 0;
        if (watched[0].revents & POLLIN) {
            if (read(g_pipe[0], &byte, 1) != 1 || byte != interruptByte)
                return;
            interrupt();
        }
    }
}

#endif

} // namespace velto::cli
