#include "VeltoMKV/WheelGuard.h"

#include <QAbstractScrollArea>
#include <QCoreApplication>
#include <QEvent>
#include <QScrollBar>
#include <QWidget>

namespace velto {
namespace {

class WheelFilter : public QObject {
public:
    using QObject::QObject;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        auto* control = qobject_cast<QWidget*>(watched);
        if (event->type() != QEvent::Wheel || !control || control->hasFocus())
            return false;
        // The page's scroll bar takes the turn the control refused.
        for (QWidget* up = control->parentWidget(); up; up = up->parentWidget()) {
            if (auto* area = qobject_cast<QAbstractScrollArea*>(up)) {
                QCoreApplication::sendEvent(area->verticalScrollBar(), event);
                break;
            }
        }
        return true;
    }
};

} // namespace

void guardWheel(QWidget* control) {
    control->setFocusPolicy(Qt::StrongFocus);
    control->installEventFilter(new WheelFilter(control));
}

} // namespace velto
