#pragma once

#include <functional>
#include <memory>
#include <stop_token>

#include <QList>
#include <QStringList>

#include "VeltoKit/job/QualityFinding.h"
#include "VeltoKit/translation/TranslationProgress.h"

namespace velto {

class SubtitleDocument;
class TranslationBackend;
class TranslationCache;
class Translator;

// What the job does between translating and rebuilding: every cue whose translation still
// reads as its source is asked again, alone, once; answers that are translations replace the
// first ones (in the cache too), and then every cue is checked.
class QualityReview {
public:
    using ProgressHandler = std::function<void(const TranslationProgress&)>;

    struct Outcome {
        QStringList translations; // one per text, as setTexts takes them
        QList<QualityFinding> findings;
    };

    // `translator` must outlive the review; `cache` may be null.
    QualityReview(const Translator& translator, std::shared_ptr<const TranslationBackend> backend,
                  qint64 concurrency, std::shared_ptr<TranslationCache> cache);

    // `progress` is where the translation ended; the cues asked again are added to its total
    // and to its done as they are answered. Throws Cancelled when `stop` is requested.
    Outcome run(const SubtitleDocument& document, const QStringList& translations,
                const TranslationProgress& progress, const ProgressHandler& onProgress,
                std::stop_token stop) const;

private:
    const Translator& m_translator;
    std::shared_ptr<const TranslationBackend> m_backend;
    qint64 m_concurrency;
    std::shared_ptr<TranslationCache> m_cache;
};

} // namespace velto
