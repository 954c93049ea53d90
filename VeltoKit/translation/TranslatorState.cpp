#include "VeltoKit/translation/TranslatorState.h"

namespace velto {

TranslatorState::TranslatorState(qint64 total, ProgressHandler onProgress)
    : m_onProgress(std::move(onProgress)) {
    m_progress.total = total;
}

void TranslatorState::addCached(qint64 count) {
    std::lock_guard lock(m_mutex);
    m_progress.cached += count;
    m_progress.done += count;
    reportLocked();
}

void TranslatorState::addFinished(qint64 translated, qint64 failed, QList<TranslatedLine> arrived) {
    std::lock_guard lock(m_mutex);
    m_progress.done += translated + failed;
    m_progress.failed += failed;
    m_progress.arrived = std::move(arrived);
    reportLocked();
    m_progress.arrived.clear();
}

void TranslatorState::addWarning(const QString& warning) {
    std::lock_guard lock(m_mutex);
    m_warnings.append(warning);
}

void TranslatorState::addUnanswered(qsizetype position, const QString& warning) {
    std::lock_guard lock(m_mutex);
    m_warnings.append(warning);
    m_unanswered.append({position, warning});
    ++m_progress.done;
    ++m_progress.failed;
    reportLocked();
}

void TranslatorState::report() {
    std::lock_guard lock(m_mutex);
    reportLocked();
}

TranslationProgress TranslatorState::progress() const {
    std::lock_guard lock(m_mutex);
    return m_progress;
}

QStringList TranslatorState::warnings() const {
    std::lock_guard lock(m_mutex);
    return m_warnings;
}

QList<std::pair<qsizetype, QString>> TranslatorState::unanswered() const {
    std::lock_guard lock(m_mutex);
    return m_unanswered;
}

void TranslatorState::reportLocked() {
    if (m_onProgress)
        m_onProgress(m_progress);
}

} // namespace velto
