#include "VeltoMKV/CostSettings.h"

#include <QDoubleSpinBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include "VeltoKit/job/Money.h"
#include "VeltoKit/providers/ModelPrices.h"
#include "VeltoKit/providers/Preferences.h"
#include "VeltoMKV/Look.h"
#include "VeltoMKV/WheelGuard.h"

namespace velto {
namespace {

// The model a job of this provider runs, as the user knows it.
QString shownModel(const Preferences& preferences) {
    const Provider& provider = preferences.provider();
    return ModelPrices::billedModel(provider, preferences.model(provider));
}

} // namespace

CostSettings::CostSettings(Preferences& preferences, QWidget* parent)
    : QWidget(parent)
    , m_preferences(preferences) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(Look::rowGap / 2);
    m_heading = Look::heading(QString(), this);
    layout->addWidget(m_heading);

    m_prices = new QWidget(this);
    auto* row = new QHBoxLayout(m_prices);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(Look::rowGap / 2);
    m_input = dollars(QStringLiteral("Entrada"));
    m_output = dollars(QStringLiteral("Salida"));
    for (QDoubleSpinBox* price : {m_input, m_output}) {
        row->addWidget(new QLabel(price->accessibleName() + u':', m_prices));
        row->addWidget(price);
        connect(price, &QDoubleSpinBox::valueChanged, this, &CostSettings::storePrice);
    }
    m_reset = Look::button(QStringLiteral("Usar el conocido"), m_prices);
    m_reset->setAutoDefault(false);
    connect(m_reset, &QPushButton::clicked, this, [this] {
        m_preferences.setUserPrice(m_preferences.provider(), shownModel(m_preferences),
                                   std::nullopt);
    });
    row->addWidget(m_reset);
    row->addStretch(1);
    layout->addWidget(m_prices);
    m_note = Look::secondary(QString(), this);
    m_note->setWordWrap(true);
    layout->addWidget(m_note);

    layout->addSpacing(Look::rowGap / 2);
    layout->addWidget(Look::heading(QStringLiteral("Tope de gasto por video"), this));
    m_cap = dollars(QStringLiteral("Tope de gasto por video"));
    m_cap->setSpecialValueText(QStringLiteral("Sin tope"));
    layout->addWidget(m_cap, 0, Qt::AlignLeft);
    connect(m_cap, &QDoubleSpinBox::valueChanged, this, [this](double value) {
        m_preferences.setMaxCost(value > 0 ? std::optional(value) : std::nullopt);
    });
    layout->addWidget(Look::secondary(
        QStringLiteral("Antes de cada pedido se suma lo peor que puede costar; si no entra en lo "
                       "que queda, el trabajo para y lo ya traducido queda en la caché."),
        this));

    for (auto signal : {&Preferences::engineChanged, &Preferences::jobOptionsChanged})
        connect(&m_preferences, signal, this, &CostSettings::refresh);
    refresh();
}

QDoubleSpinBox* CostSettings::dollars(const QString& name) {
    auto* box = new QDoubleSpinBox(this);
    box->setAccessibleName(name);
    box->setPrefix(QStringLiteral("US$ "));
    box->setDecimals(2);
    box->setRange(0, 1000);
    box->setSingleStep(0.5);
    guardWheel(box);
    return box;
}

void CostSettings::refresh() {
    const Provider& provider = m_preferences.provider();
    const QString model = shownModel(m_preferences);
    const ModelPrices::Lookup price = m_preferences.price();
    const bool ownSession =
        provider.flavor == Provider::Flavor::echo || provider.flavor == Provider::Flavor::claudeCLI;
    const bool free = price.source == ModelPrices::Source::free;
    m_heading->setText(ownSession || model.isEmpty()
                           ? QStringLiteral("Costo")
                           : QStringLiteral("Precio de «") + model +
                                 QStringLiteral("» por millón de tokens"));
    m_prices->setVisible(!ownSession && !model.isEmpty());
    const std::optional<TokenPrice> known = ModelPrices::known(provider, model);
    m_reset->setVisible(price.source == ModelPrices::Source::user && known);
    for (auto [box, value] :
         {std::pair{m_input, price.price ? price.price->inputPerMillion : 0.0},
          std::pair{m_output, price.price ? price.price->outputPerMillion : 0.0}}) {
        const QSignalBlocker quiet(box);
        box->setValue(value);
    }
    QString note;
    if (ownSession)
        note = QStringLiteral("Sin costo: este motor no cobra por pedido.");
    else if (free)
        note = QStringLiteral("Sin costo mientras corra en esta máquina. Si es un intermediario de "
                              "un servicio pago, cargá lo que cobra.");
    else if (model.isEmpty())
        note = QStringLiteral("Elegí un modelo para ver o cargar su precio.");
    else if (price.source == ModelPrices::Source::table)
        note = QStringLiteral("Precio publicado (revisado en ") + ModelPrices::asOf() +
               QStringLiteral("). Si tu servicio cobra otro, cambialo.");
    else if (price.source == ModelPrices::Source::unknown)
        note = QStringLiteral("No conozco el precio de este modelo: cargalo para ver cuánto va a "
                              "costar cada video y poder ponerle un tope.");
    else if (known)
        note = QStringLiteral("Tu precio. El publicado es ") + Money::usd(known->inputPerMillion) +
               QStringLiteral(" de entrada y ") + Money::usd(known->outputPerMillion) +
               QStringLiteral(" de salida.");
    m_note->setText(note);
    const QSignalBlocker quiet(m_cap);
    m_cap->setValue(m_preferences.maxCost().value_or(0));
}

void CostSettings::storePrice() {
    m_preferences.setUserPrice(m_preferences.provider(), shownModel(m_preferences),
                               TokenPrice{m_input->value(), m_output->value()});
}

} // namespace velto
