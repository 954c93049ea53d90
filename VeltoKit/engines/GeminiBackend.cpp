#include "VeltoKit/engines/GeminiBackend.h"

#include <algorithm>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "VeltoKit/engines/JsonReader.h"
#include "VeltoKit/translation/TranslationError.h"

namespace velto {

namespace {

constexpr int attempts = 4;
constexpr double listingTimeout = 60;

TranslationError statusError(int status, const QString& detail) {
    const QString code = QString::number(status);
    switch (status) {
    case 400:
        // The service reports an invalid key as a bad request.
        if (detail.toLower().contains(QStringLiteral("api key")))
            return {QStringLiteral("La API key de Gemini fue rechazada: ") + detail, true};
        [[fallthrough]];
    case 404:
        return {QStringLiteral("Gemini rechazó el pedido (") + code + QStringLiteral("): ") +
                    detail,
                true};
    case 401:
    case 403:
        return {QStringLiteral("La API key de Gemini no tiene permiso (") + code +
                    QStringLiteral("): ") + detail,
                true};
    case 429:
    case 500:
    case 503:
        return {QStringLiteral("Gemini está saturado (") + code + QStringLiteral("): ") + detail,
                false};
    default:
        return {QStringLiteral("Error ") + code + QStringLiteral(" de Gemini: ") + detail, false};
    }
}

QJsonArray textParts(const QString& text) {
    return QJsonArray{QJsonObject{{QStringLiteral("text"), text}}};
}

// Film dialogue is full of violence, insults and sex; the default filters would block whole
// batches of it.
QJsonArray permissiveSafetySettings() {
    QJsonArray settings;
    for (const char* category :
         {"HARM_CATEGORY_HARASSMENT", "HARM_CATEGORY_HATE_SPEECH",
          "HARM_CATEGORY_SEXUALLY_EXPLICIT", "HARM_CATEGORY_DANGEROUS_CONTENT"}) {
        settings.append(QJsonObject{{QStringLiteral("category"), QString::fromLatin1(category)},
                                    {QStringLiteral("threshold"), QStringLiteral("BLOCK_NONE")}});
    }
    return settings;
}

QString answerOf(const HttpResponse& response) {
    if (response.status != 200) {
        throw statusError(response.status,
                          JsonReader::apiErrorMessage(response.body).value_or(response.text(300)));
    }
    const JsonReader reply = JsonReader::parse(response.body);
    const QList<JsonReader> candidates = reply.objects(u"candidates");
    const std::optional<JsonReader> feedback = reply.object(u"promptFeedback");
    if (const auto blockReason = feedback ? feedback->string(u"blockReason") : std::nullopt) {
        throw TranslationError(QStringLiteral("Gemini bloqueó este fragmento (") + *blockReason +
                                   QStringLiteral("). Probá con otro modelo o motor."),
                               false);
    }
    if (candidates.isEmpty())
        throw TranslationError(QStringLiteral("Gemini no devolvió ninguna respuesta."), false);
    const JsonReader& first = candidates.first();
    const std::optional<QString> finishReason = first.string(u"finishReason");
    // A cut answer is still worth having: the translator notices the missing blocks.
    if (finishReason && *finishReason != u"STOP" && *finishReason != u"MAX_TOKENS") {
        throw TranslationError(QStringLiteral("Gemini cortó la respuesta (") + *finishReason +
                                   QStringLiteral(")."),
                               false);
    }
    QString text;
    if (const std::optional<JsonReader> content = first.object(u"content")) {
        for (const JsonReader& part : content->objects(u"parts"))
            text += part.string(u"text").value_or(QString());
    }
    if (text.trimmed().isEmpty())
        throw TranslationError(QStringLiteral("Gemini devolvió una respuesta vacía."), false);
    return text;
}

QStringList generativeModels(const HttpResponse& response) {
    QStringList names;
    for (const JsonReader& entry : JsonReader::parse(response.body).objects(u"models")) {
        QString name = entry.requiredString(u"name");
        if (!entry.strings(u"supportedGenerationMethods").contains(u"generateContent"))
            continue;
        if (name.startsWith(u"models/"))
            name.remove(0, 7);
        names.append(name);
    }
    std::sort(names.begin(), names.end());
    return names;
}

} // namespace

QString GeminiBackend::publicBaseUrl() {
    return QStringLiteral("https://generativelanguage.googleapis.com/v1beta");
}

QString GeminiBackend::keyPageUrl() {
    return QStringLiteral("https://aistudio.google.com/apikey");
}

GeminiBackend::GeminiBackend(QString apiKey, QString model, QString baseUrl, double temperature,
                             int maxOutputTokens, double timeout, std::shared_ptr<HttpClient> http,
                             Retry::Wait wait)
    : m_apiKey(std::move(apiKey))
    , m_model(std::move(model))
    , m_baseUrl(trimBaseAddress(baseUrl))
    , m_temperature(temperature)
    , m_maxOutputTokens(maxOutputTokens)
    , m_timeout(timeout)
    , m_http(std::move(http))
    , m_wait(std::move(wait)) {}

QString GeminiBackend::label() const {
    return QStringLiteral("Google Gemini");
}

QString GeminiBackend::cacheScope() const {
    return label() + u'|' + m_model;
}

HttpRequest GeminiBackend::request(const QUrl& address, const QString& system,
                                   const QString& prompt) const {
    const QJsonObject body{
        {QStringLiteral("systemInstruction"),
         QJsonObject{{QStringLiteral("parts"), textParts(system)}}},
        {QStringLiteral("contents"),
         QJsonArray{QJsonObject{{QStringLiteral("role"), QStringLiteral("user")},
                                {QStringLiteral("parts"), textParts(prompt)}}}},
        {QStringLiteral("generationConfig"),
         QJsonObject{{QStringLiteral("temperature"), m_temperature},
                     {QStringLiteral("maxOutputTokens"), m_maxOutputTokens}}},
        {QStringLiteral("safetySettings"), permissiveSafetySettings()},
    };
    HttpRequest request;
    request.method = HttpMethod::post;
    request.url = address;
    request.timeoutSeconds = m_timeout;
    // The key travels in a header, never in the address, so it stays out of logs.
    request.headers = {{"Content-Type", "application/json"}, {"x-goog-api-key", m_apiKey.toUtf8()}};
    request.body = QJsonDocument(body).toJson(QJsonDocument::Compact);
    return request;
}

QString GeminiBackend::complete(const QString& system, const QString& prompt,
                                std::stop_token stop) const {
    if (m_apiKey.isEmpty()) {
        throw TranslationError(QStringLiteral("Falta la API key de Gemini. Sacala de ") +
                                   keyPageUrl() + QStringLiteral(" y cargala en Ajustes."),
                               true);
    }
    if (m_model.isEmpty())
        throw TranslationError(QStringLiteral("Elegí un modelo de Gemini en Ajustes."), true);
    const QUrl address(m_baseUrl + QStringLiteral("/models/") + m_model +
                           QStringLiteral(":generateContent"),
                       QUrl::StrictMode);
    if (!isHttpAddress(address))
        throw TranslationError(QStringLiteral("La dirección de Gemini no es válida."), true);
    const HttpRequest exchange = request(address, system, prompt);
    return Retry::withBackoff(
        attempts, [&](int) { return answerOf(m_http->send(exchange, stop)); }, stop, m_wait);
}

QStringList GeminiBackend::listModels(const QString& apiKey, const QString& baseUrl,
                                      HttpClient& http, std::stop_token stop) {
    const auto failure = [](const QString& detail) {
        return TranslationError(QStringLiteral("Gemini no devolvió los modelos: ") + detail, true);
    };
    const QString unreadable = QStringLiteral("no pude leer la lista");
    if (apiKey.isEmpty())
        throw TranslationError(QStringLiteral("Cargá primero la API key de Gemini."), true);
    HttpRequest request;
    request.url =
        QUrl(trimBaseAddress(baseUrl) + QStringLiteral("/models?pageSize=200"), QUrl::StrictMode);
    if (!isHttpAddress(request.url))
        throw TranslationError(QStringLiteral("La dirección de Gemini no es válida."), true);
    request.timeoutSeconds = listingTimeout;
    request.headers = {{"x-goog-api-key", apiKey.toUtf8()}};
    HttpResponse response;
    try {
        response = http.send(request, stop);
    } catch (const HttpError& error) {
        throw failure(error.description());
    }
    if (response.status != 200)
        throw failure(JsonReader::apiErrorMessage(response.body).value_or(unreadable));
    try {
        return generativeModels(response);
    } catch (const JsonError&) {
        throw failure(unreadable);
    }
}

} // namespace velto
