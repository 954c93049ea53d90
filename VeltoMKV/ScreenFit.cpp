#include "VeltoMKV/ScreenFit.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWidget>

namespace velto::ScreenFit {

void apply(QWidget* window, QSize wanted, QSize minimum) {
    const QScreen* screen = window->screen() ? window->screen() : QGuiApplication::primaryScreen();
    if (!screen) {
        window->setMinimumSize(minimum);
        window->resize(wanted);
        return;
    }
    // Room for the title bar and borders that the window manager adds around the window.
    const QSize room = screen->availableGeometry().size() - QSize(16, 48);
    window->setMinimumSize(minimum.boundedTo(room));
    window->resize(wanted.boundedTo(room).expandedTo(window->minimumSize()));
}

} // namespace velto::ScreenFit
