#include "cli/TerminalText.h"

#include <QByteArray>

#if defined(Q_OS_WIN)
#include <io.h>
#else
#include <sys/ioctl.h>
#include <unistd.h>
#endif

namespace velto::cli {

void writeText(FILE* stream, const QString& text) {
    const QByteArray bytes = text.toUtf8();
    std::fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), stream);
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
