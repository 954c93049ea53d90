// How long the list «Nombres y términos» takes to fill once a video is open: the candidates of
// real episodes from the shared corpus (a 668-cue episode among them), then the check of every
// cue against a list of a film's size.
#include <QDir>
#include <QStringList>

#include <benchmark/benchmark.h>

#include "VeltoKit/subtitles/SubtitleDocument.h"
#include "VeltoKit/subtitles/Subtitles.h"
#include "VeltoKit/translation/Glossary.h"
#include "VeltoKit/translation/NameCandidates.h"

using namespace velto;

namespace {

QStringList episode(const char* name) {
    const QString path =
        QDir(QStringLiteral(VELTO_CORPUS_DIR "/dualsub")).filePath(QString::fromUtf8(name));
    try {
        return Subtitles::load(path, QStringLiteral("subrip"))->texts();
    } catch (const std::exception&) {
        return {};
    }
}

void candidates(benchmark::State& state, const char* name) {
    const QStringList texts = episode(name);
    if (texts.isEmpty()) {
        state.SkipWithError("no corpus");
        return;
    }
    for (auto _ : state)
        benchmark::DoNotOptimize(NameCandidates::find(texts));
    state.counters["cues"] = double(texts.size());
}

// Every cue looked up in the list the candidates make, as the translator and the review do.
void lookups(benchmark::State& state) {
    const QStringList texts = episode("Game of Thrones 1x01 - Winter Is Coming (English).srt");
    if (texts.isEmpty()) {
        state.SkipWithError("no corpus");
        return;
    }
    QList<Glossary::Entry> entries;
    for (const QString& name : NameCandidates::find(texts))
        entries.append({name, {}});
    const Glossary list(entries);
    for (auto _ : state) {
        qsizetype found = 0;
        for (const QString& text : texts)
            found += list.entriesIn(text).size();
        benchmark::DoNotOptimize(found);
    }
    state.counters["entries"] = double(entries.size());
}

} // namespace

BENCHMARK_CAPTURE(candidates, breakingBad, "Breaking Bad 5x09 - Blood Money (English).srt")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(candidates, gameOfThrones,
                  "Game of Thrones 1x01 - Winter Is Coming (English).srt")
    ->Unit(benchmark::kMillisecond);
BENCHMARK(lookups)->Unit(benchmark::kMillisecond);
BENCHMARK_MAIN();
