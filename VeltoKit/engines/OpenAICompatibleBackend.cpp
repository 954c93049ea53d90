#include "VeltoKit/engines/OpenAICompatibleBackend.h"

#include <algorithm>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

#include "VeltoKit/engines/JsonReader.h"
#include "VeltoKit/translation/TranslationError.h"

namespace velto {

namespace {

constexpr int attempts = 3;
constexpr double listingTimeout = 60;

TranslationError invalidAddress() {
    return {QStringLiteral("La dirección del servidor no es válida."), true};
}

TranslationError unreachable(const QString& baseUrl) {
    const bool local = baseUrl.contains(QStringLiteral("localhost")) ||
                       baseUrl.contains(QStringLiteral("127.0.0.1"));
    return {QStringLiteral("No pude conectarme a ") + baseUrl +
                (local ? QStringLiteral(". ¿Está corriendo el servidor local?")
                       : QStringLiteral(". Revisá la dirección y tu conexión.")),
            true};
}

void authorize(HttpRequest& request, const QString& apiKey) {
    if (!apiKey.isEmpty())
        request.headers.append({"Authorization", "Bearer " + apiKey.toUtf8()});
}

TranslationError statusError(int status, const QString& detail, const QString& model) {
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
        return {QStringLiteral("El servidor no reconoce el modelo «") + model +
                    QStringLiteral("» (404). ") + detail,
                true};
    case 429:
    case 500:
    case 502:
    case 503:
        return {QStringLiteral("El servicio está saturado (") + code + QStringLiteral("): ") +
                    detail,
                false};
    default:
        return {QStringLiteral("El servidor devolvió ") + code + QStringLiteral(": ") + detail,
                false};
    }
}

// Reasoning models served locally put their thinking before the answer.
QString withoutThinking(QString text) {
    static const QRegularExpression thinking(QStringLiteral("<think>[\\s\\S]*?</think>"),
                                             QRegularExpression::UseUnicodePropertiesOption);
    return text.remove(thinking);
}

} // namespace

OpenAICompatibleBackend::OpenAICompatibleBackend(QString baseUrl, QString model, QString apiKey,
                                                 QString label, double temperature, double timeout,
                                                 std::shared_ptr<HttpClient> http, Retry::Wait wait)
    : m_baseUrl(trimBaseAddress(baseUrl))
    , m_model(std::move(model))
    , m_apiKey(std::move(apiKey))
    , m_label(std::move(label))
    , m_temperature(temperature)
    , m_timeout(timeout)
    , m_http(std::move(http))
    , m_wait(std::move(wait)) {}

QString OpenAICompatibleBackend::label() const {
    return m_label;
}

QString OpenAICompatibleBackend::cacheScope() const {
    return label() + u'|' + trimBaseAddress(m_baseUrl) + u'|' + m_model;
}

HttpRequest OpenAICompatibleBackend::request(const QUrl& address, const QString& system,
                                             const QString& prompt) const {
    const QJsonObject body{
        {QStringLiteral("model"), m_model},
        {QStringLiteral("temperature"), m_temperature},
        {QStringLiteral("stream"), false},
        {QStringLiteral("messages"),
         QJsonArray{QJsonObject{{QStringLiteral("role"), QStringLiteral("system")},
                                {QStringLiteral("content"), system}},
                    QJsonObject{{QStringLiteral("role"), QStringLiteral("user")},
                                {QStringLiteral("content"), prompt}}}},
    };
    HttpRequest request;
    request.method = HttpMethod::post;
    request.url = address;
    request.timeoutSeconds = m_timeout;
    request.headers = {{"Content-Type", "application/json"}};
    authorize(request, m_apiKey);
    request.body = QJsonDocument(body).toJson(QJsonDocument::Compact);
    return request;
}

QString OpenAICompatibleBackend::answerOf(const HttpResponse& response) const {
    if (response.status != 200)
        throw statusError(response.status, response.text(300), m_model);
    const JsonReader reply = JsonReader::parse(response.body);
    const QList<JsonReader> choices = reply.objects(u"choices");
    std::optional<JsonReader> message;
    if (!choices.isEmpty())
        message = choices.first().object(u"message");
    const QString text =
        withoutThinking(message ? message->string(u"content").value_or(QString()) : QString());
    if (text.trimmed().isEmpty()) {
        throw TranslationError(QStringLiteral("El modelo local devolvió una respuesta vacía."),
                               false);
    }
    return text;
}

QString OpenAICompatibleBackend::complete(const QString& system, const QString& prompt,
                                          std::stop_token stop) const {
    if (m_model.isEmpty())
        throw TranslationError(QStringLiteral("Elegí un modelo en Ajustes."), true);
    const QUrl address(m_baseUrl + QStringLiteral("/chat/completions"), QUrl::StrictMode);
    if (!isHttpAddress(address))
        throw invalidAddress();
    const HttpRequest exchange = request(address, system, prompt);
    return Retry::withBackoff(
        attempts,
        [&](int) {
            HttpResponse response;
            try {
                response = m_http->send(exchange, stop);
            } catch (const HttpError&) {
                throw unreachable(m_baseUrl);
            }
            return answerOf(response);
        },
        stop, m_wait);
}

QStringList OpenAICompatibleBackend::listModels(const QString& baseUrl, const QString& apiKey,
                                                HttpClient& http, std::stop_token stop) {
    const QString base = trimBaseAddress(baseUrl);
    HttpRequest request;
    request.url = QUrl(base + QStringLiteral("/models"), QUrl::StrictMode);
    if (!isHttpAddress(request.url))
        throw invalidAddress();
    request.timeoutSeconds = listingTimeout;
    authorize(request, apiKey);
    HttpResponse response;
    try {
        response = http.send(request, stop);
    } catch (const HttpError&) {
        throw unreachable(base);
    }
    if (response.status != 200) {
        throw TranslationError(
            QStringLiteral("El servidor respondió con un error al listar modelos."), true);
    }
    QStringList ids;
    for (const JsonReader& entry : JsonReader::parse(response.body).objects(u"data"))
        ids.append(entry.requiredString(u"id"));
    std::sort(ids.begin(), ids.end());
    return ids;
}

} // namespace velto
