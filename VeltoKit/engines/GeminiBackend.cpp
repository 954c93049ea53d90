#include "VeltoKit/engines/GeminiBackend.h"

#include <algorithm>

#include <QJsonArray>
#include <QJsonObject>

#include "VeltoKit/engines/JsonReader.h"

namespace velto {

namespace {

const HttpBackend::Service& gemini() {
    static const QList<StatusWording> answerStatuses{
        // The service reports an invalid key as a bad request.
        {{400}, TranslationError::fatal, u"La API key de Gemini fue rechazada: ", u"api key"},
        {{400, 404}, TranslationError::fatal, u"Gemini rechazó el pedido ({status}): "},
        {{401, 403},
         TranslationError::fatal,
         u"La API key de Gemini no tiene permiso ({status}): "},
        {{429, 500, 503}, TranslationError::transient, u"Gemini está saturado ({status}): "},
        {{}, TranslationError::transient, u"Error {status} de Gemini: "},
    };
    static const HttpBackend::Service service{
        .attempts = 4,
        // The key travels in a header, never in the address, so it stays out of logs.
        .keyHeader = "x-goog-api-key",
        .invalidAddress = QStringLiteral("La dirección de Gemini no es válida."),
        .emptyAnswer = QStringLiteral("Gemini devolvió una respuesta vacía."),
        .answerFailures = {.quotesServiceMessage = true,
                           .bodyCharacters = 300,
                           .statuses = answerStatuses},
        .listingTimeout = 60,
        .listingFailures =
            {.quotesServiceMessage = true,
             .unreadable = QStringLiteral("no pude leer la lista"),
             .statuses = {{{}, TranslationError::fatal, u"Gemini no devolvió los modelos: "}}},
        // Thinking is not part of the candidates' count but is billed like them.
        .usage = {u"usageMetadata",
                  u"promptTokenCount",
                  {u"candidatesTokenCount", u"thoughtsTokenCount"}},
    };
    return service;
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

GeminiBackend::GeminiBackend(Settings settings, double temperature, int maxOutputTokens)
    : HttpBackend(std::move(settings), gemini())
    , m_temperature(temperature)
    , m_maxOutputTokens(maxOutputTokens) {}

QString GeminiBackend::label() const {
    return QStringLiteral("Google Gemini");
}

QString GeminiBackend::cacheScope() const {
    return label() + u'|' + model();
}

std::optional<qint64> GeminiBackend::outputLimit() const {
    return m_maxOutputTokens;
}

EngineAnswer GeminiBackend::answer(const QString& system, const QString& prompt,
                                   std::stop_token stop) const {
    if (apiKey().isEmpty()) {
        throw TranslationError::fatal(QStringLiteral("Falta la API key de Gemini. Sacala de ") +
                                      keyPageUrl() + QStringLiteral(" y cargala en Ajustes."));
    }
    if (model().isEmpty())
        throw TranslationError::fatal(QStringLiteral("Elegí un modelo de Gemini en Ajustes."));
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
    return post(QStringLiteral("/models/") + model() + QStringLiteral(":generateContent"), body,
                stop);
}

QString GeminiBackend::answerOf(const JsonReader& reply) const {
    const QList<JsonReader> candidates = reply.objects(u"candidates");
    const std::optional<JsonReader> feedback = reply.object(u"promptFeedback");
    if (const auto blockReason = feedback ? feedback->string(u"blockReason") : std::nullopt) {
        throw TranslationError::transient(QStringLiteral("Gemini bloqueó este fragmento (") +
                                          *blockReason +
                                          QStringLiteral("). Probá con otro modelo o motor."));
    }
    if (candidates.isEmpty())
        throw TranslationError::transient(QStringLiteral("Gemini no devolvió ninguna respuesta."));
    const JsonReader& first = candidates.first();
    const std::optional<QString> finishReason = first.string(u"finishReason");
    // A cut answer is still worth having: the translator notices the missing blocks.
    if (finishReason && *finishReason != u"STOP" && *finishReason != u"MAX_TOKENS") {
        throw TranslationError::transient(QStringLiteral("Gemini cortó la respuesta (") +
                                          *finishReason + QStringLiteral(")."));
    }
    QString text;
    if (const std::optional<JsonReader> content = first.object(u"content")) {
        for (const JsonReader& part : content->objects(u"parts"))
            text += part.string(u"text").value_or(QString());
    }
    return text;
}

QStringList GeminiBackend::listModels(const QString& apiKey, const QString& baseUrl,
                                      HttpClient& http, std::stop_token stop) {
    const FailureWording& failed = gemini().listingFailures;
    if (apiKey.isEmpty())
        throw TranslationError::fatal(QStringLiteral("Cargá primero la API key de Gemini."));
    HttpResponse response;
    try {
        response = gemini().fetchListing(baseUrl, QStringLiteral("/models?pageSize=200"), apiKey,
                                         http, stop);
    } catch (const HttpError& error) {
        throw failed.errorFor(0, error.description());
    }
    try {
        return generativeModels(response);
    } catch (const JsonError&) {
        throw failed.errorFor(response.status, failed.unreadable);
    }
}

} // namespace velto
