#include "VeltoKit/job/GlossaryReview.h"

#include <algorithm>

#include "VeltoKit/job/QualityCheck.h"
#include "VeltoKit/subtitles/CueText.h"
#include "VeltoKit/subtitles/SubtitleDocument.h"
#include "VeltoKit/translation/SingleCueTranslator.h"
#include "VeltoKit/translation/TranslationCache.h"
#include "VeltoKit/translation/Translator.h"

namespace velto {

GlossaryReview::GlossaryReview(const Translator& translator,
                               std::shared_ptr<const TranslationBackend> backend,
                               qint64 concurrency, std::shared_ptr<TranslationCache> cache)
    : m_translator(translator)
    , m_backend(std::move(backend))
    , m_concurrency(concurrency)
    , m_cache(std::move(cache)) {}

bool GlossaryReview::respects(const QString& source, const QString& translation) const {
    const QList<Glossary::Entry> entries = m_translator.glossary().entriesIn(source);
    return std::all_of(entries.cbegin(), entries.cend(), [&](const Glossary::Entry& entry) {
        return Glossary::isRespected(entry, translation);
    });
}

GlossaryReview::Outcome GlossaryReview::run(const SubtitleDocument& document,
                                            QStringList translations,
                                            const ProgressHandler& onProgress,
                                            std::stop_token stop) const {
    const Glossary& glossary = m_translator.glossary();
    const QStringList texts = document.texts();
    QList<qsizetype> wrong;
    for (qsizetype k = 0; k < texts.size() && k < translations.size(); ++k) {
        if (translations[k] != texts[k] && CueText::isTranslatable(texts[k]) &&
            !respects(texts[k], translations[k]))
            wrong.append(k);
    }
    if (wrong.isEmpty())
        return {std::move(translations), {}};

    QStringList asked = texts;
    QList<Glossary::Shielded> shielded;
    for (const qsizetype k : wrong) {
        shielded.append(glossary.shieldKept(texts[k]));
        asked[k] = shielded.last().text;
    }
    const auto restored = [&](qsizetype k, const QString& answer) {
        return Glossary::unshield(answer, shielded[wrong.indexOf(k)]);
    };
    const auto holdsUp = [&](qsizetype k, const QString& answer) {
        const QString text = restored(k, answer);
        return respects(texts[k], text) && !QualityCheck::isUntranslated(texts[k], text) &&
               !QualityCheck::isLost(texts[k], text) && !QualityCheck::carriesExtra(texts[k], text);
    };
    const QList<std::optional<QString>> answers =
        SingleCueTranslator(m_translator, m_backend, m_concurrency)
            .translate(asked, wrong, onProgress, std::move(stop), holdsUp);

    Outcome outcome;
    QList<qsizetype> named;
    for (qsizetype i = 0; i < wrong.size(); ++i) {
        const qsizetype k = wrong[i];
        if (answers[i] && holdsUp(k, *answers[i])) {
            translations[k] = restored(k, *answers[i]);
            if (m_cache)
                m_cache->put(m_translator.cacheKey(texts[k]), translations[k]);
        } else {
            named.append(k);
        }
    }
    if (m_cache)
        m_cache->flush();
    for (const CheckedCue& cue : QualityCheck::cues(document, translations)) {
        if (named.contains(cue.number - 1))
            outcome.findings.append({QualityIssue::names, cue});
    }
    outcome.translations = std::move(translations);
    return outcome;
}

} // namespace velto
