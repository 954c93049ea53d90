#include "VeltoKit/media/ShellError.h"

#include "VeltoKit/platform/PlatformText.h"

namespace velto {

ShellError::ShellError(Kind kind, QString tool, int status, QString description)
    : VeltoError(std::move(description))
    , m_kind(kind)
    , m_tool(std::move(tool))
    , m_status(status) {}

ShellError ShellError::notFound(const QString& tool) {
    // Always recommends ffmpeg, whatever was missing: it is the tool people lack.
    return ShellError(Kind::notFound, tool, 0,
                      QStringLiteral("No encuentro «") + tool +
                          QStringLiteral("». Instalalo con: ") + PlatformText::installFfmpeg());
}

ShellError ShellError::failed(const QString& tool, int status, const QString& message) {
    const QString start = tool + QStringLiteral(" falló (código ") + QString::number(status);
    if (message.trimmed().isEmpty())
        return ShellError(Kind::failed, tool, status,
                          start + QStringLiteral(") sin explicar por qué."));
    return ShellError(Kind::failed, tool, status, start + QStringLiteral("):\n") + message);
}

ShellError ShellError::killed(const QString& tool, int signal) {
    return ShellError(Kind::killed, tool, signal,
                      tool + QStringLiteral(" se cortó antes de terminar: lo detuvo la señal ") +
                          QString::number(signal) +
                          QStringLiteral(". Si no lo cortaste vos, probá de nuevo; suele pasar "
                                         "cuando el sistema se queda sin memoria."));
}

} // namespace velto
