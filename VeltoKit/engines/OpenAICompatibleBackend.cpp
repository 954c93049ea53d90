#include "VeltoKit/engines/OpenAICompatibleBackend.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QRegularExpression>

#include "VeltoKit/engines/JsonReader.h"

namespace velto {

namespace {

const HttpBackend::Service& openAICompatible() {
    static const QList<StatusWording> answerStatuses{
        {{400}, TranslationError::fatal, u"Pedido inválido (400): "},
        {{401, 403}, TranslationError::fatal, u"La API key fue rechazada ({status}): "},
        {{404}, TranslationError::fatal, u"El servidor no reconoce el modelo «{model}» (404). "},
        {{429, 500, 502, 503},
         TranslationError::transient,
         u"El servicio está saturado ({status}): "},
        {{}, TranslationError::transient, u"El servidor devolvió {status}: "},
    };
    static const HttpBackend::Service service{
        .attempts = 3,
        .keyHeader = "Authorization",
        .keyPrefix = "Bearer ",
        .invalidAddress = QStringLiteral("La dirección del servidor no es válida."),
        .emptyAnswer = QStringLiteral("El modelo local devolvió una respuesta vacía."),
        .answerFailures = {.bodyCharacters = 300, .statuses = answerStatuses},
        .listingTimeout = 60,
        .listingFailures =
            {.statuses = {{{},
                           TranslationError::fatal,
                           u"El servidor respondió con un error al listar modelos."}}},
        // completion_tokens already holds the reasoning tokens its details break out.
        .usage = {u"usage", u"prompt_tokens", {u"completion_tokens"}},
    };
    return service;
}

TranslationError unreachable(const QString& baseUrl) {
    const bool local = baseUrl.contains(QStringLiteral("localhost")) ||
                       baseUrl.contains(QStringLiteral("127.0.0.1"));
    return TranslationError::fatal(QStringLiteral("No pude conectarme a ") + baseUrl +
                                   (local
                                        ? QStringLiteral(". ¿Está corriendo el servidor local?")
                                        : QStringLiteral(". Revisá la dirección y tu conexión.")));
}

// Reasoning models served locally put their thinking before the answer.
QString withoutThinking(QString text) {
    static const QRegularExpression thinking(QStringLiteral("<think>[\\s\\S]*?</think>"),
                                             QRegularExpression::UseUnicodePropertiesOption);
    return text.remove(thinking);
}

} // namespace

OpenAICompatibleBackend::OpenAICompatibleBackend(Settings settings, QString label,
                                                 double temperature)
    : HttpBackend(std::move(settings), openAICompatible())
    , m_label(std::move(label))
    , m_temperature(temperature) {}

QString OpenAICompatibleBackend::label() const {
    return m_label;
}

QString OpenAICompatibleBackend::cacheScope() const {
    return label() + u'|' + baseUrl() + u'|' + model();
}

EngineAnswer OpenAICompatibleBackend::answer(const QString& system, const QString& prompt,
                                             std::stop_token stop) const {
    if (model().isEmpty())
        throw TranslationError::fatal(QStringLiteral("Elegí un modelo en Ajustes."));
    const QJsonObject body{
        {QStringLiteral("model"), model()},
        {QStringLiteral("temperature"), m_temperature},
        {QStringLiteral("stream"), false},
        {QStringLiteral("messages"),
         QJsonArray{QJsonObject{{QStringLiteral("role"), QStringLiteral("system")},
                                {QStringLiteral("content"), system}},
                    QJsonObject{{QStringLiteral("role"), QStringLiteral("user")},
                                {QStringLiteral("content"), prompt}}}},
    };
    return post(QStringLiteral("/chat/completions"), body, stop);
}

QString OpenAICompatibleBackend::answerOf(const JsonReader& reply) const {
    const QList<JsonReader> choices = reply.objects(u"choices");
    std::optional<JsonReader> message;
    if (!choices.isEmpty())
        message = choices.first().object(u"message");
    return withoutThinking(message ? message->string(u"content").value_or(QString()) : QString());
}

// Whatever kept the server from answering, trying again at once will not change it.
HttpResponse OpenAICompatibleBackend::send(const HttpRequest& request, std::stop_token stop) const {
    try {
        return HttpBackend::send(request, stop);
    } catch (const HttpError& error) {
        // The server did answer: too much. That is its own failure, said as it is.
        if (error.kind() == HttpError::Kind::tooLarge)
            throw;
        throw unreachable(baseUrl());
    }
}

QStringList OpenAICompatibleBackend::listModels(const QString& baseUrl, const QString& apiKey,
                                                HttpClient& http, std::stop_token stop) {
    try {
        return sortedIds(openAICompatible().fetchListing(baseUrl, QStringLiteral("/models"), apiKey,
                                                         http, stop));
    } catch (const HttpError& error) {
        if (error.kind() == HttpError::Kind::tooLarge)
            throw;
        throw unreachable(trimBaseAddress(baseUrl));
    }
}

} // namespace velto
