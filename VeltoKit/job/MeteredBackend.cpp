#include "VeltoKit/job/MeteredBackend.h"

#include <QScopeGuard>

#include "VeltoKit/job/Money.h"
#include "VeltoKit/translation/TokenCount.h"
#include "VeltoKit/translation/TranslationError.h"

namespace velto {

MeteredBackend::MeteredBackend(std::shared_ptr<const TranslationBackend> engine,
                               std::optional<TokenPrice> price, std::optional<double> cap,
                               bool keepsTranslations)
    : m_engine(std::move(engine))
    , m_price(price)
    , m_cap(cap)
    , m_keepsTranslations(keepsTranslations) {}

QString MeteredBackend::label() const {
    return m_engine->label();
}

QString MeteredBackend::cacheScope() const {
    return m_engine->cacheScope();
}

QString MeteredBackend::complete(const QString& system, const QString& prompt,
                                 std::stop_token stop) const {
    return answer(system, prompt, stop).text;
}

EngineAnswer MeteredBackend::answer(const QString& system, const QString& prompt,
                                    std::stop_token stop) const {
    const qint64 input = TokenCount::approximate(system) + TokenCount::approximate(prompt);
    const double held = reserve({input, outputLimit().value_or(assumedOutputLimit)});
    auto release = qScopeGuard([&] {
        const std::lock_guard lock(m_mutex);
        m_reserved -= held;
    });
    EngineAnswer answer = m_engine->answer(system, prompt, std::move(stop));
    const TokenUsage used =
        answer.usage.value_or(TokenUsage{input, TokenCount::approximate(answer.text)});
    const std::lock_guard lock(m_mutex);
    m_usage += used;
    ++m_requests;
    if (m_price)
        m_spent += m_price->cost(used);
    return answer;
}

std::optional<qint64> MeteredBackend::outputLimit() const {
    return m_engine->outputLimit();
}

void MeteredBackend::preflight(std::stop_token stop) const {
    m_engine->preflight(std::move(stop));
}

TokenUsage MeteredBackend::usage() const {
    const std::lock_guard lock(m_mutex);
    return m_usage;
}

qint64 MeteredBackend::requests() const {
    const std::lock_guard lock(m_mutex);
    return m_requests;
}

std::optional<double> MeteredBackend::spent() const {
    const std::lock_guard lock(m_mutex);
    return m_price ? std::optional(m_spent) : std::nullopt;
}

double MeteredBackend::reserve(const TokenUsage& worst) const {
    if (!m_cap || !m_price)
        return 0;
    const double next = m_price->cost(worst);
    const std::lock_guard lock(m_mutex);
    if (m_spent + m_reserved + next > *m_cap)
        throw TranslationError::fatal(stopMessage(next));
    m_reserved += next;
    return next;
}

QString MeteredBackend::stopMessage(double next) const {
    QString message =
        QStringLiteral("Paré para no pasar el tope de gasto: van ") + Money::usd(m_spent) +
        QStringLiteral(" gastados, el tope es ") + Money::usd(*m_cap) +
        QStringLiteral(" y el próximo pedido podía costar hasta ") + Money::usd(next) + u'.';
    if (m_keepsTranslations)
        message += QStringLiteral(" Lo ya traducido quedó en la caché: si subís el tope y "
                                  "reintentás, eso no se paga de nuevo.");
    return message;
}

} // namespace velto
