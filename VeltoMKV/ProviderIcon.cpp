#include "VeltoMKV/ProviderIcon.h"

#include <QHash>
#include <QPainter>
#include <QPainterPath>
#include <QPixmap>

namespace velto {

namespace {

// Freedesktop names that mean the same thing as each symbol, best first.
QStringList themeNames(const QString& symbol) {
    static const QHash<QString, QStringList> names{
        {QStringLiteral("cloud"), {QStringLiteral("weather-overcast")}},
        {QStringLiteral("bubble.left.and.text.bubble.right"),
         {QStringLiteral("internet-group-chat"), QStringLiteral("user-available")}},
        {QStringLiteral("desktopcomputer"), {QStringLiteral("computer")}},
        {QStringLiteral("globe"),
         {QStringLiteral("applications-internet"), QStringLiteral("network-workgroup")}},
        {QStringLiteral("terminal"), {QStringLiteral("utilities-terminal")}},
        {QStringLiteral("testtube.2"), {QStringLiteral("applications-science")}},
        {QStringLiteral("sparkles"), {QStringLiteral("starred")}},
    };
    return names.value(symbol);
}

QPainterPath ellipse(const QRectF& bounds) {
    QPainterPath path;
    path.addEllipse(bounds);
    return path;
}

QPainterPath cloud() {
    QPainterPath base;
    base.addRoundedRect(QRectF(3, 11, 18, 7), 3.5, 3.5);
    return base.united(ellipse(QRectF(5, 8, 8, 8)))
        .united(ellipse(QRectF(9, 5, 10, 10)))
        .simplified();
}

QPainterPath bubbles() {
    QPainterPath path;
    path.addRoundedRect(QRectF(2, 4, 12, 9), 3, 3);
    path.moveTo(4, 12);
    path.lineTo(3, 16);
    path.lineTo(8, 12);
    path.addRoundedRect(QRectF(10, 10, 12, 9), 3, 3);
    return path;
}

QPainterPath sparkle(QPointF centre, qreal radius) {
    QPainterPath path;
    const qreal waist = radius / 4;
    path.moveTo(centre + QPointF(0, -radius));
    path.quadTo(centre + QPointF(waist, -waist), centre + QPointF(radius, 0));
    path.quadTo(centre + QPointF(waist, waist), centre + QPointF(0, radius));
    path.quadTo(centre + QPointF(-waist, waist), centre + QPointF(-radius, 0));
    path.quadTo(centre + QPointF(-waist, -waist), centre + QPointF(0, -radius));
    return path;
}

QPainterPath shapeOf(const QString& symbol) {
    QPainterPath path;
    if (symbol == u"cloud")
        return cloud();
    if (symbol == u"bubble.left.and.text.bubble.right")
        return bubbles();
    if (symbol == u"sparkles") {
        path.addPath(sparkle({10, 13}, 8));
        path.addPath(sparkle({18, 6}, 4));
        return path;
    }
    if (symbol == u"desktopcomputer") {
        path.addRoundedRect(QRectF(2, 3, 20, 13), 2, 2);
        path.addRect(QRectF(10, 16, 4, 3));
        path.addRoundedRect(QRectF(7, 19, 10, 2), 1, 1);
        return path;
    }
    if (symbol == u"globe") {
        path.addEllipse(QRectF(3, 3, 18, 18));
        path.addEllipse(QRectF(8, 3, 8, 18));
        path.moveTo(3, 12);
        path.lineTo(21, 12);
        return path;
    }
    if (symbol == u"testtube.2") {
        path.addRoundedRect(QRectF(5, 2, 5, 19), 2.5, 2.5);
        path.addRoundedRect(QRectF(14, 2, 5, 19), 2.5, 2.5);
        return path;
    }
    path.addRoundedRect(QRectF(2, 3, 20, 18), 3, 3);
    return path;
}

// The few symbols that are letters or prompts read better as text in a frame.
QString glyphOf(const QString& symbol) {
    if (symbol == u"l.square")
        return QStringLiteral("L");
    if (symbol == u"terminal")
        return QStringLiteral(">_");
    return {};
}

QPixmap drawn(const QString& symbol, const QColor& colour, int size) {
    QPixmap pixmap(size, size);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(size / 24.0, size / 24.0);
    painter.setPen(QPen(colour, 1.6, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPath(shapeOf(symbol));
    if (const QString glyph = glyphOf(symbol); !glyph.isEmpty()) {
        QFont font = painter.font();
        font.setPixelSize(glyph.size() > 1 ? 9 : 13);
        font.setBold(true);
        painter.setFont(font);
        painter.drawText(QRectF(2, 3, 20, 18), Qt::AlignCenter, glyph);
    }
    return pixmap;
}

} // namespace

QIcon providerIcon(const QString& symbol, const QPalette& palette) {
    for (const QString& name : themeNames(symbol)) {
        if (QIcon::hasThemeIcon(name))
            return QIcon::fromTheme(name);
    }
    QIcon icon;
    for (int size : {16, 24, 32, 48, 64})
        icon.addPixmap(drawn(symbol, palette.color(QPalette::Text), size));
    return icon;
}

} // namespace velto
