#include "VeltoKit/job/CostEstimate.h"

#include <cmath>
#include <memory>

#include <QLocale>

#include "VeltoKit/job/Money.h"
#include "VeltoKit/subtitles/CueText.h"
#include "VeltoKit/translation/BlockProtocol.h"
#include "VeltoKit/translation/TokenCount.h"
#include "VeltoKit/translation/TranslationBackend.h"
#include "VeltoKit/translation/Translator.h"

namespace velto {
namespace {

// Lets a Translator build prompts; an estimate never sends one.
class NoEngine : public TranslationBackend {
public:
    QString label() const override { return {}; }
    QString complete(const QString&, const QString&, std::stop_token) const override { return {}; }
};

// The markers an answer of `count` blocks repeats, without the texts.
qint64 markerTokens(qsizetype count) {
    QList<std::pair<int, QString>> blocks;
    for (int number = 1; number <= count; ++number)
        blocks.append({number, QString()});
    return TokenCount::approximate(BlockProtocol::build(blocks));
}

qint64 scaled(qint64 tokens, double ratio) {
    return static_cast<qint64>(std::ceil(static_cast<double>(tokens) * ratio));
}

QString thousands(qint64 tokens) {
    static const QLocale spanish(QLocale::Spanish, QLocale::Argentina);
    if (tokens < 1000)
        return QString::number(tokens);
    if (tokens < 1000000)
        return QString::number(std::llround(static_cast<double>(tokens) / 1000.0));
    return spanish.toString(static_cast<double>(tokens) / 1e6, 'f', 1);
}

QString unitOf(qint64 tokens) {
    if (tokens < 1000)
        return QStringLiteral(" tokens");
    return tokens < 1000000 ? QStringLiteral(" mil tokens") : QStringLiteral(" millones de tokens");
}

} // namespace

CostEstimate CostEstimate::make(const QStringList& texts, const JobOptions& options,
                                const QString& sourceLanguageName, const EnginePace& pace,
                                const CacheProbe& isCached) {
    const qint64 batchSize = std::max<qint64>(options.batchSize, 1);
    const Translator translator(std::make_shared<NoEngine>(), sourceLanguageName, options.variant,
                                batchSize, std::max<qint64>(options.contextLines, 0), 1, nullptr);
    CostEstimate estimate;
    estimate.price = options.price;
    QList<qsizetype> pending;
    for (qsizetype position = 0; position < texts.size(); ++position) {
        if (!CueText::isTranslatable(texts[position]))
            continue;
        ++estimate.cues;
        if (isCached && isCached(texts[position]))
            ++estimate.cached;
        else
            pending.append(position);
    }
    const qint64 system = TokenCount::approximate(translator.systemPrompt());
    qint64 markers = 0;
    qint64 text = 0;
    for (qsizetype start = 0; start < pending.size(); start += batchSize) {
        const QList<qsizetype> batch = pending.mid(start, batchSize);
        ++estimate.requests;
        estimate.inputTokens += system + TokenCount::approximate(translator.prompt(texts, batch));
        markers += markerTokens(batch.size());
        for (const qsizetype position : batch)
            text += TokenCount::approximate(texts[position]);
    }
    estimate.outputTokensLow = markers + scaled(text, spanishRatioLow);
    estimate.outputTokens = markers + scaled(text, spanishRatio);
    estimate.outputTokensHigh = markers + scaled(text, spanishRatioHigh);

    const qint64 concurrency = std::max<qint64>(options.concurrency, 1);
    const auto rounds = static_cast<double>((estimate.requests + concurrency - 1) / concurrency);
    const double perRequest =
        estimate.requests == 0 ? 0 : 1.0 / static_cast<double>(estimate.requests);
    estimate.secondsLow = rounds * (pace.latency + static_cast<double>(estimate.outputTokensLow) *
                                                       perRequest / pace.fastTokensPerSecond);
    estimate.secondsHigh = rounds * (pace.latency + static_cast<double>(estimate.outputTokensHigh) *
                                                        perRequest / pace.slowTokensPerSecond);
    return estimate;
}

std::optional<double> CostEstimate::costLow() const {
    if (!price)
        return std::nullopt;
    return price->cost({inputTokens, outputTokensLow});
}

std::optional<double> CostEstimate::costHigh() const {
    if (!price)
        return std::nullopt;
    return price->cost({inputTokens, outputTokensHigh});
}

QString CostEstimate::tokensText() const {
    const qint64 low = inputTokens + outputTokensLow;
    const qint64 high = inputTokens + outputTokensHigh;
    const QString lowText = thousands(low);
    const QString highText = thousands(high);
    if (lowText == highText || unitOf(low) != unitOf(high))
        return highText + unitOf(high);
    return lowText + u'\x2013' + highText + unitOf(high);
}

QString CostEstimate::timeText() const {
    const QString low = roughDuration(secondsLow);
    const QString high = roughDuration(secondsHigh);
    if (low == high)
        return high;
    // "2–4 min" when both are whole minutes under the hour.
    const bool minutes = secondsLow >= 30 && secondsHigh < 59.5 * 60;
    if (minutes)
        return low.chopped(4) + u'\x2013' + high;
    return low + QStringLiteral(" a ") + high;
}

QString CostEstimate::summary() const {
    if (cues == 0)
        return QStringLiteral("Nada que traducir en esta pista.");
    if (requests == 0)
        return QStringLiteral("Nada que pedir al motor: todo está en la caché.");
    const QString separator = QStringLiteral(" · ");
    const QString count = QStringLiteral("≈ ") + QString::number(requests) +
                          (requests == 1 ? QStringLiteral(" pedido") : QStringLiteral(" pedidos"));
    QString cost;
    if (!price)
        cost = QStringLiteral("precio desconocido");
    else if (price->isFree())
        cost = QStringLiteral("sin costo");
    else
        cost = Money::usdRange(*costLow(), *costHigh());
    return count + separator + tokensText() + separator + cost + separator + timeText();
}

QString roughDuration(double seconds) {
    const auto minutes = static_cast<qint64>(std::llround(seconds / 60.0));
    if (minutes < 1)
        return QStringLiteral("menos de 1 min");
    if (minutes < 60)
        return QString::number(minutes) + QStringLiteral(" min");
    const qint64 rest = minutes % 60;
    return QString::number(minutes / 60) + QStringLiteral(" h") +
           (rest == 0 ? QString() : u' ' + QString::number(rest) + QStringLiteral(" min"));
}

} // namespace velto
