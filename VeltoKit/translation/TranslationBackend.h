#pragma once

#include <optional>
#include <stop_token>

#include <QString>

#include "VeltoKit/translation/TokenUsage.h"

namespace velto {

// A model's answer with the tokens the service says it billed for it, when it says.
struct EngineAnswer {
    QString text;
    std::optional<TokenUsage> usage;
};

// A translation engine: turns a system prompt and a user prompt into the model's answer.
// Implementations are immutable and called from several translator threads at once.
class TranslationBackend {
public:
    virtual ~TranslationBackend() = default;

    virtual QString label() const = 0;
    // What sets this engine's answers apart from another's: the label, and the model and
    // effort where the engine has them. Cached translations never cross scopes.
    virtual QString cacheScope() const;
    // Throws TranslationError, Cancelled, or a lower-level VeltoError (transport, decoding).
    virtual QString complete(const QString& system, const QString& prompt,
                             std::stop_token stop) const = 0;
    // The same as complete(), with the usage the service reported; engines that report none
    // need not override it.
    virtual EngineAnswer answer(const QString& system, const QString& prompt,
                                std::stop_token stop) const;
    // The most output tokens one request may produce, when the request sets a limit.
    virtual std::optional<qint64> outputLimit() const;
    // Asks for "PONG" before a job sends any cue; engines without a network may skip it.
    virtual void preflight(std::stop_token stop) const;
};

} // namespace velto
