#include "VeltoKit/platform/Keychain.h"

#include <QEventLoop>
#include <qt6keychain/keychain.h>

#include "VeltoKit/platform/PlatformText.h"

namespace velto::Keychain {

namespace {

const QString service = QStringLiteral("com.veltomkv.apikey");

// QtKeychain answers through the event loop; the callers want a plain call.
template <typename Job>
QKeychain::Error runToEnd(Job& job) {
    job.setAutoDelete(false);
    job.setInsecureFallback(false);
    QEventLoop loop;
    QObject::connect(&job, &QKeychain::Job::finished, &loop, &QEventLoop::quit);
    job.start();
    loop.exec(QEventLoop::ExcludeUserInputEvents);
    return job.error();
}

struct Read {
    QKeychain::Error error;
    QString value;
};

Read read(const QString& account) {
    QKeychain::ReadPasswordJob job(service);
    job.setKey(account);
    const QKeychain::Error error = runToEnd(job);
    return {error, error == QKeychain::NoError ? job.textData() : QString()};
}

} // namespace

void set(const QString& value, const QString& account) {
    remove(account);
    if (value.isEmpty())
        return;
    QKeychain::WritePasswordJob job(service);
    job.setKey(account);
    job.setTextData(value);
    runToEnd(job);
}

QString get(const QString& account) {
    return read(account).value;
}

void remove(const QString& account) {
    QKeychain::DeletePasswordJob job(service);
    job.setKey(account);
    runToEnd(job);
}

std::optional<QString> unavailableReason() {
    // An account nobody uses: any answer but "no such entry" means the store itself failed.
    switch (read(QStringLiteral("veltomkv.probe")).error) {
    case QKeychain::NoError:
    case QKeychain::EntryNotFound:
        return std::nullopt;
    case QKeychain::AccessDeniedByUser:
    case QKeychain::AccessDenied:
        return QStringLiteral("No tengo permiso para usar ") + PlatformText::keychainName() +
               QStringLiteral(", así que la clave no se guardaría. Permití el acceso y probá de "
                              "nuevo.");
    default:
        break;
    }
    return QStringLiteral("No encuentro ") + PlatformText::keychainName() + QStringLiteral(" en ") +
           PlatformText::thisComputer() +
           QStringLiteral(", así que la clave no se guardaría. Instalalo o desbloquealo y "
                          "probá de nuevo.");
}

} // namespace velto::Keychain
