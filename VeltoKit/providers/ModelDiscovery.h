#pragma once

#include <stop_token>

#include <QString>
#include <QStringList>

#include "VeltoKit/providers/Provider.h"

namespace velto {

class HttpClient;

// Which models a key may use, asked of the provider's service (the «Buscar» of the settings).
namespace ModelDiscovery {

// The identifiers the service offers, sorted; empty at once for providers without models.
// Throws TranslationError, HttpError or JsonError, and Cancelled when `stop` is requested.
QStringList list(const Provider& provider, const QString& apiKey, const QString& baseURL,
                 HttpClient& http, std::stop_token stop = {});

} // namespace ModelDiscovery
} // namespace velto
