#pragma once

class QWidget;

namespace velto {

// Lets `control` (a spin box, a picker) take the mouse wheel only once it has the focus; until
// then the wheel scrolls the page around it, so scrolling past a control never changes a
// stored setting.
void guardWheel(QWidget* control);

} // namespace velto
