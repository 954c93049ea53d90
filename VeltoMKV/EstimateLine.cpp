#include "VeltoMKV/EstimateLine.h"

#include <QLabel>
#include <QVBoxLayout>

#include "VeltoKit/job/Money.h"
#include "VeltoKit/providers/Preferences.h"
#include "VeltoMKV/Look.h"
#include "VeltoMKV/state/AppState.h"
#include "VeltoMKV/state/CostPreview.h"

namespace velto {

EstimateLine::EstimateLine(AppState& state, Preferences& preferences, QWidget* parent)
    : QWidget(parent)
    , m_state(state)
    , m_preferences(preferences)
    , m_preview(new CostPreview(this)) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    m_text = Look::secondary(QString(), this);
    m_text->setWordWrap(true);
    layout->addWidget(m_text);
    connect(m_preview, &CostPreview::changed, this, &EstimateLine::show);
    for (auto signal : {&AppState::phaseChanged, &AppState::selectedTrackChanged})
        connect(&m_state, signal, this, &EstimateLine::refresh);
    for (auto signal : {&Preferences::jobOptionsChanged, &Preferences::engineChanged})
        connect(&m_preferences, signal, this, &EstimateLine::refresh);
    refresh();
}

void EstimateLine::refresh() {
    if (m_state.phase().kind() != Phase::Kind::ready || !m_state.sourceURL()) {
        m_preview->clear();
        return;
    }
    m_preview->update(m_state.tools(), *m_state.sourceURL(),
                      m_preferences.makeJobOptions({}, m_state.selectedTrack(), true));
}

void EstimateLine::show() {
    const std::optional<CostEstimate>& estimate = m_preview->estimate();
    QString text;
    if (m_preview->isReading()) {
        text = QStringLiteral("Calculando cuánto va a llevar…");
    } else if (estimate) {
        text = estimate->summary();
        if (!estimate->price && estimate->requests > 0)
            text += QStringLiteral(" (cargalo en Ajustes)");
        const std::optional<double> cap = m_preferences.maxCost();
        if (cap && estimate->costLow().value_or(0) > *cap)
            text += QStringLiteral(" · más que tu tope de ") + Money::usd(*cap);
    }
    m_text->setText(text);
    m_text->setVisible(!text.isEmpty());
}

} // namespace velto
