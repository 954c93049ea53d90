#include "cli/EngineChoice.h"

#include <QProcessEnvironment>

#include "VeltoKit/platform/Keychain.h"
#include "VeltoKit/providers/Preferences.h"

namespace velto::cli::EngineChoice {

namespace {

// The variable each service's own tools read, so a key already exported just works.
QString usualVariable(const QString& providerID) {
    if (providerID == Provider::claude().id)
        return QStringLiteral("ANTHROPIC_API_KEY");
    if (providerID == Provider::openAI().id)
        return QStringLiteral("OPENAI_API_KEY");
    if (providerID == Provider::gemini().id)
        return QStringLiteral("GEMINI_API_KEY");
    return {};
}

} // namespace

QString apiKeyFor(const QString& providerID) {
    const QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const QString& variable :
         {QStringLiteral("VELTOMKV_API_KEY"), usualVariable(providerID)}) {
        const QString key = variable.isEmpty() ? QString() : environment.value(variable);
        if (!key.isEmpty())
            return key;
    }
    return Keychain::get(providerID);
}

EngineConfiguration configuration(const Preferences& preferences,
                                  const EngineOverrides& overrides) {
    const EngineConfiguration stored =
        overrides.providerID
            ? preferences.engineConfiguration(Provider::byID(*overrides.providerID))
            : preferences.engineConfiguration();
    const AnthropicBackend::Effort effort =
        overrides.effort
            ? AnthropicBackend::effortFromRawValue(*overrides.effort).value_or(stored.effort)
            : stored.effort;
    return EngineConfiguration(stored.provider, stored.apiKey,
                               overrides.baseURL.value_or(stored.baseURL),
                               overrides.model.value_or(stored.model), effort,
                               overrides.cliModel.value_or(stored.cliModel),
                               overrides.claudePath.value_or(stored.cliBinaryPath));
}

QString fixFor(const EngineConfiguration& configuration) {
    const Provider& provider = configuration.provider;
    if (const auto lacking = configuration.missing()) {
        if (*lacking == EngineConfiguration::Requirement::apiKey)
            return QStringLiteral(
                       "Desde la terminal: printf %s \"$CLAVE\" | veltomkv-cli --set-key ") +
                   provider.id + QStringLiteral(", o la variable VELTOMKV_API_KEY.");
        return QStringLiteral("Desde la terminal: agregá --model NOMBRE (mirá cuáles hay con "
                              "--provider ") +
               provider.id + QStringLiteral(" --list-models).");
    }
    // Every requirement met and still no engine: only the claude program can be missing.
    if (provider.flavor == Provider::Flavor::claudeCLI)
        return QStringLiteral("Desde la terminal: agregá --claude-path RUTA.");
    return {};
}

} // namespace velto::cli::EngineChoice
