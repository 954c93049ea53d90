#include "VeltoKit/platform/Keychain.h"

#include <atomic>
#include <memory>

#include <QEventLoop>
#include <QTimer>
#include <qt6keychain/keychain.h>

#include "VeltoKit/platform/PlatformText.h"

namespace velto::Keychain {

namespace {

const QString service = QStringLiteral("com.veltomkv.apikey");

// Set while a call the store took has gone unanswered past the deadline: asking again would
// only wait again.
std::atomic<bool> storeSilent = false;

QString silentReason() {
    QString store = PlatformText::keychainName();
    store[0] = store[0].toUpper();
    return store + QStringLiteral(" no respondió en ") + QString::number(deadlineSeconds) +
           QStringLiteral(" segundos, así que no pude usar la clave guardada. Desbloquealo o "
                          "reinicialo y probá de nuevo.");
}

// QtKeychain answers through the event loop; the callers want a plain call with a deadline. A
// job the store never answers is left to itself: the store may still call back into it.
template <typename Job>
std::optional<QKeychain::Error> runToEnd(std::unique_ptr<Job>& job) {
    if (storeSilent)
        return std::nullopt;
    job->setAutoDelete(false);
    job->setInsecureFallback(false);
    QEventLoop loop;
    bool finished = false;
    QObject::connect(job.get(), &QKeychain::Job::finished, &loop, [&finished, &loop] {
        finished = true;
        loop.quit();
    });
    QTimer::singleShot(deadlineSeconds * 1000, &loop, &QEventLoop::quit);
    job->start();
    if (!finished)
        loop.exec(QEventLoop::ExcludeUserInputEvents);
    if (!finished) {
        storeSilent = true;
        QObject::disconnect(job.get(), nullptr, &loop, nullptr);
        // A store that was only slow (an unlock prompt left open) is asked again once it spoke.
        Job* late = job.release();
        QObject::connect(late, &QKeychain::Job::finished, late, [] { storeSilent = false; });
        late->setAutoDelete(true);
        return std::nullopt;
    }
    return job->error();
}

struct Read {
    std::optional<QKeychain::Error> error;
    QString value;
};

Read read(const QString& account) {
    auto job = std::make_unique<QKeychain::ReadPasswordJob>(service);
    job->setKey(account);
    const std::optional<QKeychain::Error> error = runToEnd(job);
    return {error, error == QKeychain::NoError ? job->textData() : QString()};
}

} // namespace

void set(const QString& value, const QString& account) {
    remove(account);
    if (value.isEmpty())
        return;
    auto job = std::make_unique<QKeychain::WritePasswordJob>(service);
    job->setKey(account);
    job->setTextData(value);
    runToEnd(job);
}

QString get(const QString& account) {
    const Read answer = read(account);
    if (!answer.error)
        throw KeychainError(silentReason());
    return answer.value;
}

void remove(const QString& account) {
    auto job = std::make_unique<QKeychain::DeletePasswordJob>(service);
    job->setKey(account);
    runToEnd(job);
}

std::optional<QString> unavailableReason() {
    // An account nobody uses: any answer but "no such entry" means the store itself failed.
    const std::optional<QKeychain::Error> error = read(QStringLiteral("veltomkv.probe")).error;
    if (!error)
        return silentReason();
    switch (*error) {
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
