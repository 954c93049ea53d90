#include "VeltoMKV/EngineLine.h"

#include <QBoxLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QResizeEvent>

#include "VeltoKit/providers/Preferences.h"
#include "VeltoMKV/Look.h"
#include "VeltoMKV/SettingsPresenter.h"

namespace velto {

EngineLine::EngineLine(Preferences& preferences, SettingsPresenter& settings, QWidget* parent)
    : QWidget(parent)
    , m_preferences(preferences) {
    // Text and button side by side while there is room, the button under the text when not.
    m_layout = new QBoxLayout(QBoxLayout::LeftToRight, this);
    m_layout->setContentsMargins(0, 0, 0, 0);
    m_layout->setSpacing(Look::rowGap);
    auto* row = new QHBoxLayout();
    row->setSpacing(Look::rowGap / 2 + 2);
    m_icon = Look::iconLabel(Look::warningIcon(), 20, this);
    row->addWidget(m_icon);
    m_text = Look::paragraph(QString(), this);
    row->addWidget(m_text, 1);
    m_layout->addLayout(row, 1);
    m_choose = Look::button(QStringLiteral("Elegir el motor de traducción"), this);
    m_choose->setAutoDefault(false);
    connect(m_choose, &QPushButton::clicked, &settings, &SettingsPresenter::present);
    m_layout->addWidget(m_choose, 0, Qt::AlignRight);
    connect(&m_preferences, &Preferences::engineChanged, this, &EngineLine::refresh);
    refresh();
}

void EngineLine::refresh() {
    const EngineConfiguration engine = m_preferences.engineConfigurationOrTrouble();
    const std::optional<QString> missing = engine.missingRequirement();
    m_icon->setVisible(missing.has_value());
    m_text->setText(missing.value_or(engine.summary()));
    m_ready = !missing;
    emit refreshed();
}

QSize EngineLine::minimumSizeHint() const {
    // Stacked, the line needs only the wider of its text's and its button's minimum.
    QSize size = QWidget::minimumSizeHint();
    const int text = m_icon->width() + Look::rowGap + m_text->minimumSizeHint().width();
    size.setWidth(std::max(text, m_choose->minimumSizeHint().width()));
    return size;
}

void EngineLine::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    // Side by side, the text keeps at least a few words per line.
    const int sideBySide = m_icon->width() + m_choose->minimumSizeHint().width() +
                           m_text->fontMetrics().averageCharWidth() * 24 + 2 * Look::rowGap;
    const auto direction = width() < sideBySide ? QBoxLayout::TopToBottom : QBoxLayout::LeftToRight;
    if (direction == m_layout->direction())
        return;
    m_layout->setDirection(direction);
    updateGeometry();
}

} // namespace velto
