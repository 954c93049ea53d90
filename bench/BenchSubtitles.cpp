// Parsing and rendering subtitle documents at film and marathon sizes, in MB/s of file text.
#include <QString>

#include <benchmark/benchmark.h>

#include "VeltoKit/subtitles/AssDocument.h"
#include "VeltoKit/subtitles/SrtDocument.h"
#include "VeltoKit/subtitles/StripSDH.h"

using namespace velto;

namespace {

QString timestamp(qint64 ms, QChar separator) {
    return QStringLiteral("%1:%2:%3%4%5")
        .arg(ms / 3'600'000, 2, 10, QLatin1Char('0'))
        .arg(ms / 60'000 % 60, 2, 10, QLatin1Char('0'))
        .arg(ms / 1000 % 60, 2, 10, QLatin1Char('0'))
        .arg(separator)
        .arg(ms % 1000, 3, 10, QLatin1Char('0'));
}

// Cues of one or two lines of ordinary dialogue, every tenth one an SDH description, spread
// evenly over the running time: 1,500 cues make a two-hour film.
QString generatedSrt(int cues) {
    QString text;
    const qint64 step = 4'800;
    for (int i = 0; i < cues; ++i) {
        const qint64 start = i * step;
        text += QString::number(i + 1) + u'\n' + timestamp(start, u',') + QStringLiteral(" --> ") +
                timestamp(start + 3'500, u',') + u'\n';
        if (i % 10 == 0)
            text += QStringLiteral("[DOOR CREAKS]\n");
        text += QStringLiteral("- I told you we should have left before the storm.\n");
        if (i % 2 == 0)
            text += QStringLiteral("- <i>Nobody listens to me anymore.</i>\n");
        text += u'\n';
    }
    return text;
}

QString generatedAss(int events) {
    QString text = QStringLiteral(
        "[Script Info]\nScriptType: v4.00+\n\n[Events]\nFormat: Layer, Start, End, Style, Name, "
        "MarginL, MarginR, MarginV, Effect, Text\n");
    for (int i = 0; i < events; ++i) {
        const qint64 start = i * 4'800;
        text += QStringLiteral("Dialogue: 0,") + timestamp(start, u'.').mid(1, 10) + u',' +
                timestamp(start + 3'500, u'.').mid(1, 10) +
                QStringLiteral(",Default,,0,0,0,,{\\i1}I told you, we should have left{\\i0}"
                               "\\Nbefore the storm.\n");
    }
    return text;
}

void setBytes(benchmark::State& state, const QString& text) {
    state.SetBytesProcessed(qint64(state.iterations()) * text.toUtf8().size());
}

void parseSrt(benchmark::State& state) {
    const QString text = generatedSrt(int(state.range(0)));
    for (auto _ : state)
        benchmark::DoNotOptimize(SrtDocument::parse(text));
    setBytes(state, text);
}

void renderSrt(benchmark::State& state) {
    const QString text = generatedSrt(int(state.range(0)));
    const SrtDocument document = SrtDocument::parse(text);
    for (auto _ : state)
        benchmark::DoNotOptimize(document.render());
    setBytes(state, text);
}

void parseAss(benchmark::State& state) {
    const QString text = generatedAss(int(state.range(0)));
    for (auto _ : state)
        benchmark::DoNotOptimize(AssDocument::parse(text));
    setBytes(state, text);
}

void renderAss(benchmark::State& state) {
    const QString text = generatedAss(int(state.range(0)));
    const AssDocument document = AssDocument::parse(text);
    for (auto _ : state)
        benchmark::DoNotOptimize(document.render());
    setBytes(state, text);
}

void textsRoundTripAss(benchmark::State& state) {
    const QString text = generatedAss(int(state.range(0)));
    AssDocument document = AssDocument::parse(text);
    for (auto _ : state)
        document.setTexts(document.texts());
    setBytes(state, text);
}

void stripSrt(benchmark::State& state) {
    const QString text = generatedSrt(int(state.range(0)));
    const SrtDocument document = SrtDocument::parse(text);
    for (auto _ : state)
        benchmark::DoNotOptimize(StripSDH::apply(document, true));
    setBytes(state, text);
}

} // namespace

BENCHMARK(parseSrt)->Arg(1'500)->Arg(50'000)->Unit(benchmark::kMillisecond);
BENCHMARK(renderSrt)->Arg(1'500)->Arg(50'000)->Unit(benchmark::kMillisecond);
BENCHMARK(stripSrt)->Arg(1'500)->Arg(50'000)->Unit(benchmark::kMillisecond);
BENCHMARK(parseAss)->Arg(1'500)->Arg(50'000)->Unit(benchmark::kMillisecond);
BENCHMARK(renderAss)->Arg(1'500)->Arg(50'000)->Unit(benchmark::kMillisecond);
BENCHMARK(textsRoundTripAss)->Arg(1'500)->Arg(50'000)->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
