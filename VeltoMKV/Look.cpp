#include "VeltoMKV/Look.h"

#include <QApplication>
#include <QLabel>
#include <QPainter>
#include <QPixmap>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QStyle>
#include <QToolButton>
#include <QVBoxLayout>

namespace velto::Look {

void makeTitle(QLabel* label) {
    QFont font = label->font();
    font.setPointSizeF(font.pointSizeF() * 1.4);
    font.setWeight(QFont::DemiBold);
    label->setFont(font);
}

QLabel* title(const QString& text, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    makeTitle(label);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    return label;
}

QLabel* secondary(const QString& text, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    // QLabel paints with its foreground role, so the colour follows palette changes.
    label->setForegroundRole(QPalette::PlaceholderText);
    label->setWordWrap(true);
    return label;
}

QLabel* heading(const QString& text, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    QFont font = label->font();
    font.setWeight(QFont::DemiBold);
    label->setFont(font);
    return label;
}

QLabel* paragraph(const QString& text, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    label->setWordWrap(true);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    return label;
}

QPushButton* primaryButton(const QString& text, QWidget* parent) {
    auto* button = new QPushButton(text, parent);
    button->setObjectName(QStringLiteral("primary"));
    button->setDefault(true);
    button->setStyleSheet(QStringLiteral(
        "QPushButton#primary { background-color: palette(highlight); color: "
        "palette(highlighted-text); border: none; border-radius: 6px; padding: 5px 18px; "
        "font-weight: 600; }"
        "QPushButton#primary:hover { background-color: palette(link); }"
        "QPushButton#primary:focus { outline: none; border: 2px solid palette(highlighted-text); "
        "padding: 3px 16px; }"
        "QPushButton#primary:disabled { background-color: palette(mid); color: palette(window); "
        "}"));
    return button;
}

QPushButton* button(const QString& text, QWidget* parent) {
    auto* button = new QPushButton(text, parent);
    const QFontMetrics metrics = button->fontMetrics();
    // The primary button's style sheet pads its text by 5 and 18 pixels.
    button->setMinimumHeight(metrics.height() + 10);
    button->setMinimumWidth(metrics.horizontalAdvance(text) + 2 * 18);
    return button;
}

QPushButton* quietButton(const QString& text, QWidget* parent) {
    auto* button = new QPushButton(text, parent);
    button->setCursor(Qt::PointingHandCursor);
    button->setStyleSheet(
        QStringLiteral("QPushButton { border: none; background: transparent; color: palette(link); "
                       "padding: 4px 2px; }"
                       "QPushButton:hover, QPushButton:focus { text-decoration: underline; }"));
    return button;
}

QToolButton* disclosure(const QString& text, QWidget* parent) {
    auto* button = new QToolButton(parent);
    button->setText(text);
    button->setCheckable(true);
    button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    button->setArrowType(Qt::RightArrow);
    button->setAutoRaise(true);
    // Flat, but the keyboard still sees where it is.
    button->setStyleSheet(QStringLiteral(
        "QToolButton { border: 1px solid transparent; border-radius: 4px; padding: 2px 4px; }"
        "QToolButton:focus { border-color: palette(highlight); }"));
    QObject::connect(button, &QToolButton::toggled, button, [button](bool open) {
        button->setArrowType(open ? Qt::DownArrow : Qt::RightArrow);
    });
    return button;
}

QLabel* iconLabel(const QIcon& icon, int size, QWidget* parent) {
    auto* label = new QLabel(parent);
    label->setPixmap(icon.pixmap(QSize(size, size), label->devicePixelRatioF()));
    label->setFixedSize(size, size);
    return label;
}

ScrollingColumn scrollingColumn(QWidget* parent) {
    auto* area = new QScrollArea(parent);
    area->setFrameShape(QFrame::NoFrame);
    area->setFocusPolicy(Qt::NoFocus);
    area->setWidgetResizable(true);
    // Sideways only when the screen is narrower than the content: scrolled, never clipped.
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    auto* content = new QWidget(area);
    area->setWidget(content);
    area->viewport()->setBackgroundRole(QPalette::Window);
    content->setBackgroundRole(QPalette::Window);
    auto* layout = new QVBoxLayout(content);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(rowGap);
    QObject::connect(area->verticalScrollBar(), &QScrollBar::rangeChanged, layout,
                     [layout](int, int maximum) {
                         layout->setContentsMargins(0, 0, maximum > 0 ? rowGap : 0, 0);
                     });
    return {area, layout};
}

QIcon warningIcon() {
    return QApplication::style()->standardIcon(QStyle::SP_MessageBoxWarning);
}

namespace {

template <typename Draw>
void addDrawn(QIcon& icon, QIcon::Mode mode, Draw draw) {
    for (int size : {16, 20, 24, 32, 40, 48, 64, 96}) {
        QPixmap pixmap(size, size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.scale(size / 16.0, size / 16.0);
        draw(painter);
        icon.addPixmap(pixmap, mode);
    }
}

template <typename Draw>
QIcon drawn(Draw draw) {
    QIcon icon;
    addDrawn(icon, QIcon::Normal, draw);
    return icon;
}

} // namespace

QIcon choiceMark(bool chosen, const QPalette& palette) {
    const auto mark = [chosen](QColor colour) {
        return [chosen, colour](QPainter& painter) {
            painter.setPen(QPen(colour, 1.4));
            painter.setBrush(Qt::NoBrush);
            painter.drawEllipse(QRectF(2, 2, 12, 12));
            if (chosen) {
                painter.setPen(Qt::NoPen);
                painter.setBrush(colour);
                painter.drawEllipse(QRectF(5, 5, 6, 6));
            }
        };
    };
    QIcon icon;
    addDrawn(icon, QIcon::Normal,
             mark(chosen ? palette.highlight().color() : palette.mid().color()));
    // On the highlighted row the mark takes the row's text colour, or it would vanish.
    addDrawn(icon, QIcon::Selected, mark(palette.highlightedText().color()));
    return icon;
}

QIcon doneMark(const QPalette& palette) {
    const QColor accent = palette.highlight().color();
    const QColor mark = palette.highlightedText().color();
    return drawn([&](QPainter& painter) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(accent);
        painter.drawEllipse(QRectF(0.5, 0.5, 15, 15));
        painter.setPen(QPen(mark, 1.8, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.setBrush(Qt::NoBrush);
        painter.drawPolyline(QPolygonF({QPointF(4.5, 8.3), QPointF(7, 10.8), QPointF(11.5, 5.5)}));
    });
}

QIcon informationIcon() {
    return QApplication::style()->standardIcon(QStyle::SP_MessageBoxInformation);
}

} // namespace velto::Look
