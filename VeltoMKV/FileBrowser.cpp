#include "VeltoMKV/FileBrowser.h"

#include <QApplication>
#include <QCoreApplication>
#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QMessageBox>
#include <QProcess>
#include <QUrl>

#if defined(VELTO_HAVE_DBUS)
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#endif

namespace velto::FileBrowser {
namespace {

void openFolder(const QString& path) {
    if (QDesktopServices::openUrl(QUrl::fromLocalFile(QFileInfo(path).absolutePath())))
        return;
    // No file manager answered: at least say where the file is, in text that can be copied.
    QMessageBox box(QMessageBox::Information, QStringLiteral("VeltoMKV"),
                    QStringLiteral("No encontré un administrador de archivos que abra la carpeta."),
                    QMessageBox::Ok, QApplication::activeWindow());
    box.setInformativeText(QStringLiteral("El archivo está en ") + QDir::toNativeSeparators(path));
    box.setTextInteractionFlags(Qt::TextSelectableByMouse);
    box.exec();
}

} // namespace

void reveal(const QString& path) {
#if defined(Q_OS_MACOS)
    QProcess::startDetached(QStringLiteral("/usr/bin/open"), {QStringLiteral("-R"), path});
#elif defined(Q_OS_WIN)
    QProcess::startDetached(QStringLiteral("explorer.exe"),
                            {QStringLiteral("/select,") + QDir::toNativeSeparators(path)});
#elif defined(VELTO_HAVE_DBUS)
    QDBusMessage call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.FileManager1"),
        QStringLiteral("/org/freedesktop/FileManager1"),
        QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("ShowItems"));
    call << QStringList{QUrl::fromLocalFile(path).toString()} << QString();
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        openFolder(path);
        return;
    }
    auto* watcher =
        new QDBusPendingCallWatcher(bus.asyncCall(call, 5000), QCoreApplication::instance());
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, watcher,
                     [path](QDBusPendingCallWatcher* finished) {
                         if (finished->isError())
                             openFolder(path);
                         finished->deleteLater();
                     });
#else
    openFolder(path);
#endif
}

} // namespace velto::FileBrowser
