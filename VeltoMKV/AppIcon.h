#pragma once

#include <QIcon>

namespace velto {

// The application's icon, drawn rather than loaded so no image plugin is needed: a video frame
// with two subtitle lines. desktop/veltomkv.svg is the same drawing for the desktop.
QIcon appIcon();

} // namespace velto
