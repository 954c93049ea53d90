#include "VeltoKit/providers/ModelDiscovery.h"

#include "VeltoKit/engines/AnthropicBackend.h"
#include "VeltoKit/engines/GeminiBackend.h"
#include "VeltoKit/engines/OpenAICompatibleBackend.h"

namespace velto::ModelDiscovery {

QStringList list(const Provider& provider, const QString& apiKey, const QString& baseURL,
                 HttpClient& http, std::stop_token stop) {
    switch (provider.flavor) {
    case Provider::Flavor::anthropic:
        return AnthropicBackend::listModels(apiKey, baseURL, http, stop);
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
