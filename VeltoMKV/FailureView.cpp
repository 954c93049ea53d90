#include "VeltoMKV/FailureView.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "VeltoMKV/Look.h"
#include "VeltoMKV/state/AppState.h"

namespace velto {

FailureView::FailureView(AppState& state, QWidget* parent)
    : QWidget(parent)
    , m_state(state) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(Look::rowGap);

    auto* header = new QHBoxLayout();
    header->setSpacing(Look::rowGap);
    header->addWidget(Look::iconLabel(Look::warningIcon(), 40, this), 0, Qt::AlignVCenter);
    auto* title = Look::title(QStringLiteral("No pude completar el trabajo"), this);
    header->addWidget(title, 1);
    layout->addLayout(header);
    layout->addSpacing(Look::groupGap - Look::rowGap);

    m_message = Look::paragraph(QString(), this);
    m_message->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    layout->addWidget(m_message);
    layout->addStretch(1);

    auto* footer = new QHBoxLayout();
    footer->setSpacing(Look::rowGap);
    footer->addStretch(1);
    m_startOver = Look::button(QStringLiteral("Empezar de nuevo"), this);
    connect(m_startOver, &QPushButton::clicked, &m_state, &AppState::reset);
    footer->addWidget(m_startOver);
    m_retry = Look::primaryButton(QStringLiteral("Reintentar"), this);
    connect(m_retry, &QPushButton::clicked, this, &FailureView::retryRequested);
    footer->addWidget(m_retry);
    layout->addLayout(footer);
    setTabOrder(m_startOver, m_retry);

    connect(&m_state, &AppState::phaseChanged, this,
            [this] { m_message->setText(m_state.phase().message()); });
}

} // namespace velto
