#pragma once

#include <QString>

#include "VeltoKit/providers/EngineConfiguration.h"
#include "cli/CliOptions.h"

namespace velto {
class Preferences;
}

namespace velto::cli {

// The engine of one run from a terminal: what the user chose in the app, with the command
// line's overrides on top, and the key from the environment before the credential store.
namespace EngineChoice {

// VELTOMKV_API_KEY, else the provider's usual variable, else the credential store.
QString apiKeyFor(const QString& providerID);

EngineConfiguration configuration(const Preferences& preferences, const EngineOverrides& overrides);

// How a terminal user fixes what `configuration` lacks, as a second line under the message;
// empty when nothing is missing or no option helps.
QString fixFor(const EngineConfiguration& configuration);

} // namespace EngineChoice
} // namespace velto::cli
