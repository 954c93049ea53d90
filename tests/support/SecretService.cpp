#include "support/SecretService.h"

#include <QFile>

namespace velto::test {

bool usePrivateSecretService() {
#if defined(Q_OS_LINUX)
    QFile bus(QStringLiteral(VELTO_BINARY_DIR "/secret-service/bus"));
    if (!bus.open(QIODevice::ReadOnly))
        return false;
    qputenv("DBUS_SESSION_BUS_ADDRESS", bus.readAll().trimmed());
#endif
    return true;
}

} // namespace velto::test
