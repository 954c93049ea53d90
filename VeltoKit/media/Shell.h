#pragma once

#include <optional>
#include <stop_token>

#include <QByteArray>
#include <QString>
#include <QStringList>

#include "VeltoKit/media/ProcessResult.h"

namespace velto {

struct ShellRunOptions {
    std::optional<QByteArray> standardInput;
    std::optional<QString> workingDirectory;
    std::optional<double> timeoutSeconds;
};

// Finds and runs external tools. Safe to call from any thread; needs no event loop.
namespace Shell {

// Install folders searched before the PATH (Homebrew, MacPorts, ~/.local/bin...).
const QStringList& searchPaths();
// The PATH of the user's login shell, read once.
const QStringList& loginShellPaths();
// The first executable `name` in searchPaths, then PATH, then loginShellPaths.
std::optional<QString> which(const QString& name);

// Runs to completion and returns the exit status and both outputs, whatever the status.
// Throws ShellError (launch failure, time limit: status -1 "Sin respuesta tras Ns") and
// Cancelled when `stop` is requested; the child is killed either way.
ProcessResult run(const QString& executable, const QStringList& arguments,
                  const ShellRunOptions& options = {}, std::stop_token stop = {});

// The last `count` lines of `text`, for failure messages.
QString lastLines(const QString& text, int count);

} // namespace Shell
} // namespace velto
