#include "VeltoKit/engines/AnthropicBackend.h"

#include <QHashFunctions>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "VeltoKit/engines/JsonReader.h"
#include "VeltoKit/translation/TranslationError.h"

namespace velto {

namespace {

constexpr int attempts = 4;

TranslationError statusError(int status, const QString& detail) {
    const QString code = QString::number(status);
    switch (status) {
    case 400:
        return {QStringLiteral("Pedido inválido (400): ") + detail, true};
    case 401:
    case 403:
        return {QStringLiteral("La API key fue rechazada (") + code + QStringLiteral("): ") +
                    detail,
                true};
    case 404:
        return {QStringLiteral("Modelo no encontrado (404): ") + detail, true};
    case 429:
    case 500:
    case 502:
    case 503:
    case 529:
        return {QStringLiteral("El servicio está saturado (") + code + QStringLiteral("): ") +
                    detail,
                false};
    default:
        return {QStringLiteral("Error ") + code + QStringLiteral(": ") + detail, false};
    }
}

QString answerOf(const HttpResponse& response) {
    if (response.status != 200) {
        throw statusError(response.status,
                          JsonReader::apiErrorMessage(response.body).value_or(response.text(300)));
    }
    const JsonReader reply = JsonReader::parse(response.body);
    QString text;
    for (const JsonReader& block : reply.objects(u"content")) {
        if (block.requiredString(u"type") == u"text")
            text += block.string(u"text").value_or(QString());
    }
    if (reply.string(u"stop_reason") == QStringLiteral("refusal")) {
        throw TranslationError(
            QStringLiteral("El modelo declinó traducir este fragmento. Probá con otro modelo."),
            false);
    }
    if (text.trimmed().isEmpty())
        throw TranslationError(QStringLiteral("La API devolvió una respuesta vacía."), false);
    return text;
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

const QList<AnthropicBackend::Effort>& AnthropicBackend::efforts() {
    static const QList<Effort> all{Effort::low, Effort::medium, Effort::high, Effort::xhigh,
                                   Effort::max};
    return all;
}

QString AnthropicBackend::rawValue(Effort effort) {
    switch (effort) {
    case Effort::low:
        return QStringLiteral("low");
    case Effort::medium:
        return QStringLiteral("medium");
    case Effort::high:
        return QStringLiteral("high");
    case Effort::xhigh:
        return QStringLiteral("xhigh");
    case Effort::max:
        break;
    }
    return QStringLiteral("max");
}

std::optional<AnthropicBackend::Effort> AnthropicBackend::effortFromRawValue(QStringView raw) {
    for (Effort effort : efforts()) {
        if (rawValue(effort) == raw)
            return effort;
    }
    return std::nullopt;
}

QString AnthropicBackend::effortLabel(Effort effort) {
    switch (effort) {
    case Effort::low:
        return QStringLiteral("Bajo (rápido y económico)");
    case Effort::medium:
        return QStringLiteral("Medio");
    case Effort::high:
        return QStringLiteral("Alto");
    case Effort::xhigh:
        return QStringLiteral("Muy alto");
    case Effort::max:
        break;
    }
    return QStringLiteral("Máximo (más lento y caro)");
}

QString AnthropicBackend::missingKeyMessage(PlatformText::System system) {
    return QStringLiteral(
               "Falta la API key de Anthropic. Cargala en Ajustes: la clave se guarda en ") +
           PlatformText::keychainName(system) + u'.';
}

AnthropicBackend::AnthropicBackend(QString apiKey, QString model, Effort effort, int maxTokens,
                                   double timeout, std::shared_ptr<HttpClient> http,
                                   Retry::Wait wait, QString baseUrl)
    : m_apiKey(std::move(apiKey))
    , m_model(std::move(model))
    , m_effort(effort)
    , m_maxTokens(maxTokens)
    , m_timeout(timeout)
    , m_http(std::move(http))
    , m_wait(std::move(wait))
    , m_baseUrl(std::move(baseUrl)) {}

QString AnthropicBackend::label() const {
    return QStringLiteral("API de Anthropic");
}

QString AnthropicBackend::cacheScope() const {
    return label() + u'|' + m_model + u'|' + rawValue(m_effort);
}

HttpRequest AnthropicBackend::request(const QString& system, const QString& prompt) const {
    const QJsonObject body{
        {QStringLiteral("model"), m_model},
        {QStringLiteral("max_tokens"), m_maxTokens},
        {QStringLiteral("system"), system},
        {QStringLiteral("output_config"),
         QJsonObject{{QStringLiteral("effort"), rawValue(m_effort)}}},
        {QStringLiteral("messages"),
         QJsonArray{QJsonObject{{QStringLiteral("role"), QStringLiteral("user")},
                                {QStringLiteral("content"), prompt}}}},
    };
    HttpRequest request;
    request.method = HttpMethod::post;
    request.url = QUrl(trimBaseAddress(m_baseUrl) + QStringLiteral("/messages"));
    request.timeoutSeconds = m_timeout;
    request.headers = {{"Content-Type", "application/json"},
                       {"x-api-key", m_apiKey.toUtf8()},
                       {"anthropic-version", "2023-06-01"}};
    request.body = QJsonDocument(body).toJson(QJsonDocument::Compact);
    return request;
}

QString AnthropicBackend::complete(const QString& system, const QString& prompt,
                                   std::stop_token stop) const {
    if (m_apiKey.isEmpty())
        throw TranslationError(missingKeyMessage(), true);
    const HttpRequest exchange = request(system, prompt);
    return Retry::withBackoff(
        attempts, [&](int) { return answerOf(m_http->send(exchange, stop)); }, stop, m_wait);
}

size_t qHash(const AnthropicBackend::Model& model, size_t seed) {
    return qHashMulti(seed, model.id, model.name, model.note);
}

} // namespace velto
