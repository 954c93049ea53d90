#include "VeltoKit/engines/AnthropicBackend.h"

#include <QHashFunctions>
#include <QJsonArray>
#include <QJsonObject>

#include "VeltoKit/core/EnumTable.h"
#include "VeltoKit/engines/JsonReader.h"

namespace velto {

namespace {

const HttpBackend::Service& anthropic() {
    static const QList<StatusWording> answerStatuses{
        {{400}, TranslationError::fatal, u"Pedido inválido (400): "},
        {{401, 403}, TranslationError::fatal, u"La API key fue rechazada ({status}): "},
        {{404}, TranslationError::fatal, u"Modelo no encontrado (404): "},
        {{429, 500, 502, 503, 529},
         TranslationError::transient,
         u"El servicio está saturado ({status}): "},
        {{}, TranslationError::transient, u"Error {status}: "},
    };
    static const HttpBackend::Service service{
        .attempts = 4,
        .keyHeader = "x-api-key",
        .fixedHeaders = {{"anthropic-version", "2023-06-01"}},
        .invalidAddress = QStringLiteral("La dirección de Anthropic no es válida."),
        .emptyAnswer = QStringLiteral("La API devolvió una respuesta vacía."),
        .answerFailures = {.quotesServiceMessage = true,
                           .bodyCharacters = 300,
                           .statuses = answerStatuses},
        .listingTimeout = 20,
        .listingFailures = {.bodyCharacters = 200,
                            .statuses = {{{},
                                          TranslationError::fatal,
                                          u"Anthropic no devolvió los modelos ({status}): "}}},
        .usage = {u"usage", u"input_tokens", {u"output_tokens"}},
    };
    return service;
}

} // namespace

const QList<AnthropicBackend::Model>& AnthropicBackend::models() {
    static const QList<Model> catalogue{
        {QStringLiteral("claude-opus-5"), QStringLiteral("Claude Opus 5"),
         QStringLiteral("El más capaz. Mejor calidad de traducción.")},
        {QStringLiteral("claude-sonnet-5"), QStringLiteral("Claude Sonnet 5"),
         QStringLiteral("Equilibrado. Buena opción para películas largas.")},
        {QStringLiteral("claude-haiku-4-5"), QStringLiteral("Claude Haiku 4.5"),
         QStringLiteral("El más rápido y barato.")},
        {QStringLiteral("claude-opus-4-8"), QStringLiteral("Claude Opus 4.8"),
         QStringLiteral("Generación anterior.")},
        {QStringLiteral("claude-fable-5"), QStringLiteral("Claude Fable 5"),
         QStringLiteral("Máxima capacidad, mayor costo.")},
    };
    return catalogue;
}

QString AnthropicBackend::defaultModel() {
    return QStringLiteral("claude-opus-5");
}

QString AnthropicBackend::publicBaseUrl() {
    return QStringLiteral("https://api.anthropic.com/v1");
}

namespace {

struct EffortTexts {
    AnthropicBackend::Effort value;
    QStringView raw;
    QStringView label;
};

constexpr EffortTexts effortTexts[] = {
    {AnthropicBackend::Effort::low, u"low", u"Bajo (rápido y económico)"},
    {AnthropicBackend::Effort::medium, u"medium", u"Medio"},
    {AnthropicBackend::Effort::high, u"high", u"Alto"},
    {AnthropicBackend::Effort::xhigh, u"xhigh", u"Muy alto"},
    {AnthropicBackend::Effort::max, u"max", u"Máximo (más lento y caro)"},
};
static_assert(EnumTable::coversInOrder(effortTexts, AnthropicBackend::Effort::max));

} // namespace

const QList<AnthropicBackend::Effort>& AnthropicBackend::efforts() {
    static const QList<Effort> all = [] {
        const auto values = EnumTable::values(effortTexts);
        return QList<Effort>(values.begin(), values.end());
    }();
    return all;
}

QString AnthropicBackend::rawValue(Effort effort) {
    return EnumTable::row(effortTexts, effort).raw.toString();
}

std::optional<AnthropicBackend::Effort> AnthropicBackend::effortFromRawValue(QStringView raw) {
    return EnumTable::find(effortTexts, &EffortTexts::raw, raw);
}

QString AnthropicBackend::effortLabel(Effort effort) {
    return EnumTable::row(effortTexts, effort).label.toString();
}

QString AnthropicBackend::missingKeyMessage(PlatformText::System system) {
    return QStringLiteral(
               "Falta la API key de Anthropic. Cargala en Ajustes: la clave se guarda en ") +
           PlatformText::keychainName(system) + u'.';
}

AnthropicBackend::AnthropicBackend(Settings settings, Effort effort, int maxTokens)
    : HttpBackend(std::move(settings), anthropic())
    , m_effort(effort)
    , m_maxTokens(maxTokens) {}

QStringList AnthropicBackend::listModels(const QString& apiKey, const QString& baseUrl,
                                         HttpClient& http, std::stop_token stop) {
    if (apiKey.isEmpty())
        throw TranslationError::fatal(QStringLiteral("Cargá primero la API key de Anthropic."));
    return sortedIds(
        anthropic().fetchListing(baseUrl, QStringLiteral("/models?limit=100"), apiKey, http, stop));
}

QString AnthropicBackend::label() const {
    return QStringLiteral("API de Anthropic");
}

QString AnthropicBackend::cacheScope() const {
    return label() + u'|' + model() + u'|' + rawValue(m_effort);
}

std::optional<qint64> AnthropicBackend::outputLimit() const {
    return m_maxTokens;
}

EngineAnswer AnthropicBackend::answer(const QString& system, const QString& prompt,
                                      std::stop_token stop) const {
    if (apiKey().isEmpty())
        throw TranslationError::fatal(missingKeyMessage());
    const QJsonObject body{
        {QStringLiteral("model"), model()},
        {QStringLiteral("max_tokens"), m_maxTokens},
        {QStringLiteral("system"), system},
        {QStringLiteral("output_config"),
         QJsonObject{{QStringLiteral("effort"), rawValue(m_effort)}}},
        {QStringLiteral("messages"),
         QJsonArray{QJsonObject{{QStringLiteral("role"), QStringLiteral("user")},
                                {QStringLiteral("content"), prompt}}}},
    };
    return post(QStringLiteral("/messages"), body, stop);
}

QString AnthropicBackend::answerOf(const JsonReader& reply) const {
    QString text;
    for (const JsonReader& block : reply.objects(u"content")) {
        if (block.requiredString(u"type") == u"text")
            text += block.string(u"text").value_or(QString());
    }
    if (reply.string(u"stop_reason") == QStringLiteral("refusal")) {
        throw TranslationError::transient(
            QStringLiteral("El modelo declinó traducir este fragmento. Probá con otro modelo."));
    }
    return text;
}

size_t qHash(const AnthropicBackend::Model& model, size_t seed) {
    return qHashMulti(seed, model.id, model.name, model.note);
}

} // namespace velto
