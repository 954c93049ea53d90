#include "VeltoMKV/QueueAnnouncer.h"

#include <QFileInfo>
#include <QWidget>

#include "VeltoMKV/DesktopSession.h"
#include "VeltoMKV/state/Format.h"
#include "VeltoMKV/state/QueueState.h"

namespace velto {

QueueAnnouncer::QueueAnnouncer(QueueState& queue, QWidget& window, DesktopSession& session)
    : QObject(&window)
    , m_queue(queue)
    , m_window(window)
    , m_session(session) {
    connect(&m_queue, &QueueState::runningChanged, this, &QueueAnnouncer::runningChanged);
    connect(&m_queue, &QueueState::finished, this, &QueueAnnouncer::finished);
    connect(&m_queue, &QueueState::rowChanged, this, &QueueAnnouncer::showTitle);
}

void QueueAnnouncer::showTitle() {
    // Like a single job's, the title carries the running video's percentage, and its name.
    for (const QueueRow& row : m_queue.rows()) {
        if (row.state == QueueRow::State::translating && row.progress.progress) {
            m_window.setWindowTitle(Format::percent(*row.progress.progress) +
                                    QStringLiteral(" · ") + QFileInfo(row.source).fileName() +
                                    QStringLiteral(" · VeltoMKV"));
            return;
        }
    }
    m_window.setWindowTitle(QStringLiteral("VeltoMKV"));
}

void QueueAnnouncer::runningChanged() {
    const bool running = m_queue.isRunning();
    if (running && !m_running)
        m_session.keepAwake(QStringLiteral("Traduciendo los subtítulos de una lista de videos"));
    if (!running && m_running)
        m_session.allowSleep();
    m_running = running;
    showTitle();
}

void QueueAnnouncer::finished() {
    // Whoever watches the window sees the summary there.
    if (m_window.isActiveWindow())
        return;
    const QueueSummary summary = m_queue.summary();
    QString body = summary.text() + u'.';
    if (!summary.warnings.isEmpty())
        body +=
            QStringLiteral(" Hay avisos en ") + QString::number(summary.warnings.size()) +
            (summary.warnings.size() == 1 ? QStringLiteral(" video.") : QStringLiteral(" videos."));
    m_session.notify(QStringLiteral("Terminé la lista"), body);
}

} // namespace velto
