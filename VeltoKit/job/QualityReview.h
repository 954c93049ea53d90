#pragma once

#include <functional>
#include <memory>
#include <stop_token>

#include <QList>
#include <QStringList>

#include "VeltoKit/job/QualityFinding.h"
#include "VeltoKit/translation/Translator.h"

namespace velto {

class SubtitleDocument;
class TranslationBackend;
class TranslationCache;

// What the job does between translating and rebuilding: every cue that got no answer, still
// reads as its source, or carries what its source does not (what the model said around the
// blocks, another block's text) is asked again, alone, once. Answers that hold up replace the
// first ones (in the cache too); a cue still wrong keeps its source text, so nothing the model
// added reaches the track. Then every cue is checked.
class QualityReview {
public:
    // How many of the cues asked again have been answered, of how many.
    using ProgressHandler = std::function<void(qint64 asked, qint64 count)>;

    struct Outcome {
        QStringList translations{}; // one per text, as setTexts takes them
        QList<QualityFinding> findings{};
        // The translator's, less those about cues the second asking fixed, then the findings'.
        QStringList warnings{};
        // Cues the written track holds in the source language.
        qint64 untranslated = 0;
    };

    // `translator` must outlive the review; `cache` may be null.
    QualityReview(const Translator& translator, std::shared_ptr<const TranslationBackend> backend,
                  qint64 concurrency, std::shared_ptr<TranslationCache> cache);

    // `translated` is what the translator gave for the document's texts. `onProgress` is called
    // only when some cue is asked again, first with 0. Throws Cancelled when `stop` is requested.
    Outcome run(const SubtitleDocument& document, const Translator::Result& translated,
                const ProgressHandler& onProgress, std::stop_token stop) const;

private:
    const Translator& m_translator;
    std::shared_ptr<const TranslationBackend> m_backend;
    qint64 m_concurrency;
    std::shared_ptr<TranslationCache> m_cache;
};

} // namespace velto
