#include "VeltoMKV/AddressField.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include "VeltoKit/providers/Preferences.h"
#include "VeltoMKV/Look.h"
#include "VeltoMKV/WheelGuard.h"

namespace velto {

AddressField::AddressField(Preferences& preferences, QWidget* parent)
    : QWidget(parent)
    , m_preferences(preferences) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(Look::rowGap / 2);
    layout->addWidget(Look::heading(QStringLiteral("Dirección"), this));
    auto* row = new QHBoxLayout;
    m_presets = new QComboBox(this);
    guardWheel(m_presets);
    m_presets->setAccessibleName(QStringLiteral("Servidor"));
    m_field = new QLineEdit(this);
    m_field->setAccessibleName(QStringLiteral("Dirección"));
    row->addWidget(m_presets);
    row->addWidget(m_field, 1);
    layout->addLayout(row);
    m_hint = Look::secondary(QString(), this);
    m_hint->setTextInteractionFlags(Qt::TextSelectableByMouse);
    layout->addWidget(m_hint);

    connect(m_presets, &QComboBox::activated, this, &AddressField::choosePreset);
    connect(m_field, &QLineEdit::textEdited, this, [this](const QString& address) {
        if (m_provider)
            m_preferences.setBaseURL(address, *m_provider);
        markPreset();
    });
}

void AddressField::show(const Provider& provider) {
    m_provider = provider;
    m_ownAddress = false;
    const QSignalBlocker blocker(m_presets);
    m_presets->clear();
    for (const Provider::Preset& preset : provider.presets())
        m_presets->addItem(preset.name, preset.baseURL);
    m_presets->addItem(QStringLiteral("Personalizado"));
    m_field->setText(m_preferences.baseURL(provider));
    m_field->setPlaceholderText(provider.defaultBaseURL);
    markPreset();
}

void AddressField::choosePreset(int index) {
    const QString address = m_presets->itemData(index).toString();
    // "Personalizado" stays chosen even while the field still shows a preset's address.
    m_ownAddress = address.isEmpty();
    if (!m_provider || m_ownAddress) {
        m_field->setFocus();
        m_field->selectAll();
        markPreset();
        return;
    }
    m_field->setText(address);
    m_preferences.setBaseURL(address, *m_provider);
    markPreset();
}

void AddressField::markPreset() {
    if (!m_provider)
        return;
    const QList<Provider::Preset> presets = m_provider->presets();
    qsizetype chosen = presets.size();
    for (qsizetype index = 0; index < presets.size() && !m_ownAddress; ++index) {
        if (presets[index].baseURL == m_field->text().trimmed())
            chosen = index;
    }
    const QSignalBlocker blocker(m_presets);
    m_presets->setCurrentIndex(int(chosen));
    const QString hint = chosen < presets.size() ? presets[chosen].hint : QString();
    m_hint->setText(hint);
    m_hint->setVisible(!hint.isEmpty());
    // Wrapped text changing height inside nested layouts needs the news passed up.
    updateGeometry();
}

} // namespace velto
