#include "VeltoMKV/JobAnnouncer.h"

#include <QFileInfo>
#include <QWidget>

#include "VeltoMKV/DesktopSession.h"
#include "VeltoMKV/state/AppState.h"
#include "VeltoMKV/state/Format.h"

namespace velto {

namespace {

QString fileName(const std::optional<QString>& path) {
    return path ? QFileInfo(*path).fileName() : QString();
}

} // namespace

JobAnnouncer::JobAnnouncer(AppState& state, QWidget& window, DesktopSession& session)
    : QObject(&window)
    , m_state(state)
    , m_window(window)
    , m_session(session) {
    connect(&m_state, &AppState::phaseChanged, this, &JobAnnouncer::phaseChanged);
    connect(&m_state, &AppState::progressChanged, this, &JobAnnouncer::showTitle);
    connect(&m_session, &DesktopSession::notificationClicked, this, [this] {
        m_window.showNormal();
        m_window.raise();
        m_window.activateWindow();
    });
    phaseChanged();
}

void JobAnnouncer::phaseChanged() {
    const bool working = m_state.phase().kind() == Phase::Kind::working;
    if (working && !m_working)
        m_session.keepAwake(QStringLiteral("Traduciendo los subtítulos de «") +
                            fileName(m_state.sourceURL()) + QStringLiteral("»"));
    if (!working && m_working) {
        m_session.allowSleep();
        announceEnd();
    }
    m_working = working;
    showTitle();
}

void JobAnnouncer::showTitle() {
    const std::optional<double> fraction = m_state.progress().progress;
    const bool known = m_state.phase().kind() == Phase::Kind::working && fraction;
    m_window.setWindowTitle(known ? Format::percent(*fraction) + QStringLiteral(" · VeltoMKV")
                                  : QStringLiteral("VeltoMKV"));
}

void JobAnnouncer::announceEnd() {
    // The user who watches the window sees the end there; one who stopped it knows.
    if (m_window.isActiveWindow())
        return;
    const Phase& phase = m_state.phase();
    if (phase.kind() == Phase::Kind::finished && m_state.result()) {
        const JobResult& result = *m_state.result();
        QString body = result.outputURL.isEmpty()
                           ? QStringLiteral("Listo el subtítulo «") +
                                 QFileInfo(result.written()).fileName() + QStringLiteral("».")
                           : QStringLiteral("«") + QFileInfo(result.outputURL).fileName() +
                                 QStringLiteral("» ya tiene la pista en español.");
        if (result.failedLines > 0)
            body += QStringLiteral(" Quedaron ") + Format::count(result.failedLines) +
                    (result.failedLines == 1 ? QStringLiteral(" subtítulo sin traducir.")
                                             : QStringLiteral(" subtítulos sin traducir."));
        m_session.notify(QStringLiteral("Traducción terminada"), body);
    } else if (phase.kind() == Phase::Kind::failed) {
        m_session.notify(QStringLiteral("No pude completar el trabajo"),
                         QStringLiteral("«") + fileName(m_state.sourceURL()) +
                             QStringLiteral("»: ") + phase.message());
    }
}

} // namespace velto
