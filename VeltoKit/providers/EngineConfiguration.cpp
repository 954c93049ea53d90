#include "VeltoKit/providers/EngineConfiguration.h"

#include "VeltoKit/engines/ClaudeCLIBackend.h"
#include "VeltoKit/engines/EchoBackend.h"
#include "VeltoKit/engines/GeminiBackend.h"
#include "VeltoKit/engines/HttpClient.h"
#include "VeltoKit/engines/OpenAICompatibleBackend.h"
#include "VeltoKit/platform/PlatformText.h"
#include "VeltoKit/translation/TranslationError.h"

namespace velto {

namespace {

using Flavor = Provider::Flavor;

// The hosted services answer in seconds; a local model on a laptop may think for minutes.
constexpr double networkTimeout = 300;
constexpr double localServerTimeout = 600;
constexpr int maxAnswerTokens = 16000;
constexpr double temperature = 0.3;

std::shared_ptr<const TranslationBackend> claudeCLIBackend(const QString& preferredPath,
                                                           const QString& model) {
    const std::optional<QString> binary = ClaudeCLIBackend::locate(preferredPath);
    if (!binary) {
        throw TranslationError::fatal(QStringLiteral("No encuentro el binario «claude» en ") +
                                      PlatformText::thisComputer() +
                                      QStringLiteral(". Si lo tenés instalado, indicá su ruta en "
                                                     "Ajustes."));
    }
    return std::make_shared<ClaudeCLIBackend>(*binary, model, networkTimeout);
}

} // namespace

EngineConfiguration::EngineConfiguration(Provider provider, QString apiKey, QString baseURL,
                                         QString model, AnthropicBackend::Effort effort,
                                         QString cliModel, QString cliBinaryPath)
    : provider(std::move(provider))
    , apiKey(std::move(apiKey))
    , baseURL(baseURL.isEmpty() ? this->provider.defaultBaseURL : std::move(baseURL))
    , model(std::move(model))
    , effort(effort)
    , cliModel(std::move(cliModel))
    , cliBinaryPath(std::move(cliBinaryPath)) {}

std::optional<EngineConfiguration::Requirement> EngineConfiguration::missing() const {
    if (provider.needsKey && apiKey.isEmpty())
        return Requirement::apiKey;
    const bool needsModel =
        provider.flavor == Flavor::openAICompatible || provider.flavor == Flavor::gemini;
    if (needsModel && model.isEmpty())
        return Requirement::model;
    return std::nullopt;
}

std::optional<QString> EngineConfiguration::missingRequirement() const {
    const std::optional<Requirement> lacking = missing();
    if (lacking == Requirement::apiKey && !keyTrouble.isEmpty())
        return keyTrouble;
    if (lacking == Requirement::apiKey) {
        return QStringLiteral("Falta la API key de ") + provider.name +
               QStringLiteral(". Cargala en Ajustes") +
               (provider.keySource.isEmpty()
                    ? QStringLiteral(".")
                    : QStringLiteral("; la sacás de ") + provider.keySource + u'.');
    }
    if (lacking == Requirement::model) {
        return QStringLiteral("Elegí un modelo en Ajustes: apretá «Buscar» para ver los que "
                              "ofrece ") +
               provider.name + u'.';
    }
    return std::nullopt;
}

QString EngineConfiguration::summary() const {
    switch (provider.flavor) {
    case Flavor::claudeCLI:
        return QStringLiteral("Motor: Claude Code (") + cliModel + u')';
    case Flavor::echo:
        return QStringLiteral("Modo prueba: no se traduce nada");
    case Flavor::anthropic:
    case Flavor::openAICompatible:
    case Flavor::gemini:
        break;
    }
    return QStringLiteral("Motor: ") + provider.name +
           (model.isEmpty() ? QStringLiteral(" · sin modelo elegido")
                            : QStringLiteral(" · ") + model);
}

std::shared_ptr<const TranslationBackend> EngineConfiguration::makeBackend() const {
    return makeBackend(HttpClient::shared());
}

std::shared_ptr<const TranslationBackend>
EngineConfiguration::makeBackend(const std::shared_ptr<HttpClient>& http) const {
    if (const std::optional<QString> missing = missingRequirement())
        throw TranslationError::fatal(*missing);
    switch (provider.flavor) {
    case Flavor::anthropic:
        return std::make_shared<AnthropicBackend>(
            HttpBackend::Settings{apiKey,
                                  model.isEmpty() ? AnthropicBackend::defaultModel() : model,
                                  Provider::claude().defaultBaseURL, networkTimeout, http},
            effort, maxAnswerTokens);
    case Flavor::openAICompatible:
        return std::make_shared<OpenAICompatibleBackend>(
            HttpBackend::Settings{apiKey, model, baseURL, localServerTimeout, http}, provider.name,
            temperature);
    case Flavor::gemini:
        return std::make_shared<GeminiBackend>(
            HttpBackend::Settings{apiKey, model, baseURL, networkTimeout, http}, temperature,
            maxAnswerTokens);
    case Flavor::claudeCLI:
        return claudeCLIBackend(cliBinaryPath, cliModel);
    case Flavor::echo:
        break;
    }
    return std::make_shared<EchoBackend>();
}

} // namespace velto
