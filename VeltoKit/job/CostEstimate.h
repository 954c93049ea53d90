#pragma once

#include <functional>
#include <optional>

#include <QString>
#include <QStringList>

#include "VeltoKit/job/JobOptions.h"
#include "VeltoKit/job/TokenPrice.h"

namespace velto {

// The engine's pace: seconds an answer takes before its first token (the connection test's, or
// the mean of a run's answers so far) and output tokens per second, fast and slow.
struct EnginePace {
    double latency = 2.0;
    double fastTokensPerSecond = 100;
    double slowTokensPerSecond = 30;
};

// What a translation will take before it is paid for: requests, tokens, dollars and minutes,
// from the very prompts the translator would send (system prompt, context lines, blocks, batch
// size) counted with TokenCount. Input is known that way; output is the source text grown to
// Spanish (a ratio, hence a range), and time is rounds of `concurrency` requests, each the
// engine's latency plus its output at a writing speed (a range too).
struct CostEstimate {
    // Spanish output per token of English source, the low, likely and high ends.
    static constexpr double spanishRatioLow = 0.9;
    static constexpr double spanishRatio = 1.1;
    static constexpr double spanishRatioHigh = 1.3;

    qint64 cues = 0;   // texts with words in them
    qint64 cached = 0; // of those, answered by the cache: never sent
    qint64 requests = 0;
    qint64 inputTokens = 0;
    qint64 outputTokensLow = 0;
    qint64 outputTokens = 0;
    qint64 outputTokensHigh = 0;
    double secondsLow = 0;
    double secondsHigh = 0;
    // Absent when unknown.
    std::optional<TokenPrice> price;

    // Tells whether a text is already translated in the cache.
    using CacheProbe = std::function<bool(const QString& text)>;

    static CostEstimate make(const QStringList& texts, const JobOptions& options,
                             const QString& sourceLanguageName, const EnginePace& pace = {},
                             const CacheProbe& isCached = {});

    std::optional<double> costLow() const;
    std::optional<double> costHigh() const;
    // "≈ 38 pedidos · 95–120 mil tokens · US$ 0,31–0,40 · 2–4 min"; "sin costo" for a free
    // engine, "precio desconocido" when the price is unknown.
    QString summary() const;
    // The tokens alone: "95–120 mil tokens".
    QString tokensText() const;
    // "2–4 min", "menos de 1 min".
    QString timeText() const;

    friend bool operator==(const CostEstimate&, const CostEstimate&) = default;
};

// Seconds as minutes or hours: "menos de 1 min", "3 min", "1 h 10 min".
QString roughDuration(double seconds);

} // namespace velto
