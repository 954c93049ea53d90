#pragma once

#include <memory>

#include <QObject>
#include <QString>

class QSystemTrayIcon;

namespace velto {

// What a long job asks of the desktop around the window: that the computer does not go to
// sleep while it runs, and a word when it ends while the user looks elsewhere. On Linux through
// the desktop's D-Bus services (logind, else the screen saver; the notification server, else the
// tray's balloon); on Windows the thread's execution state; elsewhere the tray's balloon, and
// sleep is left to the system. Calls never wait on the bus: its answers come back later.
class DesktopSession : public QObject {
    Q_OBJECT

public:
    explicit DesktopSession(QObject* parent = nullptr);
    ~DesktopSession() override;

    // Keeps the computer awake until allowSleep(); `why` is shown where the desktop lists it.
    void keepAwake(const QString& why);
    void allowSleep();
    // Whether the desktop has granted the last keepAwake and still holds it.
    bool keepsAwake() const;
    void notify(const QString& title, const QString& body);

signals:
    // The user clicked the notification: the window should come forward.
    void notificationClicked();

private slots:
    void notificationAction(uint id, const QString& action);

private:
    struct Inhibition;

    void inhibitWithLogind(const QString& why, quint64 request);
    void inhibitWithScreenSaver(const QString& why, quint64 request);
    void showInTray(const QString& title, const QString& body);

    // Each keepAwake is one request; an answer to an older one is let go at once.
    quint64 m_request = 0;
    bool m_wanted = false;
    std::unique_ptr<Inhibition> m_inhibition;
    uint m_notification = 0;
    QSystemTrayIcon* m_tray = nullptr;
};

} // namespace velto
