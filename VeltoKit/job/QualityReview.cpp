#include "VeltoKit/job/QualityReview.h"

#include <algorithm>
#include <set>

#include "VeltoKit/job/QualityCheck.h"
#include "VeltoKit/subtitles/CueText.h"
#include "VeltoKit/subtitles/SubtitleDocument.h"
#include "VeltoKit/translation/SingleCueTranslator.h"
#include "VeltoKit/translation/TranslationCache.h"

namespace velto {
namespace {

// Shorter texts turn up inside others by chance ("Yes.", "No, no.").
constexpr qsizetype shortestBorrowed = 8;

// Whether the translation at `k` holds the text of a neighbouring block, source or translation,
// that its own source does not: two blocks answered as one, or a block repeated into another.
bool borrowsNeighbour(const QStringList& texts, const QStringList& translations, qsizetype k) {
    const QString source = CueText::visible(texts[k]);
    const QString own = CueText::visible(translations[k]);
    for (const qsizetype other : {k - 1, k + 1}) {
        if (other < 0 || other >= texts.size())
            continue;
        for (const QString& borrowed :
             {CueText::visible(texts[other]), CueText::visible(translations[other])}) {
            if (borrowed.size() >= shortestBorrowed && own.size() > borrowed.size() &&
                own.contains(borrowed) && !source.contains(borrowed))
                return true;
        }
    }
    return false;
}

bool holdsUp(const QString& source, const QString& answer) {
    return !QualityCheck::isUntranslated(source, answer) && !QualityCheck::isLost(source, answer) &&
           !QualityCheck::carriesExtra(source, answer);
}

// Every cue the track holds in its source language is named, short ones too, and only as that.
QList<QualityFinding> withUntranslated(QList<QualityFinding> findings,
                                       const QList<CheckedCue>& cues,
                                       const std::set<qsizetype>& untranslated) {
    findings.removeIf([&](const QualityFinding& finding) {
        return untranslated.contains(finding.cue.number - 1);
    });
    for (const CheckedCue& cue : cues) {
        if (untranslated.contains(cue.number - 1))
            findings.append({QualityIssue::untranslated, cue});
    }
    std::stable_sort(findings.begin(), findings.end(),
                     [](const auto& a, const auto& b) { return a.cue.number < b.cue.number; });
    return findings;
}

} // namespace

QualityReview::QualityReview(const Translator& translator,
                             std::shared_ptr<const TranslationBackend> backend, qint64 concurrency,
                             std::shared_ptr<TranslationCache> cache)
    : m_translator(translator)
    , m_backend(std::move(backend))
    , m_concurrency(concurrency)
    , m_cache(std::move(cache)) {}

QualityReview::Outcome QualityReview::run(const SubtitleDocument& document,
                                          const Translator::Result& translated,
                                          const ProgressHandler& onProgress,
                                          std::stop_token stop) const {
    const QStringList texts = document.texts();
    Outcome outcome{.translations = translated.translations};
    QStringList& translations = outcome.translations;
    std::set<qsizetype> again;
    for (const auto& [position, warning] : translated.unanswered)
        again.insert(position);
    for (const CheckedCue& cue : QualityCheck::cues(document, translations)) {
        const qsizetype k = cue.number - 1;
        if (QualityCheck::isUntranslated(cue.source, cue.translation) ||
            QualityCheck::carriesExtra(texts[k], translations[k]) ||
            borrowsNeighbour(texts, translations, k))
            again.insert(k);
    }

    std::set<qsizetype> untranslated;
    if (!again.empty()) {
        const QList<qsizetype> positions(again.cbegin(), again.cend());
        const QList<std::optional<QString>> answers =
            SingleCueTranslator(m_translator, m_backend, m_concurrency)
                .translate(
                    texts, positions, onProgress, std::move(stop),
                    [&](qsizetype k, const QString& answer) { return holdsUp(texts[k], answer); });
        for (qsizetype i = 0; i < positions.size(); ++i) {
            const qsizetype k = positions[i];
            if (answers[i] && holdsUp(texts[k], *answers[i])) {
                translations[k] = *answers[i];
                // The next run of this video starts from the better answer.
                if (m_cache)
                    m_cache->put(m_translator.cacheKey(texts[k]), *answers[i]);
            } else {
                // Whatever the model added around the text never reaches the track.
                translations[k] = texts[k];
                untranslated.insert(k);
            }
        }
        if (m_cache)
            m_cache->flush();
    }

    outcome.warnings = translated.warnings;
    for (const auto& [position, warning] : translated.unanswered) {
        if (!untranslated.contains(position))
            outcome.warnings.removeOne(warning);
    }
    const QList<CheckedCue> cues = QualityCheck::cues(document, translations);
    outcome.findings = withUntranslated(QualityCheck::inspect(cues), cues, untranslated);
    outcome.warnings += QualityCheck::warnings(outcome.findings);
    outcome.untranslated = static_cast<qint64>(untranslated.size());
    return outcome;
}

} // namespace velto
