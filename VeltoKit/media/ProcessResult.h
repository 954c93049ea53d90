#pragma once

#include <QString>

namespace velto {

// A finished child process. Its output is decoded as UTF-8.
struct ProcessResult {
    // The exit code, or the signal's number when `killed`.
    int status = 0;
    bool killed = false;
    QString standardOutput;
    QString standardError;
};

} // namespace velto
