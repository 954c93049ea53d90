#pragma once

#include <functional>
#include <memory>
#include <stop_token>

#include <QList>
#include <QStringList>

#include "VeltoKit/job/QualityFinding.h"

namespace velto {

class SubtitleDocument;
class TranslationBackend;
class TranslationCache;
class Translator;

// What the job does after the quality review when the translator has a list of names and
// terms: every cue whose source holds a listed term and whose Spanish lacks what the list asks
// for is asked again, alone, once, with the list's rule restated. Its kept terms travel as
// placeholders that are put back afterwards, so an engine that translates every word still
// gives them back; a rendering has to agree with the Spanish around it, so it is asked for in
// words. A cue still wrong keeps its first translation and is named.
class GlossaryReview {
public:
    using ProgressHandler = std::function<void(qint64 asked, qint64 count)>;

    struct Outcome {
        QStringList translations{};
        QList<QualityFinding> findings{}; // QualityIssue::names, in cue order
    };

    // `translator` (whose glossary is checked) must outlive the review; `cache` may be null.
    GlossaryReview(const Translator& translator, std::shared_ptr<const TranslationBackend> backend,
                   qint64 concurrency, std::shared_ptr<TranslationCache> cache);

    // `translations` as the quality review left them; a cue that kept its source text is not
    // looked at (it was named already). Throws Cancelled when `stop` is requested.
    Outcome run(const SubtitleDocument& document, QStringList translations,
                const ProgressHandler& onProgress, std::stop_token stop) const;

private:
    bool respects(const QString& source, const QString& translation) const;

    const Translator& m_translator;
    std::shared_ptr<const TranslationBackend> m_backend;
    qint64 m_concurrency;
    std::shared_ptr<TranslationCache> m_cache;
};

} // namespace velto
