#include "VeltoKit/providers/ModelDiscovery.h"

#include <algorithm>

#include "VeltoKit/engines/GeminiBackend.h"
#include "VeltoKit/engines/HttpClient.h"
#include "VeltoKit/engines/JsonReader.h"
#include "VeltoKit/engines/OpenAICompatibleBackend.h"
#include "VeltoKit/translation/TranslationError.h"

namespace velto::ModelDiscovery {

namespace {

constexpr double listingTimeout = 20;

QStringList anthropicModels(const QString& apiKey, const QString& baseURL, HttpClient& http,
                            std::stop_token stop) {
    if (apiKey.isEmpty())
        throw TranslationError(QStringLiteral("Cargá primero la API key de Anthropic."), true);
    HttpRequest request;
    request.url =
        QUrl(trimBaseAddress(baseURL) + QStringLiteral("/models?limit=100"), QUrl::StrictMode);
    if (!isHttpAddress(request.url))
        throw TranslationError(QStringLiteral("La dirección de Anthropic no es válida."), true);
    request.timeoutSeconds = listingTimeout;
    request.headers = {{"x-api-key", apiKey.toUtf8()}, {"anthropic-version", "2023-06-01"}};
    const HttpResponse response = http.send(request, stop);
    if (response.status != 200) {
        throw TranslationError(QStringLiteral("Anthropic no devolvió los modelos (") +
                                   QString::number(response.status) + QStringLiteral("): ") +
                                   response.text(200),
                               true);
    }
    QStringList ids;
    for (const JsonReader& entry : JsonReader::parse(response.body).objects(u"data"))
        ids.append(entry.requiredString(u"id"));
    std::sort(ids.begin(), ids.end());
    return ids;
}

} // namespace

QStringList list(const Provider& provider, const QString& apiKey, const QString& baseURL,
                 HttpClient& http, std::stop_token stop) {
    switch (provider.flavor) {
    case Provider::Flavor::anthropic:
        return anthropicModels(apiKey, baseURL, http, stop);
    case Provider::Flavor::openAICompatible:
        return OpenAICompatibleBackend::listModels(baseURL, apiKey, http, stop);
    case Provider::Flavor::gemini:
        return GeminiBackend::listModels(apiKey, baseURL, http, stop);
    case Provider::Flavor::claudeCLI:
    case Provider::Flavor::echo:
        break;
    }
    return {};
}

} // namespace velto::ModelDiscovery
