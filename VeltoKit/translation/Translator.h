#pragma once

#include <functional>
#include <memory>
#include <stop_token>
#include <utility>

#include <QList>
#include <QString>
#include <QStringList>

#include "VeltoKit/translation/Glossary.h"
#include "VeltoKit/translation/SpanishVariant.h"
#include "VeltoKit/translation/TranslationProgress.h"

namespace velto {

class TranslationBackend;
class TranslationCache;
class TranslatorState;

// Turns the texts of one subtitle document into as many Spanish texts, in the same order. Texts
// are answered from the cache when possible, the rest go to the engine in batches, up to
// `concurrency` requests at once. A batch whose answer does not fit is retried in halves down to
// single texts; a text that still gets no usable answer keeps its original wording. Texts with no
// words in them (blank, only style marks, ASS drawings) are kept as they are and never sent.
class Translator {
public:
    using ProgressHandler = std::function<void(const TranslationProgress&)>;

    struct Result {
        QStringList translations{}; // exactly one per input text
        QStringList warnings{};     // in the order they arose
        // Counts only the texts that had words to translate.
        TranslationProgress progress{};
        // Positions of the texts that kept their original wording, each with the warning that
        // named it.
        QList<std::pair<qsizetype, QString>> unanswered{};
        // The engine's last failure, empty when it always answered.
        QString engineFailure{};
    };

    // batchSize and concurrency must be at least 1 and contextLines at least 0
    // (std::invalid_argument otherwise). `cache` may be null: nothing is looked up or stored.
    // The glossary's terms reach only the requests whose texts hold them.
    Translator(std::shared_ptr<const TranslationBackend> backend, QString sourceLanguage,
               SpanishVariant variant, qint64 batchSize, qint64 contextLines, qint64 concurrency,
               std::shared_ptr<TranslationCache> cache, Glossary glossary = {});

    QString systemPrompt() const { return m_systemPrompt; }
    // The system prompt for the texts at `indices`, with the glossary's entries they hold.
    QString systemPrompt(const QStringList& texts, const QList<qsizetype>& indices) const;
    const Glossary& glossary() const { return m_glossary; }
    // The cache key of `text`: a text holding listed terms is keyed with their renderings too.
    // Empty without a cache.
    QString cacheKey(const QString& text) const;
    // The request for the texts at `indices` (positions into `texts`, in order, never empty),
    // preceded by up to contextLines source lines as context.
    QString prompt(const QStringList& texts, const QList<qsizetype>& indices) const;

    // onProgress is called after every change, one call at a time, from this thread and from
    // the worker threads.
    // Throws the engine's fatal TranslationError, which stops every other batch, or Cancelled
    // when `stop` is requested. Either way what was already translated stays in the cache.
    // An engine that fails on several requests in a row is not asked again: its last failure
    // becomes fatal.
    Result translateAll(const QStringList& texts, const ProgressHandler& onProgress,
                        std::stop_token stop) const;

    // How many requests in a row may end in a failure before the engine is no longer asked.
    static int failuresToStop(qint64 concurrency);

private:
    struct Run;

    QList<qsizetype> answerFromCache(Run& run, const QList<qsizetype>& translatable) const;
    void runBatches(Run& run, const QList<QList<qsizetype>>& batches, std::stop_token stop) const;
    void runBatch(Run& run, const QList<qsizetype>& indices, std::stop_token stop) const;
    QStringList request(Run& run, const QList<qsizetype>& indices, std::stop_token stop) const;
    void accept(Run& run, const QList<qsizetype>& indices, const QStringList& translations) const;
    static void checkPlaceholders(const QString& original, const QString& translated,
                                  TranslatorState& state);

    std::shared_ptr<const TranslationBackend> m_backend;
    QString m_sourceLanguage;
    SpanishVariant m_variant;
    qint64 m_batchSize;
    qint64 m_contextLines;
    qint64 m_concurrency;
    std::shared_ptr<TranslationCache> m_cache;
    Glossary m_glossary;
    QString m_systemPrompt;
};

} // namespace velto
