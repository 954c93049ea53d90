#include "VeltoMKV/DropZone.h"

#include <QDragEnterEvent>
#include <QDropEvent>
#include <QLabel>
#include <QMimeData>
#include <QPainter>
#include <QPainterPath>
#include <QPushButton>
#include <QScrollArea>
#include <QUrl>
#include <QVBoxLayout>

#include "VeltoMKV/AppIcon.h"
#include "VeltoMKV/Look.h"

namespace velto {

// The dashed target itself; the page around it scrolls when the window is too small for it.
class DropTarget : public QWidget {
public:
    using QWidget::QWidget;

    void setHovering(bool hovering) {
        if (hovering == m_hovering)
            return;
        m_hovering = hovering;
        update();
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const QRectF frame = QRectF(rect()).adjusted(1.5, 1.5, -1.5, -1.5);
        QPen pen(m_hovering ? palette().highlight().color() : palette().mid().color(), 2);
        if (!m_hovering)
            pen.setDashPattern({4, 3});
        painter.setPen(pen);
        QColor tint = palette().highlight().color();
        tint.setAlpha(m_hovering ? 28 : 0);
        painter.setBrush(tint);
        painter.drawRoundedRect(frame, 12, 12);
    }

private:
    bool m_hovering = false;
};

DropZone::DropZone(QWidget* parent)
    : QWidget(parent) {
    setAcceptDrops(true);
    auto* page = new QVBoxLayout(this);
    page->setContentsMargins(0, 0, 0, 0);
    const Look::ScrollingColumn column = Look::scrollingColumn(this);
    page->addWidget(column.area);
    m_column = column.layout;
    auto* target = new DropTarget(this);
    m_target = target;
    m_column->addWidget(target, 1);

    auto* layout = new QVBoxLayout(target);
    layout->setContentsMargins(Look::margin, Look::margin, Look::margin, Look::margin);
    layout->setSpacing(Look::rowGap);
    layout->addStretch(3);

    auto* icon = Look::iconLabel(appIcon(), 88, target);
    layout->addWidget(icon, 0, Qt::AlignHCenter);
    layout->addSpacing(Look::rowGap);

    auto* title = Look::title(QStringLiteral("Arrastrá un video acá"), target);
    title->setTextInteractionFlags(Qt::NoTextInteraction);
    title->setWordWrap(true);
    title->setAlignment(Qt::AlignHCenter);
    layout->addWidget(title);

    auto* explanation =
        Look::secondary(QStringLiteral("VeltoMKV busca los subtítulos, los traduce al español\ny "
                                       "te devuelve una copia con la pista nueva."),
                        target);
    explanation->setAlignment(Qt::AlignHCenter);
    layout->addWidget(explanation);
    layout->addSpacing(Look::rowGap);

    m_choose = Look::primaryButton(QStringLiteral("Elegir archivo…"), target);
    connect(m_choose, &QPushButton::clicked, this, &DropZone::chooseRequested);
    layout->addWidget(m_choose, 0, Qt::AlignHCenter);

    // Always laid out, so a refusal appearing does not move the rest.
    m_refusal = Look::secondary(QString(), target);
    m_refusal->setAlignment(Qt::AlignHCenter);
    m_refusal->setMinimumHeight(m_refusal->fontMetrics().height());
    layout->addWidget(m_refusal);
    layout->addStretch(4);
}

void DropZone::addBelow(QWidget* widget) {
    m_column->addWidget(widget);
}

QStringList DropZone::droppedFiles(const QMimeData* data) {
    if (!data || !data->hasUrls())
        return {};
    QStringList files;
    for (const QUrl& url : data->urls()) {
        if (!url.isLocalFile())
            return {};
        files.append(url.toLocalFile());
    }
    return files;
}

QString DropZone::refusal(const QMimeData* data) {
    if (!droppedFiles(data).isEmpty())
        return QString();
    return QStringLiteral("Eso no es un archivo: soltá un video.");
}

void DropZone::showRefusal(const QString& text) {
    m_refusal->setText(text);
}

QString DropZone::refusalText() const {
    return m_refusal->text();
}

void DropZone::dragEnterEvent(QDragEnterEvent* event) {
    const QString why = refusal(event->mimeData());
    m_refusal->setText(why);
    if (!why.isEmpty()) {
        event->ignore();
        return;
    }
    event->acceptProposedAction();
    setHovering(true);
}

void DropZone::dragLeaveEvent(QDragLeaveEvent*) {
    setHovering(false);
}

void DropZone::dropEvent(QDropEvent* event) {
    setHovering(false);
    const QStringList files = droppedFiles(event->mimeData());
    if (files.isEmpty()) {
        m_refusal->setText(refusal(event->mimeData()));
        event->ignore();
        return;
    }
    m_refusal->clear();
    event->acceptProposedAction();
    emit filesDropped(files);
}

void DropZone::setHovering(bool hovering) {
    m_target->setHovering(hovering);
}

} // namespace velto
