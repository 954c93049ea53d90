#pragma once

#include "VeltoKit/translation/TranslationBackend.h"

namespace velto {

// The test engine: answers every block with its own text prefixed by "[ES] ", so a whole job
// runs end to end without a network, a key or any cost.
class EchoBackend : public TranslationBackend {
public:
    QString label() const override;
    QString complete(const QString& system, const QString& prompt,
                     std::stop_token stop) const override;
    // Nothing to check: this engine always answers.
    void preflight(std::stop_token stop) const override;
};

} // namespace velto
