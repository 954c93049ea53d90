#pragma once

#include "VeltoKit/providers/Provider.h"

namespace velto::cli {

// --set-key: reads a provider's key from standard input (never from the command line, where
// the process list would show it) and keeps it in the credential store; empty input deletes
// it. Returns the exit status.
int storeKeyFromInput(const Provider& provider);

} // namespace velto::cli
