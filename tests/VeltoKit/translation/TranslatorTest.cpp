#include "VeltoKit/translation/Translator.h"

#include <condition_variable>
#include <future>
#include <mutex>

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include "VeltoKit/core/VeltoError.h"
#include "VeltoKit/translation/BlockProtocol.h"
#include "VeltoKit/translation/SingleCueTranslator.h"
#include "VeltoKit/translation/TranslationBackend.h"
#include "VeltoKit/translation/TranslationCache.h"
#include "VeltoKit/translation/TranslationError.h"
#include "support/EngineTesting.h"

using namespace velto;
using namespace Qt::StringLiterals;

namespace {

// What the echo engine answers; also the default answer of the engine below.
QStringList echoed(QStringList texts, std::stop_token = {}) {
    for (QString& text : texts)
        text.prepend(u"[ES] "_s);
    return texts;
}

// "0", "1", ...: texts that tell their own position.
QStringList numberedTexts(int count) {
    QStringList texts;
    for (int i = 0; i < count; ++i)
        texts.append(QString::number(i));
    return texts;
}

// Waits give up after a minute, so a translator that never lets the awaited moment happen fails
// instead of hanging.
constexpr auto patience = std::chrono::minutes(1);

// The fixture is the engine: `answer` turns the texts of a request's blocks into translations,
// and answers hand-shake through `mutex`.
class TranslatorTest : public testing::Test, public TranslationBackend {
protected:
    QString label() const override { return u"guion"_s; }
    QString complete(const QString&, const QString& prompt, std::stop_token stop) const override {
        QStringList texts;
        for (const auto& [number, text] :
             BlockProtocol::split(prompt.sliced(prompt.lastIndexOf(BlockProtocol::header()))))
            texts.append(text);
        std::unique_lock lock(mutex);
        requests.append(texts);
        prompts.append(prompt);
        lock.unlock();
        QList<std::pair<int, QString>> blocks;
        for (const QString& translation : answer(texts, stop))
            blocks.append({static_cast<int>(blocks.size() + 1), translation});
        return BlockProtocol::build(blocks);
    }

    Translator::Result run(const QStringList& texts, qint64 batchSize, qint64 concurrency,
                           std::shared_ptr<TranslationCache> cache = nullptr,
                           std::stop_token stop = {},
                           const Translator::ProgressHandler& onProgress = nullptr) {
        return Translator(engine(), u"inglés"_s, SpanishVariant::neutro, batchSize, 1, concurrency,
                          std::move(cache))
            .translateAll(texts, onProgress, stop);
    }
    // Not owned: the fixture outlives every translation.
    std::shared_ptr<const TranslationBackend> engine() const {
        return {std::shared_ptr<void>(), this};
    }
    std::shared_ptr<TranslationCache> cache() const {
        return std::make_shared<TranslationCache>(dir.filePath(u"video.json"_s), u"s"_s);
    }
    // Keeps a request in flight until the translator stops it.
    [[noreturn]] void holdUntilStopped(std::stop_token stop) const {
        std::unique_lock lock(mutex);
        ++held;
        changed.notify_all();
        changed.wait_for(lock, stop, patience, [] { return false; });
        EXPECT_TRUE(stop.stop_requested());
        throw Cancelled();
    }
    bool awaitHeld(int count) const {
        std::unique_lock lock(mutex);
        return changed.wait_for(lock, patience, [&] { return held == count; });
    }

    std::function<QStringList(const QStringList& texts, std::stop_token stop)> answer = echoed;
    mutable QList<QStringList> requests;
    mutable QStringList prompts;
    mutable std::mutex mutex;
    mutable std::condition_variable_any changed;
    mutable int held = 0;
    QTemporaryDir dir;
};

} // namespace

TEST_F(TranslatorTest, HalvesAFailingBatchDownToSingleTextsAndCountsOnlyTheHopelessOnes) {
    // Drops the last block of every answer with several texts; one text is always refused.
    answer = [](const QStringList& texts, std::stop_token) {
        if (texts == QStringList{u"intraducible"_s})
            throw TranslationError::transient(u"El motor no quiso responder."_s);
        return echoed(texts.size() > 1 ? texts.first(texts.size() - 1) : texts);
    };
    const auto result = run(numberedTexts(7) << u"intraducible"_s, 8, 1);
    const QString halved = u"Lote de %1 reintentado en dos mitades (faltan o sobran bloques "
                           u"(esperados %1, recibidos %2))"_s;
    QStringList warnings;
    for (int n : {8, 4, 2, 2, 4, 2, 2})
        warnings << halved.arg(n).arg(n - 1);
    EXPECT_EQ(result.warnings,
              warnings << u"Lote de 1 sin traducir (El motor no quiso responder.)"_s);
    EXPECT_EQ(result.translations, echoed(numberedTexts(7)) << u"intraducible"_s);
    EXPECT_EQ(result.progress, (TranslationProgress{8, 8, 0, 1}));
}

TEST_F(TranslatorTest, WarnsWhenStyleMarksGetLostButKeepsTheTranslation) {
    const QStringList answers = {u"Hola⟪1⟫ vos"_s, u"<i>Adiós</i>"_s, u"<b>Sí</b>\nNo"_s,
                                 u"<i>Nada</i>"_s};
    answer = [&](auto&&...) { return answers; };
    const auto result =
        run({u"⟪0⟫Hola⟪1⟫ vos"_s, u"<i>Chau</i>"_s, u"<b>Sí</b>\n<b>No</b>"_s, u"Nada"_s}, 4, 1);
    EXPECT_EQ(result.translations, answers);
    EXPECT_EQ(result.warnings,
              (QStringList{u"Se perdieron etiquetas de estilo en: ⟪0⟫Hola⟪1⟫ vos"_s,
                           u"Se perdieron etiquetas de estilo en: <b>Sí</b> <b>No</b>"_s}));
}

TEST_F(TranslatorTest, BatchesOnlyTheTextsWithWordsMissingFromTheCacheAndCountsOnlyThose) {
    const auto shared = cache();
    // Placeholders alone are no words: kept as they are, never sent nor counted.
    const QStringList texts = numberedTexts(6) << u"⟪1⟫⟪2⟫"_s;
    for (const QString& text : {texts[1], texts[4]})
        shared->put(shared->key(text), u"guardado "_s + text);
    QList<TranslationProgress> reported;
    const auto result =
        run(texts, 2, 1, shared, {}, [&](const TranslationProgress& p) { reported.append(p); });
    EXPECT_EQ(requests, (QList<QStringList>{{u"0"_s, u"2"_s}, {u"3"_s, u"5"_s}}));
    EXPECT_EQ(result.translations,
              (QStringList{u"[ES] 0"_s, u"guardado 1"_s, u"[ES] 2"_s, u"[ES] 3"_s, u"guardado 4"_s,
                           u"[ES] 5"_s, texts[6]}));
    EXPECT_EQ(reported, (QList<TranslationProgress>{{6, 2, 2, 0}, {6, 4, 2, 0}, {6, 6, 2, 0}}));
    // Everything is cached now: the engine is not asked again.
    EXPECT_EQ(run(texts, 2, 1, shared).progress, (TranslationProgress{6, 6, 6, 0}));
    EXPECT_EQ(requests.size(), 2);
}

TEST_F(TranslatorTest, AFatalErrorOnTheThirdBatchEndsTheTranslationUnhalved) {
    answer = [&](const QStringList& texts, std::stop_token) {
        if (texts.first() == u"4")
            throw TranslationError::fatal(u"El modelo no existe."_s);
        return echoed(texts);
    };
    EXPECT_EQ(test::fatalMessageOf([&] { run(numberedTexts(12), 2, 1, cache()); }),
              u"El modelo no existe."_s);
    EXPECT_EQ(requests.size(), 3);
    EXPECT_EQ(cache()->count(), 4); // the first two batches
}

TEST_F(TranslatorTest, CancelStopsRequestsInFlightAndARerunAsksOnlyForWhatWasMissing) {
    // "0-1" is translated. "2-3" gets a bad answer once "4-5" hangs, so after the last flush of
    // the other worker; of its halves "2" is translated and "3" hangs.
    answer = [&](const QStringList& texts, std::stop_token stop) {
        if (texts.size() == 2 && texts[0] == u"2" && awaitHeld(1))
            return QStringList();
        if (texts[0] != u"0" && texts[0] != u"2")
            holdUntilStopped(stop);
        return echoed(texts);
    };
    const QStringList texts = numberedTexts(10);
    std::stop_source cancel;
    auto running =
        std::async(std::launch::async, [&] { run(texts, 2, 2, cache(), cancel.get_token()); });
    EXPECT_TRUE(awaitHeld(2));
    cancel.request_stop();
    EXPECT_THROW(running.get(), Cancelled);
    EXPECT_EQ(requests.size(), 5);

    answer = echoed;
    requests.clear();
    const auto result = run(texts, 8, 1, cache());
    EXPECT_EQ(result.translations, echoed(texts));
    EXPECT_EQ(result.progress.cached, 3);
    EXPECT_EQ(requests, QList<QStringList>{texts.sliced(3)});
}

// The second chance of a text: alone, with the translator's prompts and context.
TEST_F(TranslatorTest, SingleCuesKeepOnlyWholeAnswersAndStopQuietlyAtAFatalError) {
    answer = [](const QStringList& texts, std::stop_token) {
        const QString text = texts.value(0);
        if (text == u"cuatro" || text == u"cinco")
            throw text == u"cinco" ? TranslationError::fatal(u"falló"_s)
                                   : TranslationError::transient(u"falló"_s);
        // A block too many, a lost placeholder, or whole.
        return text == u"dos"       ? QStringList{u"two"_s, u"de más"_s}
               : text == u"⟪1⟫tres" ? QStringList{u"three"_s}
                                    : QStringList{text.toUpper()};
    };
    const Translator translator(engine(), u"inglés"_s, SpanishVariant::neutro, 40, 1, 1, nullptr);
    // A good answer between the unusable ones keeps the asking going up to the fatal error.
    const QStringList texts = {u"dos"_s,    u"⟪1⟫tres"_s, u"uno"_s,
                               u"cuatro"_s, u"cinco"_s,   u"seis"_s};
    QList<qint64> progress;
    EXPECT_EQ(SingleCueTranslator(translator, engine(), 1)
                  .translate(texts, {0, 1, 2, 3, 4, 5},
                             [&](qint64 asked, qint64) { progress.append(asked); }, {}),
              (QList<std::optional<QString>>{{}, {}, u"UNO"_s, {}, {}, {}}));
    EXPECT_EQ(progress, (QList<qint64>{0, 1, 2, 3, 4, 5}))
        << "nothing is asked after a fatal error";
    EXPECT_EQ(prompts.value(2), translator.prompt(texts, {2}));
}
