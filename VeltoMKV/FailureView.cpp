#include "VeltoMKV/FailureView.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "VeltoMKV/Look.h"
#include "VeltoMKV/state/AppState.h"

namespace velto {

FailureView::FailureView(AppState& state, QWidget* parent)
    : Page(Look::warningIcon(), parent)
    , m_state(state) {
    titleLabel()->setText(QStringLiteral("No pude completar el trabajo"));
    QVBoxLayout* layout = column();

    m_message = Look::paragraph(QString(), this);
    m_message->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    layout->addWidget(m_message);
    layout->addStretch(1);

    m_startOver = Look::button(QStringLiteral("Empezar de nuevo"), this);
    connect(m_startOver, &QPushButton::clicked, &m_state, &AppState::reset);
    footer()->addWidget(m_startOver);
    m_retry = Look::primaryButton(QStringLiteral("Reintentar"), this);
    connect(m_retry, &QPushButton::clicked, this, &FailureView::retryRequested);
    footer()->addWidget(m_retry);
    setTabOrder(m_startOver, m_retry);

    connect(&m_state, &AppState::phaseChanged, this,
            [this] { m_message->setText(m_state.phase().message()); });
}

} // namespace velto
