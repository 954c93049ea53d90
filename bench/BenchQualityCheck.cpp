// What checking every translated cue adds to a job when no cue needs asking again: a two-hour
// film has about 1,500 cues. The whole review is measured: pairing cues with their times, the
// four rules, the warnings.
#include <QString>
#include <QStringList>

#include <benchmark/benchmark.h>

#include "VeltoKit/engines/EchoBackend.h"
#include "VeltoKit/job/QualityCheck.h"
#include "VeltoKit/job/QualityReview.h"
#include "VeltoKit/subtitles/AssDocument.h"
#include "VeltoKit/subtitles/SrtDocument.h"
#include "VeltoKit/translation/Translator.h"

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

void review(benchmark::State& state, const SubtitleDocument& document,
            const QStringList& translations) {
    const auto engine = std::make_shared<EchoBackend>();
    const Translator translator(engine, QStringLiteral("inglés"), SpanishVariant::neutro, 40, 4, 3,
                                nullptr);
    const QualityReview reviewer(translator, engine, 3, nullptr);
    const Translator::Result translated{.translations = translations};
    for (auto _ : state) {
        const QualityReview::Outcome outcome = reviewer.run(document, translated, {}, {});
        benchmark::DoNotOptimize(QualityCheck::warnings(outcome.findings));
    }
}

// Two-line dialogue every 4.8 s; every tenth translation comes back cut short and every
// seventh too long, so each rule has work to do.
void checkSrt(benchmark::State& state) {
    const int count = int(state.range(0));
    QString text;
    QStringList translations;
    for (int i = 0; i < count; ++i) {
        const qint64 start = qint64(i) * 4'800;
        text += QString::number(i + 1) + u'\n' + timestamp(start, u',') + QStringLiteral(" --> ") +
                timestamp(start + 3'500, u',') +
                QStringLiteral("\n- I told you we should have left before the storm.\n"
                               "- <i>Nobody listens to me anymore.</i>\n\n");
        if (i % 10 == 0)
            translations.append(QStringLiteral("- ¿Qué?"));
        else if (i % 7 == 0)
            translations.append(QStringLiteral("- Te dije que teníamos que irnos antes de que "
                                               "llegara la tormenta.\n- <i>Nadie me escucha.</i>"));
        else
            translations.append(QStringLiteral("- Te dije que nos fuéramos antes de la tormenta."
                                               "\n- <i>Ya nadie me escucha.</i>"));
    }
    const SrtDocument document = SrtDocument::parse(text);
    review(state, document, translations);
}

void checkAss(benchmark::State& state) {
    const int count = int(state.range(0));
    QString text = QStringLiteral("[Events]\nFormat: Layer, Start, End, Style, Name, MarginL, "
                                  "MarginR, MarginV, Effect, Text\n");
    for (int i = 0; i < count; ++i) {
        const qint64 start = qint64(i) * 4'800;
        text += QStringLiteral("Dialogue: 0,") + timestamp(start, u'.').mid(1, 10) + u',' +
                timestamp(start + 3'500, u'.').mid(1, 10) +
                QStringLiteral(",Default,,0,0,0,,{\\i1}I told you, we should have left{\\i0}"
                               "\\Nbefore the storm.\n");
    }
    const AssDocument document = AssDocument::parse(text);
    QStringList translations;
    for (const QString& source : document.texts())
        translations.append(
            QString(source).replace(QStringLiteral("I told you, we should have left"),
                                    QStringLiteral("Te dije que nos fuéramos")));
    review(state, document, translations);
}

} // namespace

BENCHMARK(checkSrt)->Arg(1'500)->Arg(50'000)->Unit(benchmark::kMillisecond);
BENCHMARK(checkAss)->Arg(1'500)->Arg(50'000)->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
