#include "VeltoKit/core/VeltoError.h"

#include "VeltoKit/core/Secrets.h"

namespace velto {

VeltoError::VeltoError(QString description)
    : m_description(Secrets::redacted(std::move(description)))
    , m_utf8(m_description.toUtf8()) {}

const char* VeltoError::what() const noexcept {
    return m_utf8.constData();
}

QString Cancelled::description() const {
    return QStringLiteral("Operación cancelada.");
}

const char* Cancelled::what() const noexcept {
    return "Operación cancelada.";
}

QString describeFailure(const std::exception& error) {
    if (const auto* known = dynamic_cast<const VeltoError*>(&error))
        return known->description();
    if (const auto* cancelled = dynamic_cast<const Cancelled*>(&error))
        return cancelled->description();
    return QStringLiteral("Falló algo inesperado: ") + QString::fromLocal8Bit(error.what());
}

void throwIfStopped(const std::stop_token& stop) {
    if (stop.stop_requested())
        throw Cancelled();
}

} // namespace velto
