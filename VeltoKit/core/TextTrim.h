#pragma once

#include <QString>
#include <QStringView>

namespace velto {

// Removes Unicode whitespace from the end only; leading indentation is meaning in subtitles.
QString trimTrailingWhitespace(QStringView text);

// Removes spaces and tabs (nothing else) from both ends.
QString trimSpacesAndTabs(QStringView text);

} // namespace velto
