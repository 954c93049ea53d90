#include "VeltoKit/job/QualityReview.h"

#include "VeltoKit/job/QualityCheck.h"
#include "VeltoKit/subtitles/SubtitleDocument.h"
#include "VeltoKit/translation/SingleCueTranslator.h"
#include "VeltoKit/translation/TranslationCache.h"

namespace velto {

QualityReview::QualityReview(const Translator& translator,
                             std::shared_ptr<const TranslationBackend> backend, qint64 concurrency,
                             std::shared_ptr<TranslationCache> cache)
    : m_translator(translator)
    , m_backend(std::move(backend))
    , m_concurrency(concurrency)
    , m_cache(std::move(cache)) {}

QualityReview::Outcome QualityReview::run(const SubtitleDocument& document,
                                          const QStringList& translations,
                                          const TranslationProgress& progress,
                                          const ProgressHandler& onProgress,
                                          std::stop_token stop) const {
    Outcome outcome{translations,
                    QualityCheck::inspect(QualityCheck::cues(document, translations))};
    QList<qsizetype> again;
    for (const QualityFinding& finding : outcome.findings) {
        // Cues are numbered from 1 in the order of the texts.
        if (finding.issue == QualityIssue::untranslated)
            again.append(finding.cue.number - 1);
    }
    if (!again.isEmpty()) {
        TranslationProgress counted = progress;
        counted.total += again.size();
        const auto report = [&](qint64 asked) {
            TranslationProgress now = counted;
            now.done += asked;
            if (onProgress)
                onProgress(now);
        };
        report(0);
        const QStringList texts = document.texts();
        const QList<std::optional<QString>> answers =
            SingleCueTranslator(m_translator, m_backend, m_concurrency)
                .translate(texts, again, report, std::move(stop));
        for (qsizetype i = 0; i < again.size(); ++i) {
            const qsizetype k = again[i];
            if (!answers[i] || QualityCheck::isUntranslated(texts[k], *answers[i]) ||
                QualityCheck::isLost(texts[k], *answers[i]))
                continue;
            outcome.translations[k] = *answers[i];
            // The next run of this video starts from the better answer.
            if (m_cache)
                m_cache->put(m_cache->key(texts[k]), *answers[i]);
        }
        if (m_cache)
            m_cache->flush();
        outcome.findings =
            QualityCheck::inspect(QualityCheck::cues(document, outcome.translations));
    }
    return outcome;
}

} // namespace velto
