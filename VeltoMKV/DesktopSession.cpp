#include "VeltoMKV/DesktopSession.h"

#include <variant>

#include <QSystemTrayIcon>
#include <QTimer>

#include "VeltoMKV/AppIcon.h"

#if defined(VELTO_HAVE_DBUS)
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusUnixFileDescriptor>
#endif

#if defined(Q_OS_WIN)
#include <windows.h>
#endif

namespace velto {

namespace {

constexpr int busPatience = 5000;
constexpr int trayMessageTime = 10'000;

#if defined(VELTO_HAVE_DBUS)
const QString screenSaver = QStringLiteral("org.freedesktop.ScreenSaver");
const QString notifications = QStringLiteral("org.freedesktop.Notifications");

// Runs `done` with the answer to `call` on `bus`, on this thread, whenever it comes.
template <typename Done>
void callLater(const QDBusConnection& bus, const QDBusMessage& call, QObject* context, Done done) {
    auto* watcher = new QDBusPendingCallWatcher(bus.asyncCall(call, busPatience), context);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, context,
                     [done](QDBusPendingCallWatcher* answer) {
                         done(*answer);
                         answer->deleteLater();
                     });
}
#endif

} // namespace

// What the desktop handed back for keeping awake: logind's lock (held while its descriptor is
// open) or the screen saver's cookie.
struct DesktopSession::Inhibition {
#if defined(VELTO_HAVE_DBUS)
    explicit Inhibition(std::variant<QDBusUnixFileDescriptor, uint> granted)
        : hold(std::move(granted)) {}
    Inhibition(const Inhibition&) = delete;
    Inhibition& operator=(const Inhibition&) = delete;

    std::variant<QDBusUnixFileDescriptor, uint> hold;

    ~Inhibition() {
        if (const uint* cookie = std::get_if<uint>(&hold)) {
            QDBusMessage call = QDBusMessage::createMethodCall(
                screenSaver, QStringLiteral("/org/freedesktop/ScreenSaver"), screenSaver,
                QStringLiteral("UnInhibit"));
            call << *cookie;
            QDBusConnection::sessionBus().asyncCall(call, busPatience);
        }
    }
#endif
};

DesktopSession::DesktopSession(QObject* parent)
    : QObject(parent) {
#if defined(VELTO_HAVE_DBUS)
    QDBusConnection::sessionBus().connect(
        notifications, QStringLiteral("/org/freedesktop/Notifications"), notifications,
        QStringLiteral("ActionInvoked"), this, SLOT(notificationAction(uint, QString)));
#endif
}

DesktopSession::~DesktopSession() {
    allowSleep();
}

void DesktopSession::keepAwake(const QString& why) {
    m_wanted = true;
    const quint64 request = ++m_request;
#if defined(VELTO_HAVE_DBUS)
    inhibitWithLogind(why, request);
#elif defined(Q_OS_WIN)
    Q_UNUSED(why);
    Q_UNUSED(request);
    SetThreadExecutionState(ES_CONTINUOUS | ES_SYSTEM_REQUIRED);
#else
    Q_UNUSED(why);
    Q_UNUSED(request);
#endif
}

void DesktopSession::allowSleep() {
    m_wanted = false;
    ++m_request;
    m_inhibition.reset();
#if defined(Q_OS_WIN)
    SetThreadExecutionState(ES_CONTINUOUS);
#endif
}

bool DesktopSession::keepsAwake() const {
    return m_inhibition != nullptr;
}

void DesktopSession::inhibitWithLogind(const QString& why, quint64 request) {
#if defined(VELTO_HAVE_DBUS)
    const QString login = QStringLiteral("org.freedesktop.login1");
    QDBusMessage call = QDBusMessage::createMethodCall(
        login, QStringLiteral("/org/freedesktop/login1"), login + QStringLiteral(".Manager"),
        QStringLiteral("Inhibit"));
    // Blocks suspending, by hand or when idle, until the descriptor is closed.
    call << QStringLiteral("sleep:idle") << QStringLiteral("VeltoMKV") << why
         << QStringLiteral("block");
    const QDBusConnection bus = QDBusConnection::systemBus();
    if (!bus.isConnected()) {
        inhibitWithScreenSaver(why, request);
        return;
    }
    callLater(bus, call, this, [this, why, request](const QDBusPendingCall& answer) {
        const QDBusPendingReply<QDBusUnixFileDescriptor> reply(answer);
        if (reply.isError() || !reply.value().isValid()) {
            if (request == m_request)
                inhibitWithScreenSaver(why, request);
            return;
        }
        // An answer to a request already withdrawn closes its descriptor as it goes.
        if (request == m_request && m_wanted)
            m_inhibition = std::make_unique<Inhibition>(reply.value());
    });
#else
    Q_UNUSED(why);
    Q_UNUSED(request);
#endif
}

void DesktopSession::inhibitWithScreenSaver(const QString& why, quint64 request) {
#if defined(VELTO_HAVE_DBUS)
    QDBusMessage call =
        QDBusMessage::createMethodCall(screenSaver, QStringLiteral("/org/freedesktop/ScreenSaver"),
                                       screenSaver, QStringLiteral("Inhibit"));
    call << QStringLiteral("VeltoMKV") << why;
    callLater(QDBusConnection::sessionBus(), call, this,
              [this, request](const QDBusPendingCall& answer) {
                  const QDBusPendingReply<uint> reply(answer);
                  if (reply.isError())
                      return;
                  // Withdrawn meanwhile: handed back at once, as the inhibition goes.
                  auto inhibition = std::make_unique<Inhibition>(reply.value());
                  if (request == m_request && m_wanted)
                      m_inhibition = std::move(inhibition);
              });
#else
    Q_UNUSED(why);
    Q_UNUSED(request);
#endif
}

void DesktopSession::notify(const QString& title, const QString& body) {
#if defined(VELTO_HAVE_DBUS)
    QDBusMessage call = QDBusMessage::createMethodCall(
        notifications, QStringLiteral("/org/freedesktop/Notifications"), notifications,
        QStringLiteral("Notify"));
    const QVariantMap hints{{QStringLiteral("desktop-entry"), QStringLiteral("veltomkv")}};
    call << QStringLiteral("VeltoMKV") << m_notification << QStringLiteral("veltomkv") << title
         << body << QStringList{QStringLiteral("default"), QStringLiteral("Mostrar")} << hints
         << -1;
    const QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        showInTray(title, body);
        return;
    }
    callLater(bus, call, this, [this, title, body](const QDBusPendingCall& answer) {
        const QDBusPendingReply<uint> reply(answer);
        if (reply.isError())
            showInTray(title, body);
        else
            m_notification = reply.value();
    });
#else
    showInTray(title, body);
#endif
}

void DesktopSession::notificationAction(uint id, const QString& action) {
    if (id == m_notification && action == u"default")
        emit notificationClicked();
}

void DesktopSession::showInTray(const QString& title, const QString& body) {
    if (!QSystemTrayIcon::isSystemTrayAvailable())
        return;
    if (!m_tray) {
        m_tray = new QSystemTrayIcon(appIcon(), this);
        connect(m_tray, &QSystemTrayIcon::messageClicked, this,
                &DesktopSession::notificationClicked);
    }
    m_tray->show();
    m_tray->showMessage(title, body, appIcon(), trayMessageTime);
    // The icon is there for the message only.
    QTimer::singleShot(trayMessageTime, m_tray, &QSystemTrayIcon::hide);
}

} // namespace velto
