#include "cli/KeyCommand.h"

#include <cstdio>
#include <iostream>
#include <string>

#if !defined(_WIN32)
#include <termios.h>
#include <unistd.h>
#endif

#include "VeltoKit/platform/Keychain.h"
#include "VeltoKit/platform/PlatformText.h"
#include "cli/CliRunner.h"
#include "cli/TerminalText.h"

namespace velto::cli {

namespace {

// Keeps a key typed or pasted at a terminal off the screen while it is read.
class HiddenInput {
public:
    HiddenInput() {
#if !defined(_WIN32)
        m_hidden = tcgetattr(STDIN_FILENO, &m_saved) == 0;
        if (m_hidden) {
            termios quiet = m_saved;
            quiet.c_lflag &= ~tcflag_t(ECHO);
            tcsetattr(STDIN_FILENO, TCSANOW, &quiet);
        }
#endif
    }
    ~HiddenInput() {
#if !defined(_WIN32)
        if (m_hidden)
            tcsetattr(STDIN_FILENO, TCSANOW, &m_saved);
#endif
    }
    HiddenInput(const HiddenInput&) = delete;
    HiddenInput& operator=(const HiddenInput&) = delete;

private:
#if !defined(_WIN32)
    termios m_saved{};
    bool m_hidden = false;
#endif
};

QString readKey(const Provider& provider) {
    if (!isTerminal(stdin)) {
        const std::string all{std::istreambuf_iterator<char>(std::cin),
                              std::istreambuf_iterator<char>()};
        QString key = QString::fromUtf8(all);
        if (key.endsWith(u'\n'))
            key.chop(key.endsWith(QStringLiteral("\r\n")) ? 2 : 1);
        return key;
    }
    writeText(stderr, QStringLiteral("Pegá la clave de ") + provider.name +
                          QStringLiteral(" y apretá Enter (no se va a ver): "));
    const HiddenInput hidden;
    std::string line;
    std::getline(std::cin, line);
    writeText(stderr, QStringLiteral("\n"));
    return QString::fromUtf8(line).remove(u'\r');
}

} // namespace

int storeKeyFromInput(const Provider& provider) {
    const QString key = readKey(provider);
    if (const std::optional<QString> unavailable = Keychain::unavailableReason()) {
        writeText(stderr, *unavailable + u'\n');
        return jobFailed;
    }
    Keychain::set(key, provider.id);
    if (key.isEmpty()) {
        writeText(stdout, QStringLiteral("Borré la clave de ") + provider.name + u'.' + u'\n');
        return success;
    }
    if (Keychain::get(provider.id) != key) {
        writeText(stderr, QStringLiteral("No pude guardar la clave en ") +
                              PlatformText::keychainName() + QStringLiteral(".\n"));
        return jobFailed;
    }
    writeText(stdout, QStringLiteral("Guardé la clave de ") + provider.name +
                          QStringLiteral(" en ") + PlatformText::keychainName() +
                          QStringLiteral(".\n"));
    return success;
}

} // namespace velto::cli
