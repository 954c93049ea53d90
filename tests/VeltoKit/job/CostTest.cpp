#include <cmath>
#include <iostream>
#include <memory>

#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include "VeltoKit/engines/HttpClient.h"
#include "VeltoKit/engines/OpenAICompatibleBackend.h"
#include "VeltoKit/job/CostEstimate.h"
#include "VeltoKit/job/MeteredBackend.h"
#include "VeltoKit/subtitles/SubtitleDocument.h"
#include "VeltoKit/subtitles/Subtitles.h"
#include "VeltoKit/translation/TokenCount.h"
#include "VeltoKit/translation/TranslationCache.h"
#include "VeltoKit/translation/TranslationError.h"
#include "VeltoKit/translation/Translator.h"
#include "support/ChatCompletionsServer.h"
#include "support/EngineTesting.h"
#include "support/SubtitleCorpus.h"

using namespace Qt::StringLiterals;
using namespace velto;
using namespace velto::test;

namespace {

// Answers every block with its own text, reports what a hosted service would bill for it, and
// lets a request write at most `limit` tokens.
class BillingEngine : public TranslationBackend {
public:
    QString label() const override { return u"facturado"_s; }
    QString complete(const QString& system, const QString& prompt,
                     std::stop_token stop) const override {
        return answer(system, prompt, stop).text;
    }
    EngineAnswer answer(const QString& system, const QString& prompt,
                        std::stop_token) const override {
        ++requests;
        const QString blocks = prompt.mid(prompt.indexOf(u"#@#1#@#"_s));
        return {
            blocks,
            TokenUsage{TokenCount::approximate(system) + TokenCount::approximate(prompt), written}};
    }
    std::optional<qint64> outputLimit() const override { return limit; }

    static constexpr qint64 written = 5;
    static constexpr qint64 limit = 50;
    mutable int requests = 0;
};

double ratio(qint64 estimated, qint64 actual) {
    return static_cast<double>(estimated) / static_cast<double>(actual);
}

} // namespace

// Every real-world file estimated, then translated through a local service that bills like the
// hosted ones: the estimate is within a quarter of what was sent and received, and the usage the
// job adds up across concurrent batches is exactly what the service reported.
TEST(Cost, EstimateMatchesWhatTheServiceBillsOnEveryCorpusFile) {
    if (const QString missing = SubtitleCorpus::missingReason(); !missing.isEmpty())
        GTEST_SKIP() << missing.toStdString();
    JobOptions options;
    options.price = TokenPrice{1.0, 5.0};
    for (const SubtitleCorpus::File& file : SubtitleCorpus::files(SubtitleCorpus::directory())) {
        if (file.holdsNoCue())
            continue;
        SCOPED_TRACE(file.path.toStdString());
        const QStringList texts = Subtitles::load(file.path, file.codec)->texts();
        const CostEstimate estimate = CostEstimate::make(texts, options, u"inglés"_s);
        // A faithful translation is about as long as its source.
        ChatCompletionsServer server({.key = {},
                                      .translate = [](int, const QString& text) { return text; },
                                      .reportUsage = true});
        const auto meter = std::make_shared<MeteredBackend>(
            std::make_shared<OpenAICompatibleBackend>(
                HttpBackend::Settings{{}, u"m"_s, server.baseUrl(), 30, HttpClient::shared()},
                u"local"_s, 0.3),
            options.price, std::nullopt, false);
        Translator(meter, u"inglés"_s, options.variant, options.batchSize, options.contextLines,
                   options.concurrency, nullptr)
            .translateAll(texts, nullptr, {});

        const TokenUsage billed = server.reportedUsage();
        EXPECT_EQ(meter->usage(), billed);
        EXPECT_EQ(meter->requests(), estimate.requests);
        std::cout << QFileInfo(file.path).fileName().toStdString() << ": " << estimate.requests
                  << " pedidos, entrada " << estimate.inputTokens << "/" << billed.input
                  << ", salida " << estimate.outputTokens << "/" << billed.output << "\n";
        // In a fragment of a few cues the model's own preamble (its thinking) outweighs them.
        if (estimate.cues < 20)
            continue;
        EXPECT_NEAR(ratio(estimate.inputTokens, billed.input), 1.0, 0.25);
        EXPECT_NEAR(ratio(estimate.outputTokens, billed.output), 1.0, 0.25);
        EXPECT_LE(*estimate.costLow(), *meter->spent());
        EXPECT_GE(*estimate.costHigh(), *meter->spent());
    }
}

// With a cap, each request must fit its worst case in what is left: the third one fits exactly
// and goes, the fourth cannot and stops the job with what was spent; raising the cap and
// translating again sends only what the cache does not hold.
TEST(Cost, CapStopsBeforeTheRequestThatCouldPassItAndNotEarlier) {
    const QStringList texts{u"One."_s, u"Two."_s, u"Three."_s, u"Four."_s, u"Five."_s};
    const TokenPrice dollarPerToken{1e6, 1e6};
    const auto engine = std::make_shared<BillingEngine>();
    const Translator probe(engine, u"inglés"_s, SpanishVariant::neutro, 1, 0, 1, nullptr);
    const auto input = [&](qsizetype position) {
        return TokenCount::approximate(probe.systemPrompt()) +
               TokenCount::approximate(probe.prompt(texts, {position}));
    };
    const double cap =
        static_cast<double>(input(0) + BillingEngine::written + input(1) + BillingEngine::written +
                            input(2) + BillingEngine::limit);
    QTemporaryDir folder;
    const auto cache =
        std::make_shared<TranslationCache>(folder.filePath(u"cache.json"_s), u"facturado"_s);
    const auto translate = [&](double dollars) {
        return Translator(std::make_shared<MeteredBackend>(engine, dollarPerToken, dollars, true),
                          u"inglés"_s, SpanishVariant::neutro, 1, 0, 1, cache)
            .translateAll(texts, nullptr, {});
    };

    const QString stopped = fatalMessageOf([&] { translate(cap); });
    EXPECT_EQ(engine->requests, 3);
    EXPECT_TRUE(stopped.startsWith(u"Paré para no pasar el tope de gasto: van US$ "_s))
        << stopped.toStdString();
    EXPECT_TRUE(stopped.contains(u"el tope es US$ "_s)) << stopped.toStdString();

    const Translator::Result resumed = translate(1e9);
    EXPECT_EQ(engine->requests, 5);
    EXPECT_EQ(resumed.progress.cached, 3);
    EXPECT_EQ(resumed.translations, texts);
}
