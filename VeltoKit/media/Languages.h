#pragma once

#include <optional>

#include <QString>

namespace velto {

// Language tags and names as they appear in media files.
//
// Codes are normalised to the ISO 639-2 *bibliographic* form ("fre", "ger", "chi", "dut"),
// the form Matroska stores and mkvmerge reports, so a normalised tag compares equal to what
// the files carry; the terminological forms ("fra", "deu", "zho", "nld") map onto it.
namespace Languages {

// "en", "EN", "eng", "en-US", "pt_BR", "fra", "English", "inglés", "Espanol" -> ISO 639-2/B.
// "und" for an empty or unknown tag.
QString normalize(const QString& tag);

// Spanish name of a code for messages ("inglés", "francés"); accepts anything normalize
// accepts. "idioma desconocido" for "und"; an unknown code is returned as it is.
QString displayName(const QString& code);

// True when `code` normalises to a real language (not "und", "mul", "zxx", "mis").
bool isKnown(const QString& code);

// The language a track title names ("English SDH", "Español (Latino)", "pt-BR"), if any.
std::optional<QString> guessFromTitle(const QString& title);

// Titles that mark forced ("Forced", "Forzados", "Foreign parts") or hearing-impaired
// ("SDH", "CC", "Closed caption") tracks.
bool looksForced(const QString& title);
bool looksSDH(const QString& title);

} // namespace Languages
} // namespace velto
