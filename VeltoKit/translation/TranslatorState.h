#pragma once

#include <functional>
#include <mutex>
#include <utility>

#include <QList>
#include <QStringList>

#include "VeltoKit/translation/TranslationProgress.h"

namespace velto {

// What every batch of one translation reports into, from several threads at once. Each change
// of the counters is passed to the progress handler while the lock is held, so the handler
// sees one call at a time and counters that never go back.
class TranslatorState {
public:
    using ProgressHandler = std::function<void(const TranslationProgress&)>;

    TranslatorState(qint64 total, ProgressHandler onProgress);

    // Texts answered from the cache: they count as cached and done.
    void addCached(qint64 count);
    // Texts a batch settled: `translated` got an answer, `failed` keep their original wording.
    // `arrived` goes to the handler with this one report only.
    void addFinished(qint64 translated, qint64 failed, QList<TranslatedLine> arrived = {});
    void addWarning(const QString& warning);
    // The text at `position` got no usable answer: it counts as done and failed, and `warning`
    // says why.
    void addUnanswered(qsizetype position, const QString& warning);
    // Sends the current counters to the handler, e.g. to announce the total.
    void report();

    TranslationProgress progress() const;
    // In the order they arose.
    QStringList warnings() const;
    // Each text left in its original wording, with the warning that named it.
    QList<std::pair<qsizetype, QString>> unanswered() const;

private:
    void reportLocked();

    mutable std::mutex m_mutex;
    TranslationProgress m_progress;
    QStringList m_warnings;
    QList<std::pair<qsizetype, QString>> m_unanswered;
    ProgressHandler m_onProgress;
};

} // namespace velto
