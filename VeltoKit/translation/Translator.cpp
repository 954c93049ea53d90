#include "VeltoKit/translation/Translator.h"

#include <algorithm>
#include <stdexcept>
#include <vector>

#include <QScopeGuard>

#include "VeltoKit/core/BoundedTasks.h"
#include "VeltoKit/core/VeltoError.h"
#include "VeltoKit/subtitles/CueText.h"
#include "VeltoKit/translation/BlockProtocol.h"
#include "VeltoKit/translation/FailureStreak.h"
#include "VeltoKit/translation/TranslationBackend.h"
#include "VeltoKit/translation/TranslationCache.h"
#include "VeltoKit/translation/TranslationError.h"
#include "VeltoKit/translation/TranslatorState.h"

namespace velto {

// What the batches of one translateAll share.
struct Translator::Run {
    Run(const QStringList& texts, qsizetype translatable, const ProgressHandler& onProgress,
        int streakLimit)
        : texts(texts)
        , results(texts.cbegin(), texts.cend())
        , state(translatable, onProgress)
        , streak(streakLimit) {}

    const QStringList& texts;
    // One slot per text, written only by the task that owns its batch.
    std::vector<QString> results;
    // Cache key per text; empty without a cache and for texts that are never sent.
    std::vector<QString> keys;
    TranslatorState state;
    FailureStreak streak;
};

namespace {

QString systemPromptFor(const QString& sourceLanguage, SpanishVariant variant) {
    return QStringLiteral(
               "Sos un traductor profesional de subtítulos para cine y series. Traducís del ") +
           sourceLanguage +
           QStringLiteral(
               " al español.\n\nRecibís bloques numerados con marcadores de la forma #@#N#@#. "
               "Cada bloque es un subtítulo que aparece en pantalla durante un tiempo fijo.\n\n"
               "REGLAS ABSOLUTAS:\n"
               "1. Devolvé EXACTAMENTE la misma cantidad de bloques, con los mismos marcadores "
               "#@#N#@# en el mismo orden, cada marcador solo en su propia línea.\n"
               "2. No fusiones ni dividas bloques. El bloque N traducido corresponde uno a uno "
               "con el bloque N original, porque cada uno tiene su propio timestamp.\n"
               "3. Conservá los saltos de línea internos de cada bloque.\n"
               "4. Conservá tal cual, sin traducir ni reordenar, cualquier marca de la forma "
               "⟪0⟫, ⟪1⟫, etc. Son etiquetas de formato y deben quedar en la misma posición "
               "relativa al texto que envuelven.\n"
               "5. Conservá las etiquetas HTML (<i>, </i>, <b>, <font ...>) y los guiones de "
               "diálogo iniciales.\n"
               "6. Si un bloque es una descripción de sonido entre corchetes ([música tensa], "
               "[ladra]) o una etiqueta de hablante ([JUAN]), traducila también, manteniendo "
               "los corchetes.\n"
               "7. No agregues comentarios, encabezados, explicaciones ni comillas. Solo los "
               "bloques traducidos.\n\n"
               "CRITERIO DE TRADUCCIÓN:\n"
               "- Registro: ") +
           dialectDescription(variant) +
           QStringLiteral(".\n- Natural y hablado, no literal. Que suene a doblaje bien hecho.\n"
                          "- Breve: un subtítulo se lee en pocos segundos. No alargues.\n"
                          "- Mantené el tono (formal/informal, insultos, humor, jerga técnica).\n"
                          "- Nombres propios, marcas y siglas no se traducen.\n"
                          "- Si un bloque ya está en español, devolvelo igual.");
}

} // namespace

int Translator::failuresToStop(qint64 concurrency) {
    // Up to `concurrency` requests may fail at once in a brief outage; one more in a row is not
    // an outage.
    return static_cast<int>(std::clamp<qint64>(concurrency + 1, 3, 9));
}

Translator::Translator(std::shared_ptr<const TranslationBackend> backend, QString sourceLanguage,
                       SpanishVariant variant, qint64 batchSize, qint64 contextLines,
                       qint64 concurrency, std::shared_ptr<TranslationCache> cache,
                       Glossary glossary)
    : m_backend(std::move(backend))
    , m_sourceLanguage(std::move(sourceLanguage))
    , m_variant(variant)
    , m_batchSize(batchSize)
    , m_contextLines(contextLines)
    , m_concurrency(concurrency)
    , m_cache(std::move(cache))
    , m_glossary(std::move(glossary))
    , m_systemPrompt(systemPromptFor(m_sourceLanguage, m_variant)) {
    if (!m_backend || m_batchSize < 1 || m_contextLines < 0 || m_concurrency < 1)
        throw std::invalid_argument("Translator needs a backend, batches and workers");
}

QString Translator::systemPrompt(const QStringList& texts, const QList<qsizetype>& indices) const {
    if (m_glossary.isEmpty())
        return m_systemPrompt;
    QStringList batch;
    for (const qsizetype position : indices)
        batch.append(texts[position]);
    return m_systemPrompt + Glossary::promptAddition(m_glossary.entriesIn(batch));
}

QString Translator::cacheKey(const QString& text) const {
    if (!m_cache)
        return {};
    return m_cache->key(text + Glossary::keyPart(m_glossary.entriesIn(text)));
}

QString Translator::prompt(const QStringList& texts, const QList<qsizetype>& indices) const {
    const qsizetype first = indices.first();
    const qsizetype contextStart = std::max<qsizetype>(0, first - m_contextLines);
    const QString count = QString::number(indices.size());
    QStringList sections;
    if (contextStart < first) {
        sections.append(QStringLiteral("CONTEXTO PREVIO (líneas anteriores en el idioma original; "
                                       "NO las traduzcas ni las incluyas en la respuesta, son "
                                       "solo para que entiendas la escena):\n") +
                        texts.mid(contextStart, first - contextStart).join(u'\n') + u'\n');
    }
    sections.append(QStringLiteral("Traducí los siguientes ") + count +
                    QStringLiteral(" bloques. Devolvé los ") + count +
                    QStringLiteral(" bloques con sus marcadores #@#N#@#, nada más.\n"));
    QList<std::pair<int, QString>> blocks;
    blocks.reserve(indices.size());
    for (qsizetype k = 0; k < indices.size(); ++k)
        blocks.append({static_cast<int>(k + 1), texts[indices[k]]});
    sections.append(BlockProtocol::header() + u'\n' + BlockProtocol::build(blocks));
    return sections.join(u'\n');
}

Translator::Result Translator::translateAll(const QStringList& texts,
                                            const ProgressHandler& onProgress,
                                            std::stop_token stop) const {
    if (texts.isEmpty())
        return {};
    QList<qsizetype> translatable;
    for (qsizetype position = 0; position < texts.size(); ++position) {
        if (CueText::isTranslatable(texts[position]))
            translatable.append(position);
    }
    Run run(texts, translatable.size(), onProgress, failuresToStop(m_concurrency));
    const QList<qsizetype> pending = answerFromCache(run, translatable);
    QList<QList<qsizetype>> batches;
    for (qsizetype start = 0; start < pending.size(); start += m_batchSize)
        batches.append(pending.mid(start, m_batchSize));
    runBatches(run, batches, std::move(stop));
    return {QStringList(run.results.cbegin(), run.results.cend()), run.state.warnings(),
            run.state.progress(), run.state.unanswered(), run.streak.lastFailure()};
}

QList<qsizetype> Translator::answerFromCache(Run& run, const QList<qsizetype>& translatable) const {
    if (!m_cache) {
        run.state.report();
        return translatable;
    }
    QList<qsizetype> pending;
    qint64 hits = 0;
    run.keys.resize(run.texts.size());
    for (const qsizetype position : translatable) {
        run.keys[position] = cacheKey(run.texts[position]);
        if (std::optional<QString> hit = m_cache->get(run.keys[position])) {
            run.results[position] = *std::move(hit);
            ++hits;
        } else {
            pending.append(position);
        }
    }
    run.state.addCached(hits);
    return pending;
}

void Translator::runBatches(Run& run, const QList<QList<qsizetype>>& batches,
                            std::stop_token stop) const {
    // What was translated stays in the cache however the run ends.
    const auto flush = qScopeGuard([this] {
        if (m_cache)
            m_cache->flush();
    });
    // A fatal error leaves a batch and so stops every sibling.
    BoundedTasks(m_concurrency)
        .run(
            batches.size(),
            [&](qsizetype batch, std::stop_token shared) {
                runBatch(run, batches[batch], shared);
                if (m_cache)
                    m_cache->flushIfDue(TranslationCache::Clock::now());
            },
            std::move(stop));
}

void Translator::runBatch(Run& run, const QList<qsizetype>& indices, std::stop_token stop) const {
    throwIfStopped(stop);
    std::optional<QStringList> translations;
    QString failure;
    try {
        translations = request(run, indices, stop);
    } catch (const TranslationError& error) {
        if (error.isFatal())
            throw;
        failure = error.message();
    } catch (const VeltoError& error) {
        failure = error.description();
    }
    if (translations) {
        accept(run, indices, *translations);
        return;
    }
    // A request torn down by a stop is not a failed batch.
    throwIfStopped(stop);

    // "Lote de N" gives the number of texts of the batch, which shows how far the halving went.
    const qsizetype size = indices.size();
    if (size == 1) {
        run.state.addUnanswered(indices.first(),
                                QStringLiteral("Lote de 1 sin traducir (") + failure + u')');
        return;
    }
    run.state.addWarning(QStringLiteral("Lote de ") + QString::number(size) +
                         QStringLiteral(" reintentado en dos mitades (") + failure + u')');
    // The halves take turns in this batch's slot, so halving never exceeds the concurrency.
    runBatch(run, indices.first(size / 2), stop);
    runBatch(run, indices.sliced(size / 2), stop);
}

QStringList Translator::request(Run& run, const QList<qsizetype>& indices,
                                std::stop_token stop) const {
    QString answer;
    try {
        answer =
            m_backend->complete(systemPrompt(run.texts, indices), prompt(run.texts, indices), stop);
    } catch (const TranslationError& error) {
        if (!error.isFatal() && !stop.stop_requested() && run.streak.failed(error.message()))
            throw TranslationError::fatal(error.message());
        throw;
    }
    run.streak.answered();
    const std::map<int, QString> blocks = BlockProtocol::split(answer);
    const qsizetype expected = indices.size();
    QStringList translations;
    for (int number = 1; number <= expected; ++number) {
        const auto block = blocks.find(number);
        if (block == blocks.end())
            break;
        translations.append(block->second);
    }
    // A number given twice counts twice: the last body would silently replace the first.
    const qsizetype received = BlockProtocol::markerCount(answer);
    if (translations.size() != expected || received != expected) {
        throw TranslationError::transient(
            QStringLiteral("faltan o sobran bloques (esperados ") + QString::number(expected) +
            QStringLiteral(", recibidos ") + QString::number(received) + u')');
    }
    return translations;
}

void Translator::accept(Run& run, const QList<qsizetype>& indices,
                        const QStringList& translations) const {
    QList<TranslatedLine> arrived;
    arrived.reserve(indices.size());
    for (qsizetype k = 0; k < indices.size(); ++k) {
        const qsizetype position = indices[k];
        checkPlaceholders(run.texts[position], translations[k], run.state);
        run.results[position] = translations[k];
        if (m_cache)
            m_cache->put(run.keys[position], translations[k]);
        arrived.append({run.texts[position], translations[k]});
    }
    run.state.addFinished(indices.size(), 0, std::move(arrived));
}

void Translator::checkPlaceholders(const QString& original, const QString& translated,
                                   TranslatorState& state) {
    // The source text names the line; its breaks become spaces to keep warnings on one line each.
    if (!CueText::keepsFormatting(original, translated))
        state.addWarning(QStringLiteral("Se perdieron etiquetas de estilo en: ") +
                         QString(original).replace(u'\n', u' '));
}

} // namespace velto
