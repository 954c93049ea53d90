#include "cli/TerminalText.h"

#include <atomic>
#include <cerrno>

#include <QByteArray>

#if defined(Q_OS_WIN)
#include <io.h>
#else
#include <sys/ioctl.h>
#include <unistd.h>
#endif

namespace velto::cli {

namespace {

std::atomic<bool> g_closed = false;

std::function<void()>& closedHandler() {
    static std::function<void()> handler;
    return handler;
}

} // namespace

void onClosedOutput(std::function<void()> handler) {
    closedHandler() = std::move(handler);
}

void markOutputClosed() {
    if (!g_closed.exchange(true) && closedHandler())
        closedHandler()();
}

bool outputClosed() {
    return g_closed.load();
}

void writeText(FILE* stream, const QString& text) {
    if (g_closed.load())
        return;
    const QByteArray bytes = text.toUtf8();
    const size_t size = static_cast<size_t>(bytes.size());
    errno = 0;
    if ((std::fwrite(bytes.constData(), 1, size, stream) == size && std::fflush(stream) == 0) ||
        errno != EPIPE)
        return;
    markOutputClosed();
}

bool isTerminal(FILE* stream) {
#if defined(Q_OS_WIN)
    return _isatty(_fileno(stream)) != 0;
#else
    return isatty(fileno(stream)) != 0;
#endif
}

QString fitToTerminal(const QString& line, FILE* stream) {
    qsizetype columns = 80;
#if !defined(Q_OS_WIN)
    winsize size{};
    if (ioctl(fileno(stream), TIOCGWINSZ, &size) == 0 && size.ws_col > 0)
        columns = size.ws_col;
#else
    Q_UNUSED(stream);
#endif
    return line.size() < columns ? line : line.left(columns - 2) + u'…';
}

} // namespace velto::cli
