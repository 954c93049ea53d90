#include "VeltoMKV/ElidingLabel.h"

#include <QPainter>
#include <QStyle>

namespace velto {

ElidingLabel::ElidingLabel(QWidget* parent, Qt::TextElideMode mode)
    : QLabel(parent)
    , m_mode(mode) {
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    setWordWrap(false);
}

QString ElidingLabel::shownText() const {
    return fontMetrics().elidedText(text(), m_mode, contentsRect().width());
}

QSize ElidingLabel::minimumSizeHint() const {
    // Room for a few letters either side of the "…".
    return {fontMetrics().horizontalAdvance(QStringLiteral("MMMM…MMMM")), sizeHint().height()};
}

QSize ElidingLabel::sizeHint() const {
    const QMargins margins = contentsMargins();
    return QSize(fontMetrics().horizontalAdvance(text()), fontMetrics().height()) +
           QSize(margins.left() + margins.right(), margins.top() + margins.bottom());
}

void ElidingLabel::paintEvent(QPaintEvent*) {
    const QString shown = shownText();
    // The tooltip follows the width: only a shortened name needs it.
    const QString tip = shown == text() ? QString() : text();
    if (toolTip() != tip)
        setToolTip(tip);
    QPainter painter(this);
    style()->drawItemText(&painter, contentsRect(), int(alignment()), palette(), isEnabled(), shown,
                          foregroundRole());
}

} // namespace velto
