#include "VeltoMKV/AppIcon.h"

#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QPixmap>

namespace velto {
namespace {

QPixmap drawIcon(int size) {
    QPixmap pixmap(size, size);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(size / 256.0, size / 256.0);

    QLinearGradient background(0, 16, 0, 240);
    background.setColorAt(0, QColor(0x4f, 0x6b, 0xf0));
    background.setColorAt(1, QColor(0x2a, 0x36, 0xa8));
    painter.setPen(Qt::NoPen);
    painter.setBrush(background);
    painter.drawRoundedRect(QRectF(16, 16, 224, 224), 52, 52);

    // The screen, with sprocket holes above and below like a strip of film.
    painter.setBrush(QColor(0x14, 0x1a, 0x4a));
    painter.drawRoundedRect(QRectF(44, 64, 168, 128), 14, 14);
    painter.setBrush(QColor(255, 255, 255, 90));
    for (int x = 52; x < 208; x += 28) {
        painter.drawRoundedRect(QRectF(x, 44, 14, 10), 3, 3);
        painter.drawRoundedRect(QRectF(x, 202, 14, 10), 3, 3);
    }
    // Two subtitle lines, the lower one in the accent of the translation.
    painter.setBrush(Qt::white);
    painter.drawRoundedRect(QRectF(72, 136, 112, 14), 7, 7);
    painter.setBrush(QColor(0xff, 0xc9, 0x4a));
    painter.drawRoundedRect(QRectF(88, 160, 80, 14), 7, 7);
    return pixmap;
}

} // namespace

QIcon appIcon() {
    QIcon icon;
    for (int size : {16, 24, 32, 48, 64, 128, 256, 512})
        icon.addPixmap(drawIcon(size));
    return icon;
}

} // namespace velto
