#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <stop_token>

#include <QList>
#include <QString>
#include <QStringList>

namespace velto {

class TranslationBackend;
class Translator;

// Asks the engine for one text per request, with the translator's prompts and context: the
// second chance of a text whose first answer was not usable. Up to `concurrency` requests at
// once.
class SingleCueTranslator {
public:
    // Called with 0 before the first request, then after every answered one with how many were
    // answered so far, out of `count`; one call at a time.
    using ProgressHandler = std::function<void(qint64 asked, qint64 count)>;
    // Whether the answer for the text at `position` is one to keep.
    using Judge = std::function<bool(qsizetype position, const QString& answer)>;

    // `translator` must outlive this; concurrency must be at least 1 (std::invalid_argument
    // otherwise).
    SingleCueTranslator(const Translator& translator,
                        std::shared_ptr<const TranslationBackend> backend, qint64 concurrency);

    // One entry per position, in the order given: the engine's answer, or none when the request
    // failed, the answer did not hold exactly the one block asked for, or it lost a formatting
    // placeholder of the text. A fatal engine error, or failures on several requests in a
    // row (an answer `holdsUp` rejects counts as one), ends the asking quietly: what the
    // first pass gave still stands. Throws Cancelled
    // when `stop` is requested.
    QList<std::optional<QString>> translate(const QStringList& texts,
                                            const QList<qsizetype>& positions,
                                            const ProgressHandler& onProgress, std::stop_token stop,
                                            const Judge& holdsUp = {}) const;

private:
    std::optional<QString> ask(const QStringList& texts, qsizetype position,
                               std::stop_token stop) const;

    const Translator& m_translator;
    std::shared_ptr<const TranslationBackend> m_backend;
    qint64 m_concurrency;
};

} // namespace velto
