// Wall time of a whole translation against an engine with a fixed latency per request, compared
// with the ideal ceil(batches / concurrency) x latency: what the worker pool costs on top.
#include <chrono>
#include <cmath>
#include <thread>

#include <QStringList>

#include <benchmark/benchmark.h>

#include "VeltoKit/engines/EchoBackend.h"
#include "VeltoKit/translation/Translator.h"

using namespace velto;

namespace {

constexpr int cueCount = 1500;
constexpr qint64 batchSize = 40;
constexpr auto latency = std::chrono::milliseconds(20);

// The echo engine behind a network-like delay.
class SlowEcho : public TranslationBackend {
public:
    QString label() const override { return m_echo.label(); }
    QString complete(const QString& system, const QString& prompt,
                     std::stop_token stop) const override {
        std::this_thread::sleep_for(latency);
        return m_echo.complete(system, prompt, stop);
    }

private:
    EchoBackend m_echo;
};

QStringList cues() {
    QStringList texts;
    for (int i = 0; i < cueCount; ++i)
        texts.append(QStringLiteral("- Line %1 of the movie, <i>with style</i>.\n- Sure.").arg(i));
    return texts;
}

void translateWithLatency(benchmark::State& state) {
    const qint64 concurrency = state.range(0);
    const Translator translator(std::make_shared<SlowEcho>(), QStringLiteral("inglés"),
                                SpanishVariant::neutro, batchSize, 3, concurrency, nullptr);
    const QStringList texts = cues();
    std::chrono::duration<double> wall{};
    for (auto _ : state) {
        const auto start = std::chrono::steady_clock::now();
        const auto result = translator.translateAll(texts, nullptr, {});
        wall += std::chrono::steady_clock::now() - start;
        benchmark::DoNotOptimize(result.translations.size());
    }
    const double batches = std::ceil(double(cueCount) / double(batchSize));
    const double ideal =
        std::ceil(batches / double(concurrency)) * std::chrono::duration<double>(latency).count();
    state.counters["ideal_ms"] = ideal * 1000.0;
    // 1.0: the translation took no longer than the engine's latency forces it to.
    state.counters["efficiency"] = ideal * double(state.iterations()) / wall.count();
}

} // namespace

BENCHMARK(translateWithLatency)
    ->Arg(1)
    ->Arg(3)
    ->Arg(8)
    ->Unit(benchmark::kMillisecond)
    ->MinTime(2.0)
    ->UseRealTime()
    ->MeasureProcessCPUTime();

BENCHMARK_MAIN();
