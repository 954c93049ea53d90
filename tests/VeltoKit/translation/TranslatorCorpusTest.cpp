// Every real-world subtitle file goes the way a job takes it with the echo engine: translate,
// put the texts back, verify the timings, write, read back and verify again.
#include <algorithm>

#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include "VeltoKit/core/TextTrim.h"
#include "VeltoKit/engines/EchoBackend.h"
#include "VeltoKit/subtitles/AssDocument.h"
#include "VeltoKit/subtitles/SubtitleDocument.h"
#include "VeltoKit/subtitles/Subtitles.h"
#include "VeltoKit/translation/TranslationCache.h"
#include "VeltoKit/translation/Translator.h"
#include "support/QStringPrinter.h"
#include "support/SubtitleCorpus.h"

using namespace velto;
using namespace Qt::StringLiterals;

namespace {

struct Setup {
    qint64 batchSize;
    qint64 contextLines;
    qint64 concurrency;
    bool cached;
};

// The echo of one text once the block protocol has carried it there and back: the block's end
// loses its trailing whitespace on the way.
QString echoOf(const QString& text) {
    return trimTrailingWhitespace(QString(u"[ES] "_s + text));
}

QStringList echoesOf(const QStringList& texts) {
    QStringList out;
    for (const QString& text : texts)
        out.append(echoOf(text));
    return out;
}

// A failure names the first text that differs instead of printing the first 32 of a thousand.
void expectSameTexts(const QStringList& actual, const QStringList& expected) {
    ASSERT_EQ(actual.size(), expected.size());
    const auto [got, wanted] = std::mismatch(actual.begin(), actual.end(), expected.begin());
    if (got != actual.end()) {
        EXPECT_EQ(*got, *wanted) << "text " << got - actual.begin() + 1;
    }
}

Translator::Result translate(const Setup& setup, const QStringList& texts,
                             const QString& cacheFile) {
    auto cache =
        setup.cached ? std::make_shared<TranslationCache>(cacheFile, u"echo|neutro"_s) : nullptr;
    return Translator(std::make_shared<EchoBackend>(), u"inglés"_s, SpanishVariant::neutro,
                      setup.batchSize, setup.contextLines, setup.concurrency, std::move(cache))
        .translateAll(texts, nullptr, {});
}

void checkRoundTrip(const Setup& setup, const SubtitleCorpus::File& file, const QString& scratch) {
    const std::shared_ptr<SubtitleDocument> original = Subtitles::load(file.path, file.codec);
    const QStringList texts = original->texts();
    const QString cacheFile = scratch + u"/cache.json"_s;
    const Translator::Result result = translate(setup, texts, cacheFile);
    expectSameTexts(result.translations, echoesOf(texts));
    EXPECT_EQ(result.warnings, QStringList());
    EXPECT_EQ(result.progress.failed, 0);
    if (setup.cached) {
        // Read back from the file by a fresh cache, as a second run of the same job would.
        const Translator::Result again = translate(setup, texts, cacheFile);
        EXPECT_EQ(again.progress.cached, texts.size());
        expectSameTexts(again.translations, result.translations);
    }

    const std::unique_ptr<SubtitleDocument> rebuilt = original->clone();
    rebuilt->setTexts(result.translations);
    EXPECT_NO_THROW(Subtitles::verifyTiming(*original, *rebuilt));
    const QString written = scratch + u"/translated"_s + rebuilt->fileExtension();
    Subtitles::write(*rebuilt, written);
    const std::shared_ptr<SubtitleDocument> reloaded = Subtitles::load(written, file.codec);
    EXPECT_NO_THROW(Subtitles::verifyTiming(*original, *reloaded));
    expectSameTexts(reloaded->texts(), result.translations);
    // Every override block and line break is back in its own event, where it was.
    if (const auto* ass = dynamic_cast<const AssDocument*>(original.get())) {
        expectSameTexts(dynamic_cast<const AssDocument&>(*reloaded).dialogueTexts(),
                        echoesOf(ass->dialogueTexts()));
    }
}

void checkEveryFile(const Setup& setup) {
    const QString corpus = SubtitleCorpus::directory();
    if (!QFileInfo(corpus).isDir())
        GTEST_SKIP() << "no subtitle corpus at " << corpus.toStdString();
    int translated = 0;
    for (const SubtitleCorpus::File& file : SubtitleCorpus::files(corpus)) {
        if (file.holdsNoCue())
            continue;
        SCOPED_TRACE(file.path.toStdString());
        QTemporaryDir scratch;
        ASSERT_TRUE(scratch.isValid());
        checkRoundTrip(setup, file, scratch.path());
        ++translated;
    }
    EXPECT_GT(translated, 0);
}

} // namespace

// The cache goes with the large batches: it is rewritten after every batch, and small ones over a
// thousand cues would spend the test's time writing it.
TEST(TranslatorCorpus, EchoesEveryFileInSmallConcurrentBatchesWithContext) {
    checkEveryFile({.batchSize = 7, .contextLines = 3, .concurrency = 3, .cached = false});
}

TEST(TranslatorCorpus, EchoesEveryFileInLargeBatchesOneAtATimeThroughTheCache) {
    checkEveryFile({.batchSize = 40, .contextLines = 0, .concurrency = 1, .cached = true});
}
