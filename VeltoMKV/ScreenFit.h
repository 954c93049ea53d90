#pragma once

#include <QSize>

class QWidget;

namespace velto::ScreenFit {

// Sizes `window` to `wanted` and limits it below by `minimum`, both reduced to what the screen
// it opens on has room for, frame included: at 200 % on a small screen no button lies off it.
void apply(QWidget* window, QSize wanted, QSize minimum);

} // namespace velto::ScreenFit
