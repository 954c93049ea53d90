#include "VeltoMKV/EngineLine.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>

#include "VeltoKit/providers/Preferences.h"
#include "VeltoMKV/Look.h"
#include "VeltoMKV/SettingsPresenter.h"

namespace velto {

EngineLine::EngineLine(Preferences& preferences, SettingsPresenter& settings, QWidget* parent)
    : QWidget(parent)
    , m_preferences(preferences) {
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(Look::rowGap / 2 + 2);
    m_icon = Look::iconLabel(Look::warningIcon(), 20, this);
    row->addWidget(m_icon);
    m_text = Look::paragraph(QString(), this);
    row->addWidget(m_text, 1);
    m_choose = Look::button(QStringLiteral("Elegir el motor de traducción"), this);
    m_choose->setAutoDefault(false);
    connect(m_choose, &QPushButton::clicked, &settings, &SettingsPresenter::present);
    row->addWidget(m_choose);
    connect(&m_preferences, &Preferences::engineChanged, this, &EngineLine::refresh);
    refresh();
}

void EngineLine::refresh() {
    const EngineConfiguration engine = m_preferences.engineConfiguration();
    const std::optional<QString> missing = engine.missingRequirement();
    m_icon->setVisible(missing.has_value());
    m_text->setText(missing.value_or(engine.summary()));
    m_ready = !missing;
    emit refreshed();
}

} // namespace velto
