#include "VeltoMKV/Page.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QScrollArea>
#include <QVBoxLayout>

#include "VeltoMKV/ElidingLabel.h"
#include "VeltoMKV/Look.h"

namespace velto {

namespace {
constexpr int iconSize = 40;
}

Page::Page(const QIcon& icon, QWidget* parent)
    : QWidget(parent) {
    auto* page = new QVBoxLayout(this);
    page->setContentsMargins(0, 0, 0, 0);
    page->setSpacing(Look::rowGap);
    // The content scrolls rather than pushing the buttons out of the window.
    const Look::ScrollingColumn column = Look::scrollingColumn(this);
    page->addWidget(column.area, 1);
    m_column = column.layout;

    m_header = new QHBoxLayout();
    m_header->setSpacing(Look::rowGap);
    m_icon = Look::iconLabel(icon, iconSize, this);
    m_header->addWidget(m_icon, 0, Qt::AlignTop);
    auto* naming = new QVBoxLayout();
    naming->setSpacing(2);
    // A long file name shortens in its middle; it never pushes the header's action away.
    m_title = new ElidingLabel(this);
    Look::makeTitle(m_title);
    m_title->setMinimumHeight(m_title->sizeHint().height());
    m_subtitle = Look::secondary(QString(), this);
    m_subtitle->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_subtitle->hide();
    naming->addStretch(1);
    naming->addWidget(m_title);
    naming->addWidget(m_subtitle);
    naming->addStretch(1);
    m_header->addLayout(naming, 1);
    m_column->addLayout(m_header);
    m_column->addSpacing(Look::groupGap - Look::rowGap);

    m_footer = new QHBoxLayout();
    m_footer->setSpacing(Look::rowGap);
    m_footer->addStretch(1);
    page->addLayout(m_footer);
}

void Page::setIcon(const QIcon& icon) {
    m_icon->setPixmap(icon.pixmap(QSize(iconSize, iconSize), m_icon->devicePixelRatioF()));
}

void Page::setSubtitle(const QString& text) {
    m_subtitle->setText(text);
    m_subtitle->setVisible(!text.isEmpty());
}

void Page::setHeaderAction(QWidget* action) {
    m_header->addWidget(action, 0, Qt::AlignTop);
}

} // namespace velto
