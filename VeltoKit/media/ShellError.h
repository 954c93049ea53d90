#pragma once

#include "VeltoKit/core/VeltoError.h"

namespace velto {

// A tool that is missing or failed. Cancellation is not a ShellError: it is Cancelled.
class ShellError : public VeltoError {
public:
    enum class Kind { notFound, failed, killed };

    // "No encuentro «name». Instalalo con: brew install ffmpeg" (the platform's installer)
    static ShellError notFound(const QString& tool);
    // "<tool> falló (código <status>):\n<message>"; a tool that said nothing is told as such.
    static ShellError failed(const QString& tool, int status, const QString& message);
    // A tool ended by a signal: its number is no exit code, and its output is usually empty.
    static ShellError killed(const QString& tool, int signal);

    Kind kind() const { return m_kind; }
    QString tool() const { return m_tool; }
    int status() const { return m_status; }

private:
    ShellError(Kind kind, QString tool, int status, QString description);

    Kind m_kind;
    QString m_tool;
    int m_status;
};

} // namespace velto
