#include "VeltoMKV/EngineChooser.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

#include "VeltoKit/providers/Preferences.h"
#include "VeltoKit/providers/Provider.h"
#include "VeltoMKV/Look.h"

namespace velto {

EngineChooser::EngineChooser(Preferences& preferences, QWidget* parent)
    : QDialog(parent)
    , m_preferences(preferences) {
    setWindowTitle(QStringLiteral("Motor de traducción"));
    setWindowModality(Qt::WindowModal);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(Look::margin, Look::margin, Look::margin, Look::margin);
    layout->setSpacing(Look::rowGap);
    layout->addWidget(Look::heading(QStringLiteral("Motor de traducción"), this));

    m_list = new QListWidget(this);
    const int rowHeight = fontMetrics().height() * 2;
    for (const Provider& provider : Provider::all()) {
        auto* item = new QListWidgetItem(provider.name, m_list);
        item->setData(Qt::UserRole, provider.id);
        item->setSizeHint(QSize(0, rowHeight));
    }
    m_list->setFixedHeight(static_cast<int>(Provider::all().size()) * rowHeight +
                           2 * m_list->frameWidth());
    m_list->setCurrentRow(static_cast<int>(Provider::all().indexOf(m_preferences.provider())));
    layout->addWidget(m_list);
    m_note = Look::secondary(QString(), this);
    layout->addWidget(m_note);
    m_readiness = Look::paragraph(QString(), this);
    layout->addWidget(m_readiness);

    auto* buttons = new QDialogButtonBox(this);
    buttons->addButton(QStringLiteral("Listo"), QDialogButtonBox::AcceptRole);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    layout->addWidget(buttons);

    connect(m_list, &QListWidget::currentRowChanged, this, [this](int row) {
        if (row >= 0 && row < Provider::all().size())
            m_preferences.setProviderIDStorage(Provider::all().at(row).id);
        showChoice();
    });
    showChoice();
    resize(560, sizeHint().height());
}

void EngineChooser::showChoice() {
    const Provider& provider = m_preferences.provider();
    m_note->setText(provider.note);
    const std::optional<QString> missing = m_preferences.engineConfiguration().missingRequirement();
    m_readiness->setText(missing.value_or(QStringLiteral("Listo para traducir")));
}

} // namespace velto
