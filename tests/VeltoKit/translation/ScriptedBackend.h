#pragma once

#include <functional>
#include <mutex>

#include <QList>
#include <QStringList>

#include "VeltoKit/engines/TranslationBackend.h"

namespace velto::test {

// An engine whose answers a test writes: it receives the texts of the request's blocks.
// Records every request, from any thread.
class ScriptedBackend : public TranslationBackend {
public:
    using Answer = std::function<QString(const QStringList& texts, std::stop_token stop)>;

    explicit ScriptedBackend(Answer answer);

    QString label() const override;
    QString complete(const QString& system, const QString& prompt,
                     std::stop_token stop) const override;

    QList<QStringList> requests() const;

private:
    Answer m_answer;
    mutable std::mutex m_mutex;
    mutable QList<QStringList> m_requests;
};

// The texts of the blocks of a user prompt, in block order.
QStringList requestedTexts(const QString& prompt);
// An answer carrying `translations` as blocks 1..n.
QString answerWith(const QStringList& translations);
// What the echo engine would answer: every text prefixed with "[ES] ".
QStringList echoed(const QStringList& texts);
// "0", "1", ... "count - 1": texts that tell their own position.
QStringList numberedTexts(int count);

} // namespace velto::test
