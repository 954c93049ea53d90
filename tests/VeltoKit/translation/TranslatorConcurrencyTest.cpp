#include <condition_variable>
#include <future>
#include <mutex>

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include "ScriptedBackend.h"
#include "VeltoKit/engines/TranslationError.h"
#include "VeltoKit/translation/TranslationCache.h"
#include "VeltoKit/translation/Translator.h"
#include "support/QStringPrinter.h"

using namespace velto;
using namespace velto::test;
using namespace Qt::StringLiterals;

namespace {

constexpr qint64 batchSize = 2;

int batchOf(const QStringList& texts) {
    return texts.first().toInt() / batchSize;
}

Translator translator(std::shared_ptr<const TranslationBackend> backend, qint64 concurrency,
                      std::shared_ptr<TranslationCache> cache = nullptr) {
    return Translator(std::move(backend), u"inglés"_s, SpanishVariant::neutro, batchSize, 1,
                      concurrency, std::move(cache));
}

// The backends below hand-shake through one lock. Their waits give up after a minute, so a
// translator that never lets the awaited moment happen fails instead of hanging.
struct Rendezvous {
    std::mutex mutex;
    std::condition_variable_any changed;

    template <typename Predicate>
    bool waitUntil(std::unique_lock<std::mutex>& lock, Predicate ready) {
        return changed.wait_for(lock, std::chrono::minutes(1), ready);
    }
    // True when `stop` arrived; false when the minute ran out first.
    bool waitForStop(std::unique_lock<std::mutex>& lock, std::stop_token stop) {
        changed.wait_for(lock, stop, std::chrono::minutes(1), [] { return false; });
        return stop.stop_requested();
    }
};

} // namespace

TEST(TranslatorConcurrency, NeverMoreRequestsInFlightThanAllowedAndResultsGoByPosition) {
    constexpr int concurrency = 3;
    Rendezvous meet;
    int inFlight = 0;
    int peak = 0;
    int firstArrived = 0;
    int firstDone = 0;
    QList<int> firstCompleted;
    const auto backend = std::make_shared<ScriptedBackend>([&](const QStringList& texts, auto) {
        const int batch = batchOf(texts);
        std::unique_lock lock(meet.mutex);
        peak = std::max(peak, ++inFlight);
        if (batch < concurrency) {
            // The first batches wait until all of them are in flight, then end last to first.
            ++firstArrived;
            meet.changed.notify_all();
            EXPECT_TRUE(meet.waitUntil(lock, [&] {
                return firstArrived == concurrency && firstDone == concurrency - 1 - batch;
            }));
            ++firstDone;
            firstCompleted.append(batch);
        } else {
            // Later batches stay in flight until the first ones ended, so any that started too
            // early shows in the peak.
            EXPECT_TRUE(meet.waitUntil(lock, [&] { return firstDone == concurrency; }));
        }
        lock.unlock();
        const QString answer = answerWith(echoed(texts));
        lock.lock();
        --inFlight;
        meet.changed.notify_all();
        return answer;
    });
    const QStringList texts = numberedTexts(24);
    const auto result = translator(backend, concurrency).translateAll(texts, nullptr, {});
    EXPECT_EQ(result.translations, echoed(texts));
    EXPECT_EQ(result.progress, (TranslationProgress{24, 24, 0, 0}));
    EXPECT_EQ(peak, concurrency);
    EXPECT_EQ(firstCompleted, (QList<int>{2, 1, 0}));
    EXPECT_EQ(backend->requests().size(), 12);
}

TEST(TranslatorConcurrency, CancelStopsRequestsInFlightAndARerunAsksOnlyForWhatWasMissing) {
    QTemporaryDir dir;
    const QString path = dir.filePath(u"video.json"_s);
    const QString scope = u"guion|neutro"_s;
    Rendezvous meet;
    int waiting = 0;
    int neverStopped = 0;
    const auto backend =
        std::make_shared<ScriptedBackend>([&](const QStringList& texts, std::stop_token stop) {
            if (batchOf(texts) > 0) {
                std::unique_lock lock(meet.mutex);
                ++waiting;
                meet.changed.notify_all();
                if (meet.waitForStop(lock, stop))
                    throw Cancelled();
                ++neverStopped;
            }
            return answerWith(echoed(texts));
        });
    const QStringList texts = numberedTexts(10);
    std::stop_source cancel;
    auto running = std::async(std::launch::async, [&] {
        return translator(backend, 2, std::make_shared<TranslationCache>(path, scope))
            .translateAll(texts, nullptr, cancel.get_token());
    });
    {
        std::unique_lock lock(meet.mutex);
        EXPECT_TRUE(meet.waitUntil(lock, [&] { return waiting == 2; }));
    }
    cancel.request_stop();
    EXPECT_THROW(running.get(), Cancelled);
    EXPECT_EQ(neverStopped, 0);
    EXPECT_EQ(backend->requests().size(), 3);

    const auto echo = std::make_shared<ScriptedBackend>(
        [](const QStringList& texts, auto) { return answerWith(echoed(texts)); });
    const auto result = translator(echo, 2, std::make_shared<TranslationCache>(path, scope))
                            .translateAll(texts, nullptr, {});
    EXPECT_EQ(result.translations, echoed(texts));
    EXPECT_EQ(result.progress.cached, 2);
    QStringList asked;
    for (const QStringList& request : echo->requests())
        asked.append(request);
    asked.sort();
    EXPECT_EQ(asked, texts.sliced(2));
}

TEST(TranslatorConcurrency, AFatalErrorOnTheThirdBatchStopsItsSiblingAndNothingMoreStarts) {
    QTemporaryDir dir;
    const QString path = dir.filePath(u"video.json"_s);
    Rendezvous meet;
    bool secondWaiting = false;
    int neverStopped = 0;
    const auto backend = std::make_shared<ScriptedBackend>(
        [&](const QStringList& texts, std::stop_token stop) -> QString {
            std::unique_lock lock(meet.mutex);
            if (batchOf(texts) == 2) {
                EXPECT_TRUE(meet.waitUntil(lock, [&] { return secondWaiting; }));
                throw TranslationError(u"El modelo no existe."_s, true);
            }
            if (batchOf(texts) == 1) {
                secondWaiting = true;
                meet.changed.notify_all();
                if (meet.waitForStop(lock, stop))
                    throw Cancelled();
                ++neverStopped;
            }
            return answerWith(echoed(texts));
        });
    try {
        translator(backend, 2, std::make_shared<TranslationCache>(path, u"s"_s))
            .translateAll(numberedTexts(12), nullptr, {});
        FAIL() << "expected the fatal error";
    } catch (const TranslationError& error) {
        EXPECT_EQ(error.message(), u"El modelo no existe."_s);
    }
    EXPECT_EQ(neverStopped, 0);
    EXPECT_EQ(backend->requests().size(), 3);
    const TranslationCache onDisk(path, u"s"_s);
    EXPECT_EQ(onDisk.count(), 2);
    EXPECT_EQ(onDisk.get(onDisk.key(u"1"_s)), u"[ES] 1"_s);
}
