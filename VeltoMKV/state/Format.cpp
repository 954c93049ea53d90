#include "VeltoMKV/state/Format.h"

#include <cmath>

namespace velto::Format {

QString duration(std::optional<double> seconds) {
    if (!seconds || !(*seconds > 0))
        return QStringLiteral("—");
    const auto whole = static_cast<qint64>(*seconds);
    const qint64 hours = whole / 3600;
    const qint64 minutes = whole / 60 % 60;
    const qint64 rest = whole % 60;
    if (whole < 3600)
        return QStringLiteral("%1:%2").arg(whole / 60).arg(rest, 2, 10, QLatin1Char('0'));
    return QStringLiteral("%1:%2:%3")
        .arg(hours)
        .arg(minutes, 2, 10, QLatin1Char('0'))
        .arg(rest, 2, 10, QLatin1Char('0'));
}

QString elapsed(double seconds) {
    // printf's "%.0f" rounds halves to even; so does nearbyint under the default rounding mode.
    const auto rounded = [](double value) {
        return QString::number(std::nearbyint(value), 'f', 0);
    };
    if (seconds < 60)
        return rounded(seconds) + QStringLiteral(" s");
    return rounded(seconds / 60) + QStringLiteral(" min ") + rounded(std::fmod(seconds, 60)) +
           QStringLiteral(" s");
}

} // namespace velto::Format
