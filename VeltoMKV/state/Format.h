#pragma once

#include <optional>

#include <QString>

namespace velto {
struct SubtitleTrack;
struct TranslationProgress;
} // namespace velto

namespace velto::Format {

// "1:52:07", "0:59"; an em dash when the length is unknown or not positive.
QString duration(std::optional<double> seconds);
// "59 s", "2 min 30 s". The minutes are rounded, not truncated, as the window always showed them.
QString elapsed(double seconds);

// A count as Spanish prose writes it: "1.600", "360".
QString count(qint64 number);
// "360 de 1.600 subtítulos", then " · 12 en caché" and " · 3 sin traducir" when there are any.
QString counts(const TranslationProgress& progress);
// "43 %" for 0.43, clamped to 0...100.
QString percent(double fraction);
// "falta menos de un minuto", "faltan ~3 min", "faltan ~1 h 20 min".
QString timeLeft(double seconds);

// "#3  inglés  «English»   ·   SDH · 1.502 subt."; image tracks say they need OCR.
QString track(const SubtitleTrack& track);

} // namespace velto::Format
