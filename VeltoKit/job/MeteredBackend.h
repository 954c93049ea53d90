#pragma once

#include <memory>
#include <mutex>
#include <optional>

#include "VeltoKit/job/TokenPrice.h"
#include "VeltoKit/translation/TranslationBackend.h"

namespace velto {

// Wraps the engine of one job: adds up the tokens every request took (as the service reported
// them, or counted from the texts when it reports none) and, with a spending cap, refuses a
// request whose worst case (its input plus the most output it may produce) does not fit in what
// is left. Requests in flight hold their worst case until they come back, so parallel batches
// never overrun the cap together.
class MeteredBackend : public TranslationBackend {
public:
    // An engine whose requests set no output limit is taken to write at most this much.
    static constexpr qint64 assumedOutputLimit = 16000;

    // `price` absent: unknown, so no cost is known and no cap can be kept (the job refuses a cap
    // without a price before it starts). `keepsTranslations`: the cache holds what was done,
    // which the stop message then says.
    MeteredBackend(std::shared_ptr<const TranslationBackend> engine,
                   std::optional<TokenPrice> price, std::optional<double> cap,
                   bool keepsTranslations);

    QString label() const override;
    QString cacheScope() const override;
    QString complete(const QString& system, const QString& prompt,
                     std::stop_token stop) const override;
    EngineAnswer answer(const QString& system, const QString& prompt,
                        std::stop_token stop) const override;
    std::optional<qint64> outputLimit() const override;
    // The engine's own check, not counted: a handful of tokens.
    void preflight(std::stop_token stop) const override;

    // What the requests so far took.
    TokenUsage usage() const;
    qint64 requests() const;
    // In US dollars; absent when the price is unknown.
    std::optional<double> spent() const;

private:
    double reserve(const TokenUsage& worst) const;
    QString stopMessage(double next) const;

    std::shared_ptr<const TranslationBackend> m_engine;
    std::optional<TokenPrice> m_price;
    std::optional<double> m_cap;
    bool m_keepsTranslations;
    mutable std::mutex m_mutex;
    mutable TokenUsage m_usage;
    mutable qint64 m_requests = 0;
    mutable double m_spent = 0;
    mutable double m_reserved = 0;
};

} // namespace velto
