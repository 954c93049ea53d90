#pragma once

#include <QString>

namespace velto {

// A finished child process. Its output is decoded as UTF-8.
struct ProcessResult {
    // The exit code, or the signal's number when `killed`.
    int status = 0;
    QString standardOutput;
    QString standardError;
    // Ended by a signal; last, so that {status, output, error} still builds one.
    bool killed = false;
};

} // namespace velto
