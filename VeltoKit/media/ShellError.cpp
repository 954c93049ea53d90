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
    return ShellError(Kind::failed, tool, status,
                      tool + QStringLiteral(" falló (código ") + QString::number(status) +
                          QStringLiteral("):\n") + message);
}

} // namespace velto
