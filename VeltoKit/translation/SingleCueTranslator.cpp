#include "VeltoKit/translation/SingleCueTranslator.h"

#include <mutex>
#include <stdexcept>

#include "VeltoKit/core/BoundedTasks.h"
#include "VeltoKit/core/VeltoError.h"
#include "VeltoKit/subtitles/CueText.h"
#include "VeltoKit/translation/BlockProtocol.h"
#include "VeltoKit/translation/FailureStreak.h"
#include "VeltoKit/translation/TranslationBackend.h"
#include "VeltoKit/translation/TranslationError.h"
#include "VeltoKit/translation/Translator.h"

namespace velto {

SingleCueTranslator::SingleCueTranslator(const Translator& translator,
                                         std::shared_ptr<const TranslationBackend> backend,
                                         qint64 concurrency)
    : m_translator(translator)
    , m_backend(std::move(backend))
    , m_concurrency(concurrency) {
    if (!m_backend || m_concurrency < 1)
        throw std::invalid_argument("SingleCueTranslator needs a backend and workers");
}

QList<std::optional<QString>> SingleCueTranslator::translate(const QStringList& texts,
                                                             const QList<qsizetype>& positions,
                                                             const ProgressHandler& onProgress,
                                                             std::stop_token stop,
                                                             const Judge& holdsUp) const {
    QList<std::optional<QString>> answers(positions.size());
    BoundedTasks tasks(m_concurrency);
    std::mutex mutex;
    qint64 asked = 0;
    if (onProgress)
        onProgress(asked, positions.size());
    FailureStreak streak(Translator::failuresToStop(m_concurrency));
    auto askOne = [&](qsizetype k, std::stop_token shared) {
        try {
            answers[k] = ask(texts, positions[k], shared);
            if (answers[k] && (!holdsUp || holdsUp(positions[k], *answers[k])))
                streak.answered();
            else if (streak.failed(QString()))
                tasks.halt(); // a model that keeps answering wrong would for every text
        } catch (const TranslationError& error) {
            // No other request would get through either.
            if (error.isFatal() || (!shared.stop_requested() && streak.failed(error.message())))
                tasks.halt();
        } catch (const VeltoError&) {
            // This text keeps its first answer.
        }
        const std::lock_guard lock(mutex);
        if (onProgress)
            onProgress(++asked, positions.size());
    };
    tasks.run(positions.size(), askOne, std::move(stop));
    return answers;
}

std::optional<QString> SingleCueTranslator::ask(const QStringList& texts, qsizetype position,
                                                std::stop_token stop) const {
    const QString answer =
        m_backend->complete(m_translator.systemPrompt(texts, {position}),
                            m_translator.prompt(texts, {position}), std::move(stop));
    const std::map<int, QString> blocks = BlockProtocol::split(answer);
    if (blocks.size() != 1 || !blocks.contains(1) ||
        !CueText::keepsPlaceholders(texts[position], blocks.at(1)))
        return std::nullopt;
    return blocks.at(1);
}

} // namespace velto
