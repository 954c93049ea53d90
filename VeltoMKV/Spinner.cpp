#include "VeltoMKV/Spinner.h"

#include <QPainter>

namespace velto {

Spinner::Spinner(QWidget* parent)
    : QWidget(parent) {
    m_timer.setInterval(33);
    connect(&m_timer, &QTimer::timeout, this, [this] {
        m_angle = (m_angle + 12) % 360;
        update();
    });
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSize Spinner::sizeHint() const {
    const int side = fontMetrics().height() * 2;
    return {side, side};
}

void Spinner::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const qreal width = qMax(2.0, height() / 10.0);
    const QRectF ring = QRectF(rect()).adjusted(width, width, -width, -width);
    painter.setPen(QPen(palette().mid().color(), width));
    painter.drawEllipse(ring);
    painter.setPen(QPen(palette().highlight().color(), width, Qt::SolidLine, Qt::RoundCap));
    painter.drawArc(ring, -m_angle * 16, 100 * 16);
}

void Spinner::showEvent(QShowEvent*) {
    m_timer.start();
}

void Spinner::hideEvent(QHideEvent*) {
    m_timer.stop();
}

} // namespace velto
