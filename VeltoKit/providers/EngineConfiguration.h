#pragma once

#include <memory>
#include <optional>

#include <QString>

#include "VeltoKit/engines/AnthropicBackend.h"
#include "VeltoKit/providers/Provider.h"

namespace velto {

class HttpClient;
class TranslationBackend;

// The engine the user chose, with everything it needs: it says what is missing, names itself in
// one line and builds the backend.
struct EngineConfiguration {
    // An empty `baseURL` becomes the provider's default address.
    EngineConfiguration(Provider provider, QString apiKey, QString baseURL, QString model,
                        AnthropicBackend::Effort effort, QString cliModel, QString cliBinaryPath);

    Provider provider;
    QString apiKey;
    QString baseURL;
    QString model;
    AnthropicBackend::Effort effort;
    QString cliModel;
    QString cliBinaryPath;
    // Why the key could not be read, in the credential store's words; empty when it answered.
    QString keyTrouble;

    // What this setup lacks before it can run; each front end says where to give it.
    enum class Requirement { apiKey, model };
    std::optional<Requirement> missing() const;
    // Why this setup cannot run yet, in the user's words; absent when it can.
    std::optional<QString> missingRequirement() const;
    bool isReady() const { return !missing(); }
    // "Motor: Claude · claude-opus-5", for the main window.
    QString summary() const;

    // Throws a fatal TranslationError when a requirement is missing or `claude` is not found.
    std::shared_ptr<const TranslationBackend>
    makeBackend(const std::shared_ptr<HttpClient>& http) const;
    // The same, with the process-wide HTTP client.
    std::shared_ptr<const TranslationBackend> makeBackend() const;
};

} // namespace velto
