#pragma once

#include <QObject>

class QWidget;

namespace velto {

class AppState;
class DesktopSession;

// Tells the world outside the page about the running job: the window's title carries its
// percentage, the computer stays awake while it runs, and a job that ends while the window is
// not the active one raises a notification that names the file and how it went.
class JobAnnouncer : public QObject {
    Q_OBJECT

public:
    JobAnnouncer(AppState& state, QWidget& window, DesktopSession& session);

private:
    void phaseChanged();
    void showTitle();
    void announceEnd();

    AppState& m_state;
    QWidget& m_window;
    DesktopSession& m_session;
    bool m_working = false;
};

} // namespace velto
