#pragma once

#include <optional>

#include <QString>

namespace velto::Format {

// "1:52:07", "0:59"; an em dash when the length is unknown or not positive.
QString duration(std::optional<double> seconds);
// "59 s", "2 min 30 s". The minutes are rounded, not truncated, as the window always showed them.
QString elapsed(double seconds);

} // namespace velto::Format
