#include "VeltoMKV/ModelField.h"

#include <QComboBox>
#include <QCompleter>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include "VeltoKit/providers/Preferences.h"
#include "VeltoMKV/Look.h"
#include "VeltoMKV/Spinner.h"
#include "VeltoMKV/WheelGuard.h"
#include "VeltoMKV/state/EngineQueries.h"

namespace velto {

ModelField::ModelField(Preferences& preferences, EngineQueries& queries, QWidget* parent)
    : QWidget(parent)
    , m_preferences(preferences)
    , m_queries(queries) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(Look::rowGap / 2);
    layout->addWidget(Look::heading(QStringLiteral("Modelo"), this));
    auto* row = new QHBoxLayout;
    m_field = new QLineEdit(this);
    m_field->setAccessibleName(QStringLiteral("Modelo"));
    m_search = new QPushButton(QStringLiteral("Buscar"), this);
    m_spinner = new Spinner(this);
    m_spinner->setFixedSize(m_search->sizeHint().height() * 2 / 3,
                            m_search->sizeHint().height() * 2 / 3);
    m_spinner->hide();
    row->addWidget(m_field, 1);
    row->addWidget(m_spinner);
    row->addWidget(m_search);
    layout->addLayout(row);
    m_found = new QComboBox(this);
    guardWheel(m_found);
    m_found->setAccessibleName(QStringLiteral("Modelos disponibles"));
    m_found->hide();
    layout->addWidget(m_found);
    m_status = Look::paragraph(QString(), this);
    m_status->hide();
    layout->addWidget(m_status);
    m_explanation = Look::secondary(QString(), this);
    layout->addWidget(m_explanation);

    connect(m_field, &QLineEdit::textEdited, this, [this](const QString& model) {
        if (m_provider)
            m_preferences.setModel(model.trimmed(), *m_provider);
    });
    connect(m_search, &QPushButton::clicked, this, &ModelField::search);
    connect(m_found, &QComboBox::activated, this, [this](int index) {
        m_field->setText(m_found->itemText(index));
        if (m_provider)
            m_preferences.setModel(m_found->itemText(index), *m_provider);
    });
    connect(&m_queries, &EngineQueries::listingChanged, this, [this](bool listing) {
        // A disabled button hands the focus to whatever comes next; keep it beside the button.
        if (listing && m_search->hasFocus())
            m_field->setFocus();
        m_search->setEnabled(!listing);
        m_spinner->setVisible(listing);
    });
    connect(&m_queries, &EngineQueries::modelsListed, this, &ModelField::listed);
    connect(&m_queries, &EngineQueries::listingFailed, this,
            [this](const QString& message) { setStatus(message, true); });
}

void ModelField::show(const Provider& provider) {
    m_provider = provider;
    m_field->setText(m_preferences.model(provider));
    m_field->setCompleter(nullptr);
    m_found->clear();
    m_found->hide();
    m_status->hide();
    // A local server has no key to speak of: it lists what it has installed.
    m_explanation->setText(QStringLiteral("«Buscar» le pregunta a ") + provider.name +
                           (provider.needsKey
                                ? QStringLiteral(" qué modelos podés usar con tu clave.")
                                : QStringLiteral(" qué modelos tiene instalados.")));
    updateGeometry();
}

void ModelField::search() {
    if (!m_provider)
        return;
    m_status->hide();
    m_queries.listModels(*m_provider,
                         m_preferences.engineConfigurationOrTrouble(*m_provider).apiKey,
                         m_preferences.baseURL(*m_provider));
}

void ModelField::listed(const QStringList& models) {
    if (models.isEmpty()) {
        m_found->hide();
        setStatus(QStringLiteral("El servicio no devolvió ningún modelo."), false);
        return;
    }
    const QSignalBlocker blocker(m_found);
    m_found->clear();
    m_found->addItems(models);
    m_found->setCurrentIndex(int(models.indexOf(m_field->text())));
    m_found->setPlaceholderText(QStringLiteral("Elegí un modelo"));
    m_found->show();
    m_field->setCompleter(new QCompleter(models, m_field));
    setStatus(QString::number(models.size()) + QStringLiteral(" modelos disponibles."), false);
}

void ModelField::setStatus(const QString& text, bool failed) {
    m_status->setText(text);
    m_status->setForegroundRole(failed ? QPalette::WindowText : QPalette::PlaceholderText);
    m_status->show();
    // Wrapped text changing height inside nested layouts needs the news passed up.
    updateGeometry();
}

} // namespace velto
