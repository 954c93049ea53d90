#include "VeltoKit/translation/SingleCueTranslator.h"

#include <atomic>
#include <exception>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <vector>

#include <QRegularExpression>

#include "VeltoKit/core/VeltoError.h"
#include "VeltoKit/translation/BlockProtocol.h"
#include "VeltoKit/translation/TranslationBackend.h"
#include "VeltoKit/translation/TranslationError.h"
#include "VeltoKit/translation/Translator.h"

namespace velto {
namespace {

// An answer without one of these would drop the styling, or the line break, it stands for.
bool keepsPlaceholders(const QString& text, const QString& answer) {
    static const QRegularExpression placeholder(QStringLiteral("⟪\\d+⟫"));
    for (const QRegularExpressionMatch& match : placeholder.globalMatch(text)) {
        if (!answer.contains(match.capturedView(0)))
            return false;
    }
    return true;
}

} // namespace

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
                                                             std::stop_token stop) const {
    QList<std::optional<QString>> answers(positions.size());
    std::atomic<qsizetype> next = 0;
    // Set by a fatal engine error: no other request would get through either.
    std::atomic<bool> halt = false;
    std::mutex mutex;
    qint64 asked = 0;
    std::exception_ptr unexpected;
    auto work = [&] {
        try {
            for (qsizetype k = next++; k < positions.size(); k = next++) {
                if (stop.stop_requested() || halt)
                    return;
                try {
                    answers[k] = ask(texts, positions[k], stop);
                } catch (const TranslationError& error) {
                    halt = halt || error.isFatal();
                } catch (const VeltoError&) {
                    // This text keeps its first answer.
                }
                const std::lock_guard lock(mutex);
                if (onProgress)
                    onProgress(++asked);
            }
        } catch (const Cancelled&) {
            // Seen by the caller through `stop`.
        } catch (...) {
            // Not the engine's doing: passed on once every worker has stopped.
            const std::lock_guard lock(mutex);
            if (!unexpected)
                unexpected = std::current_exception();
            halt = true;
        }
    };
    {
        std::vector<std::jthread> workers;
        const qint64 count = std::min<qint64>(m_concurrency, positions.size());
        for (qint64 i = 0; i < count; ++i)
            workers.emplace_back(work);
    }
    if (unexpected)
        std::rethrow_exception(unexpected);
    throwIfStopped(stop);
    return answers;
}

std::optional<QString> SingleCueTranslator::ask(const QStringList& texts, qsizetype position,
                                                std::stop_token stop) const {
    const QString answer = m_backend->complete(
        m_translator.systemPrompt(), m_translator.prompt(texts, {position}), std::move(stop));
    const std::map<int, QString> blocks = BlockProtocol::split(answer);
    if (blocks.size() != 1 || !blocks.contains(1) ||
        !keepsPlaceholders(texts[position], blocks.at(1)))
        return std::nullopt;
    return blocks.at(1);
}

} // namespace velto
