#pragma once

#include <QString>

namespace velto {

// Writes an executable /bin/sh script (`body` after the #! line) and returns its path.
// Throws std::runtime_error when it cannot.
QString writeShellScript(const QString& path, const QString& body);

} // namespace velto
