#include "VeltoKit/engines/ClaudeCLIBackend.h"

#include <QDir>
#include <QFileInfo>
#include <QStringView>
#include <QUuid>

#include "VeltoKit/core/OwnerOnly.h"
#include "VeltoKit/core/VeltoError.h"
#include "VeltoKit/media/Shell.h"
#include "VeltoKit/translation/TranslationError.h"

namespace velto {

namespace {

// Enough of a failure to recognise it and show it; the CLI may print a whole stack trace.
constexpr qsizetype detailLimit = 600;

struct KnownFailure {
    QStringView needle; // lower case
    QStringView message;
};

// Searched in this order: an answer that asks for /login and mentions a key is a login problem.
constexpr KnownFailure knownFailures[] = {
    {u"not logged in", u"El CLI de Claude no tiene sesión iniciada."},
    {u"please run /login", u"El CLI de Claude no tiene sesión iniciada."},
    {u"invalid api key", u"La API key configurada no es válida."},
    {u"authentication_error", u"Falló la autenticación del CLI de Claude."},
    {u"no known tool", u"Los flags de herramientas del CLI cambiaron."},
    {u"unknown option", u"Este CLI de Claude no acepta alguno de los flags usados."},
    {u"credit balance", u"La cuenta no tiene crédito disponible."},
};

// Appended to every known failure, those not about the login too: running «claude» by hand is
// how the user sees and mends any of them.
constexpr QStringView loginAdvice = u"Abrí la Terminal, ejecutá «claude» y hacé «/login» una vez. "
                                    u"Después volvé y probá de nuevo.";

// A fresh folder for one run, so the CLI never sees the user's files; removed with everything
// in it when the run ends, however it ends.
class ScratchFolder {
public:
    ScratchFolder()
        : m_path(QDir(QDir::tempPath())
                     .filePath(QStringLiteral("veltomkv-cli-") +
                               QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper())) {
        if (!OwnerOnly::makeFolder(m_path)) {
            throw FileError(QStringLiteral("No pude crear la carpeta temporal «") + m_path +
                            QStringLiteral("»."));
        }
    }
    ~ScratchFolder() { QDir(m_path).removeRecursively(); }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    const QString& path() const { return m_path; }

private:
    QString m_path;
};

std::optional<QString> executableFile(const QString& path) {
    const QFileInfo info(path);
    if (info.isFile() && info.isExecutable())
        return info.absoluteFilePath();
    return std::nullopt;
}

// A wrong preferred path is not an error: the caller falls back to searching.
std::optional<QString> preferredBinary(const QString& preferredPath) {
    QString path = preferredPath.trimmed();
    if (path.isEmpty())
        return std::nullopt;
    if (path == u"~" || path.startsWith(u"~/"))
        path = QDir::homePath() + path.sliced(1);
    if (auto file = executableFile(path))
        return file;
    return executableFile(QDir(path).filePath(QStringLiteral("claude")));
}

TranslationError exitFailure(const ProcessResult& result) {
    // A signal's number is no exit code, and a killed program leaves no detail to quote.
    if (result.killed) {
        return TranslationError::transient(
            QStringLiteral("claude se cortó antes de terminar: lo detuvo la señal ") +
            QString::number(result.status) + u'.');
    }
    const QString& output =
        result.standardError.isEmpty() ? result.standardOutput : result.standardError;
    const QString detail = output.trimmed().left(detailLimit);
    const QString lowered = detail.toLower();
    for (const KnownFailure& known : knownFailures) {
        if (lowered.contains(known.needle)) {
            return TranslationError::fatal(known.message.toString() + u'\n' + loginAdvice +
                                           QStringLiteral("\n\nDetalle: ") + detail);
        }
    }
    return TranslationError::transient(QStringLiteral("claude terminó con código ") +
                                       QString::number(result.status) + QStringLiteral(": ") +
                                       detail);
}

} // namespace

ClaudeCLIBackend::ClaudeCLIBackend(QString binary, QString model, double timeout)
    : m_binary(std::move(binary))
    , m_model(std::move(model))
    , m_timeout(timeout) {}

std::optional<QString> ClaudeCLIBackend::locate(const QString& preferredPath) {
    if (auto preferred = preferredBinary(preferredPath))
        return preferred;
    return Shell::which(QStringLiteral("claude"));
}

std::optional<QString> ClaudeCLIBackend::locate(const QString& preferredPath,
                                                const QStringList& searchDirectories) {
    if (auto preferred = preferredBinary(preferredPath))
        return preferred;
    return Shell::which(QStringLiteral("claude"), searchDirectories);
}

QString ClaudeCLIBackend::label() const {
    return QStringLiteral("Claude Code (CLI)");
}

QString ClaudeCLIBackend::cacheScope() const {
    return label() + u'|' + m_model;
}

// Print mode with every tool, slash command, MCP server and saved session off: the CLI only
// answers the prompt. The model is passed even when empty.
QStringList ClaudeCLIBackend::arguments(const QString& system) const {
    return {QStringLiteral("-p"),
            QStringLiteral("--output-format"),
            QStringLiteral("text"),
            QStringLiteral("--model"),
            m_model,
            QStringLiteral("--system-prompt"),
            system,
            QStringLiteral("--permission-mode"),
            QStringLiteral("default"),
            QStringLiteral("--disallowed-tools"),
            QStringLiteral("Bash Read Write Edit Glob Grep WebFetch WebSearch NotebookEdit Task "
                           "TodoWrite"),
            QStringLiteral("--disable-slash-commands"),
            QStringLiteral("--no-session-persistence"),
            QStringLiteral("--strict-mcp-config")};
}

QString ClaudeCLIBackend::complete(const QString& system, const QString& prompt,
                                   std::stop_token stop) const {
    const ScratchFolder scratch;
    ShellRunOptions options;
    options.standardInput = prompt.toUtf8();
    options.workingDirectory = scratch.path();
    options.timeoutSeconds = m_timeout;
    options.loginShellPath = true;
    ProcessResult result;
    try {
        result = Shell::run(m_binary, arguments(system), options, std::move(stop));
    } catch (const VeltoError& error) {
        // Cancelled is no VeltoError and passes through as it is: a cancel is never a failure.
        throw TranslationError::transient(QStringLiteral("No pude ejecutar el CLI de Claude: ") +
                                          error.description());
    }
    if (result.status != 0)
        throw exitFailure(result);
    QString answer = result.standardOutput.trimmed();
    if (answer.isEmpty())
        throw TranslationError::transient(
            QStringLiteral("El CLI de Claude devolvió una respuesta vacía."));
    return answer;
}

} // namespace velto
