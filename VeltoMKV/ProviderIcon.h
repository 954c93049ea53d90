#pragma once

#include <QIcon>
#include <QPalette>
#include <QString>

namespace velto {

// The icon of a provider, from the catalogue's symbol name (a macOS system symbol): the icon
// theme's nearest icon where there is one, else a small drawing of our own, never a blank.
QIcon providerIcon(const QString& symbol, const QPalette& palette);

} // namespace velto
