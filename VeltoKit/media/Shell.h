#pragma once

#include <optional>
#include <stop_token>

#include <QByteArray>
#include <QString>
#include <QStringList>

#include "VeltoKit/media/ProcessResult.h"

namespace velto {

struct ShellRunOptions {
    std::optional<QByteArray> standardInput; // none: the child reads an empty input
    std::optional<QString> workingDirectory;
    std::optional<double> timeoutSeconds;
    // The child needs the user's whole PATH (claude is a node script): learn it from the login
    // shell first. Otherwise the login shell's directories are only passed on when something
    // already needed them.
    bool loginShellPath = false;
};

// Finds and runs external tools. Safe to call from any thread, several at once; needs no
// event loop.
namespace Shell {

// Install folders searched before the PATH (Homebrew, MacPorts, ~/.local/bin...).
const QStringList& searchPaths();
// The PATH of the user's login shell ($SHELL, else /bin/zsh), read at most once per process,
// on first use: starting a login shell costs a good part of a second.
const QStringList& loginShellPaths();
// Whether loginShellPaths was read already in this process.
bool loginShellPathsKnown();
// What loginShellPaths caches: the last line of `shell -lc 'echo $PATH'` split at ':';
// empty when the shell cannot run or answers nothing within a few seconds.
QStringList readLoginShellPaths(const QString& shell);

// The first executable `name` in searchPaths, then PATH, then loginShellPaths.
std::optional<QString> which(const QString& name);
// The first executable `name` in `directories`, in order; empty entries are skipped.
std::optional<QString> which(const QString& name, const QStringList& directories);

// Runs to completion and returns the exit status and both outputs, whatever the status.
// The child's PATH is ours followed by loginShellPaths (see ShellRunOptions) and searchPaths.
// Throws ShellError (launch failure; time limit: status -1 "Sin respuesta tras Ns") and
// Cancelled when `stop` is requested; the child is terminated, then killed, either way.
ProcessResult run(const QString& executable, const QStringList& arguments,
                  const ShellRunOptions& options = {}, std::stop_token stop = {});

// The last `count` lines of `text` (a final line break does not count as an empty line).
QString lastLines(const QString& text, int count);

} // namespace Shell
} // namespace velto
