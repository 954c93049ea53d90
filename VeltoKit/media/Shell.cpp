#include "VeltoKit/media/Shell.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <mutex>

#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QProcessEnvironment>
#include <QStandardPaths>

#include "VeltoKit/core/VeltoError.h"
#include "VeltoKit/media/ShellError.h"

namespace velto::Shell {

namespace {

using Clock = std::chrono::steady_clock;

constexpr int pollMilliseconds = 50;
// A terminated child gets this long to clean up before it is killed.
constexpr int terminateGraceMilliseconds = 2000;
constexpr double loginShellTimeoutSeconds = 10;

QString toolName(const QString& executable) {
    return QFileInfo(executable).fileName();
}

QStringList splitPath(const QString& value) {
    return value.split(QDir::listSeparator(), Qt::SkipEmptyParts);
}

struct LoginShell {
    std::once_flag read;
    std::atomic<bool> known = false;
    QStringList paths;
};

LoginShell& loginShell() {
    static LoginShell shell;
    return shell;
}

// What loginShellPaths found, without starting the shell when nothing asked for it yet.
QStringList knownLoginShellPaths() {
    return loginShellPathsKnown() ? loginShellPaths() : QStringList();
}

QProcessEnvironment childEnvironment(bool withLoginShell) {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    QStringList path = splitPath(environment.value(QStringLiteral("PATH")));
    path << (withLoginShell ? loginShellPaths() : knownLoginShellPaths()) << searchPaths();
    path.removeDuplicates();
    environment.insert(QStringLiteral("PATH"), path.join(QDir::listSeparator()));
    return environment;
}

ShellError launchFailure(const QString& executable) {
    const bool exists =
        QFileInfo(executable).isFile() ||
        (!executable.contains(u'/') && !QStandardPaths::findExecutable(executable).isEmpty());
    if (!exists)
        return ShellError::notFound(toolName(executable));
    return ShellError::failed(toolName(executable), -1,
                              QStringLiteral("No pude iniciarlo. Revisá que sea un programa y "
                                             "que tengas permiso para ejecutarlo."));
}

void stopChild(QProcess& process) {
    process.terminate();
    if (process.waitForFinished(terminateGraceMilliseconds))
        return;
    process.kill();
    process.waitForFinished(-1);
}

// A crash has no exit code; report the signal instead, never 0.
int exitStatus(const QProcess& process) {
    if (process.exitStatus() == QProcess::NormalExit)
        return process.exitCode();
    return process.exitCode() != 0 ? process.exitCode() : -1;
}

void start(QProcess& process, const QString& executable, const QStringList& arguments,
           const ShellRunOptions& options, const QProcessEnvironment& environment) {
    process.setProgram(executable);
    process.setArguments(arguments);
    process.setProcessEnvironment(environment);
    if (options.workingDirectory)
        process.setWorkingDirectory(*options.workingDirectory);
    if (!options.standardInput)
        process.setStandardInputFile(QProcess::nullDevice());
    process.start();
    if (!process.waitForStarted(-1))
        throw launchFailure(executable);
    if (options.standardInput) {
        // QProcess feeds the pipe while we wait for the exit, so a large input cannot block us.
        process.write(*options.standardInput);
        process.closeWriteChannel();
    }
}

std::optional<Clock::time_point> deadlineAfter(std::optional<double> seconds) {
    if (!seconds)
        return std::nullopt;
    return Clock::now() +
           std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(*seconds));
}

ShellError timedOut(const QString& executable, double seconds) {
    return ShellError::failed(toolName(executable), -1,
                              QStringLiteral("Sin respuesta tras ") +
                                  QString::number(static_cast<qint64>(std::ceil(seconds))) + u's');
}

ProcessResult runWithEnvironment(const QString& executable, const QStringList& arguments,
                                 const ShellRunOptions& options, const std::stop_token& stop,
                                 const QProcessEnvironment& environment) {
    throwIfStopped(stop);
    QProcess process;
    start(process, executable, arguments, options, environment);
    const auto deadline = deadlineAfter(options.timeoutSeconds);
    // Both pipes are read while waiting, so a child that fills one of them never stalls.
    QByteArray output;
    QByteArray error;
    while (true) {
        process.waitForFinished(pollMilliseconds);
        output += process.readAllStandardOutput();
        error += process.readAllStandardError();
        if (process.state() == QProcess::NotRunning)
            break;
        if (stop.stop_requested()) {
            stopChild(process);
            throw Cancelled();
        }
        if (deadline && Clock::now() >= *deadline) {
            stopChild(process);
            throw timedOut(executable, *options.timeoutSeconds);
        }
    }
    throwIfStopped(stop);
    return {exitStatus(process), QString::fromUtf8(output), QString::fromUtf8(error)};
}

} // namespace

const QStringList& searchPaths() {
    static const QStringList paths = [] {
        const QString home = QDir::homePath();
        return QStringList{
            QStringLiteral("/opt/homebrew/bin"),
            QStringLiteral("/usr/local/bin"),
            QStringLiteral("/opt/local/bin"),
            home + QStringLiteral("/.local/bin"),
            home + QStringLiteral("/.hermes/node/bin"),
            home + QStringLiteral("/.bun/bin"),
            home + QStringLiteral("/.cargo/bin"),
            home + QStringLiteral("/.npm-global/bin"),
            home + QStringLiteral("/bin"),
            QStringLiteral("/usr/bin"),
            QStringLiteral("/bin"),
            QStringLiteral("/usr/sbin"),
            QStringLiteral("/sbin"),
        };
    }();
    return paths;
}

QStringList readLoginShellPaths(const QString& shell) {
    ShellRunOptions options;
    options.timeoutSeconds = loginShellTimeoutSeconds;
    try {
        const ProcessResult result =
            runWithEnvironment(shell, {QStringLiteral("-lc"), QStringLiteral("echo $PATH")},
                               options, {}, QProcessEnvironment::systemEnvironment());
        // The last line: a chatty profile may print before the answer.
        const QStringList lines = result.standardOutput.trimmed().split(u'\n');
        return splitPath(lines.last().trimmed());
    } catch (const VeltoError&) {
        return {};
    }
}

const QStringList& loginShellPaths() {
    LoginShell& login = loginShell();
    std::call_once(login.read, [&] {
        const QString shell = qEnvironmentVariable("SHELL");
        login.paths = readLoginShellPaths(shell.isEmpty() ? QStringLiteral("/bin/zsh") : shell);
        login.known = true;
    });
    return login.paths;
}

bool loginShellPathsKnown() {
    return loginShell().known;
}

std::optional<QString> which(const QString& name, const QStringList& directories) {
    if (name.isEmpty())
        return std::nullopt;
    for (const QString& directory : directories) {
        if (directory.isEmpty())
            continue;
        const QFileInfo candidate(QDir(directory).filePath(name));
        if (candidate.isFile() && candidate.isExecutable())
            return candidate.absoluteFilePath();
    }
    return std::nullopt;
}

std::optional<QString> which(const QString& name) {
    // The login shell is only started when the cheaper places have nothing.
    if (auto found =
            which(name, searchPaths() + qEnvironmentVariable("PATH").split(QDir::listSeparator())))
        return found;
    return which(name, loginShellPaths());
}

ProcessResult run(const QString& executable, const QStringList& arguments,
                  const ShellRunOptions& options, std::stop_token stop) {
    return runWithEnvironment(executable, arguments, options, stop,
                              childEnvironment(options.loginShellPath));
}

QString lastLines(const QString& text, int count) {
    QStringList lines = text.split(u'\n');
    if (!lines.isEmpty() && lines.last().isEmpty())
        lines.removeLast();
    if (count <= 0)
        return {};
    return lines.mid(std::max<qsizetype>(0, lines.size() - count)).join(u'\n');
}

} // namespace velto::Shell
