#include "VeltoKit/providers/ModelPrices.h"

#include <QUrl>

#include "VeltoKit/engines/AnthropicBackend.h"

namespace velto {

QString ModelPrices::asOf() {
    return QStringLiteral("2025-11");
}

// Standard (not batch, not cached) prices; Gemini's up to its long-prompt threshold, which a
// subtitle request never reaches.
const QList<ModelPrices::Entry>& ModelPrices::table() {
    static const QList<Entry> entries{
        {QStringLiteral("anthropic"), QStringLiteral("claude-haiku-4-5"), {1.0, 5.0}},
        {QStringLiteral("anthropic"), QStringLiteral("claude-sonnet-4-5"), {3.0, 15.0}},
        {QStringLiteral("anthropic"), QStringLiteral("claude-opus-4-5"), {5.0, 25.0}},
        {QStringLiteral("anthropic"), QStringLiteral("claude-opus-4-1"), {15.0, 75.0}},
        {QStringLiteral("openai"), QStringLiteral("gpt-5"), {1.25, 10.0}},
        {QStringLiteral("openai"), QStringLiteral("gpt-5-mini"), {0.25, 2.0}},
        {QStringLiteral("openai"), QStringLiteral("gpt-5-nano"), {0.05, 0.4}},
        {QStringLiteral("openai"), QStringLiteral("gpt-4.1"), {2.0, 8.0}},
        {QStringLiteral("openai"), QStringLiteral("gpt-4.1-mini"), {0.4, 1.6}},
        {QStringLiteral("openai"), QStringLiteral("gpt-4.1-nano"), {0.1, 0.4}},
        {QStringLiteral("openai"), QStringLiteral("gpt-4o"), {2.5, 10.0}},
        {QStringLiteral("openai"), QStringLiteral("gpt-4o-mini"), {0.15, 0.6}},
        {QStringLiteral("gemini"), QStringLiteral("gemini-2.5-pro"), {1.25, 10.0}},
        {QStringLiteral("gemini"), QStringLiteral("gemini-2.5-flash"), {0.3, 2.5}},
        {QStringLiteral("gemini"), QStringLiteral("gemini-2.5-flash-lite"), {0.1, 0.4}},
    };
    return entries;
}

std::optional<TokenPrice> ModelPrices::known(const Provider& provider, const QString& model) {
    const Entry* best = nullptr;
    for (const Entry& entry : table()) {
        if (entry.providerID != provider.id)
            continue;
        if (entry.model == model)
            return entry.price;
        const bool extends =
            model.startsWith(entry.model) && model.size() > entry.model.size() &&
            (model[entry.model.size()] == u'-' || model[entry.model.size()] == u'@');
        if (extends && (!best || entry.model.size() > best->model.size()))
            best = &entry;
    }
    return best ? std::optional(best->price) : std::nullopt;
}

QString ModelPrices::billedModel(const Provider& provider, const QString& model) {
    if (model.isEmpty() && provider.flavor == Provider::Flavor::anthropic)
        return AnthropicBackend::defaultModel();
    return model;
}

bool ModelPrices::isFree(const Provider& provider, const QString& baseURL) {
    if (provider.flavor == Provider::Flavor::echo || provider.flavor == Provider::Flavor::claudeCLI)
        return true;
    if (provider.flavor != Provider::Flavor::openAICompatible)
        return false;
    const QString host = QUrl(baseURL.trimmed()).host();
    return host == u"localhost" || host.startsWith(QStringLiteral("127.")) || host == u"::1";
}

ModelPrices::Lookup ModelPrices::resolve(const Provider& provider, const QString& model,
                                         const QString& baseURL,
                                         const std::optional<TokenPrice>& userPrice) {
    const bool ownSession =
        provider.flavor == Provider::Flavor::echo || provider.flavor == Provider::Flavor::claudeCLI;
    if (ownSession)
        return {Source::free, TokenPrice{}};
    // A priced server on this machine is a proxy to a paid service.
    if (userPrice)
        return {Source::user, userPrice};
    if (isFree(provider, baseURL))
        return {Source::free, TokenPrice{}};
    if (const auto price = known(provider, billedModel(provider, model)))
        return {Source::table, price};
    return {};
}

} // namespace velto
