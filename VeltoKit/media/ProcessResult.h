#pragma once

#include <QString>

namespace velto {

// A finished child process. Its output is decoded as UTF-8.
struct ProcessResult {
    int status = 0;
    QString standardOutput;
    QString standardError;
};

} // namespace velto
