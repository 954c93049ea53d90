#pragma once

#include <QObject>

class QWidget;

namespace velto {

class DesktopSession;
class QueueState;

// What the desktop hears of a queue: the window's title carries the running video's percentage,
// the computer stays awake while it runs, and a list that ends while the window is not the
// active one raises one notification with how it went.
class QueueAnnouncer : public QObject {
    Q_OBJECT

public:
    QueueAnnouncer(QueueState& queue, QWidget& window, DesktopSession& session);

private:
    void runningChanged();
    void finished();
    void showTitle();

    QueueState& m_queue;
    QWidget& m_window;
    DesktopSession& m_session;
    bool m_running = false;
};

} // namespace velto
