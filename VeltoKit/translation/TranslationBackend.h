#pragma once

#include <stop_token>

#include <QString>

namespace velto {

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
    // Asks for "PONG" before a job sends any cue; engines without a network may skip it.
    virtual void preflight(std::stop_token stop) const;
};

} // namespace velto
