#include <algorithm>

#include <QFileInfo>
#include <QRegularExpression>
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

// The echo of each text once the block protocol carried it there and back: a block's end loses
// its trailing whitespace on the way.
QStringList echoesOf(QStringList texts) {
    for (QString& text : texts)
        text = trimTrailingWhitespace(QString(u"[ES] "_s + text));
    return texts;
}

// The echoes of `texts`, except where `translations` kept the text as it was: those are only
// allowed for texts with no words (blank, marks or override blocks only, ASS drawings).
QStringList echoesOrKept(const QStringList& texts, const QStringList& translations) {
    static const QRegularExpression noWords(
        uR"(⟪\d+⟫|\{[^{}]*\}|\\[Nnh]|<[^<>]*>|[mnlbspc\d\s.-])"_s);
    QStringList expected = echoesOf(texts);
    for (qsizetype k = 0; k < texts.size() && k < translations.size(); ++k) {
        if (translations[k] == texts[k] && QString(texts[k]).remove(noWords).isEmpty())
            expected[k] = texts[k];
    }
    return expected;
}

// Names the first text that differs instead of printing a thousand.
void expectSameTexts(const QStringList& actual, const QStringList& expected) {
    ASSERT_EQ(actual.size(), expected.size());
    const auto [got, wanted] = std::mismatch(actual.begin(), actual.end(), expected.begin());
    if (got != actual.end()) {
        EXPECT_EQ(*got, *wanted) << "text " << got - actual.begin() + 1;
    }
}

} // namespace

// Every real-world file the way a job takes it with the echo engine: translated in concurrent
// batches with context through the cache, then put back with every timing unchanged.
TEST(TranslatorCorpus, EchoesEveryFileAndBringsItBackWithItsTimings) {
    const QString corpus = SubtitleCorpus::directory();
    if (!QFileInfo(corpus).isDir())
        GTEST_SKIP() << "no subtitle corpus at " << corpus.toStdString();
    const QList<SubtitleCorpus::File> files = SubtitleCorpus::files(corpus);
    ASSERT_FALSE(files.isEmpty());
    for (const SubtitleCorpus::File& file : files) {
        if (file.holdsNoCue())
            continue;
        SCOPED_TRACE(file.path.toStdString());
        QTemporaryDir scratch;
        const std::shared_ptr<SubtitleDocument> original = Subtitles::load(file.path, file.codec);
        const QStringList texts = original->texts();
        const auto translate = [&] {
            return Translator(std::make_shared<EchoBackend>(), u"inglés"_s, SpanishVariant::neutro,
                              16, 3, 3,
                              std::make_shared<TranslationCache>(scratch.filePath(u"cache.json"_s),
                                                                 u"echo|neutro"_s))
                .translateAll(texts, nullptr, {});
        };
        const Translator::Result result = translate();
        const QStringList expected = echoesOrKept(texts, result.translations);
        expectSameTexts(result.translations, expected);
        EXPECT_EQ(result.warnings, QStringList());
        // Only what was sent counts.
        qsizetype kept = 0;
        for (qsizetype k = 0; k < texts.size(); ++k)
            kept += expected[k] == texts[k];
        EXPECT_EQ(result.progress.total, texts.size() - kept);
        // A second run reads everything back from the cache file.
        EXPECT_EQ(translate().progress.cached, result.progress.total);

        const std::unique_ptr<SubtitleDocument> rebuilt = original->clone();
        rebuilt->setTexts(result.translations);
        EXPECT_NO_THROW(Subtitles::verifyTiming(*original, *rebuilt));
        // Every override block and line break is back in its own event, where it was.
        if (const auto* ass = dynamic_cast<const AssDocument*>(original.get()))
            expectSameTexts(
                dynamic_cast<const AssDocument&>(*rebuilt).dialogueTexts(),
                echoesOrKept(ass->dialogueTexts(),
                             dynamic_cast<const AssDocument&>(*rebuilt).dialogueTexts()));
    }
}
