#include "VeltoMKV/ProgressView.h"

#include <cmath>

#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

#include "VeltoMKV/AppIcon.h"
#include "VeltoMKV/LiveLines.h"
#include "VeltoMKV/Look.h"
#include "VeltoMKV/state/AppState.h"
#include "VeltoMKV/state/Format.h"

namespace velto {

namespace {
constexpr int barSteps = 1000;
}

ProgressView::ProgressView(AppState& state, QWidget* parent)
    : Page(appIcon(), parent)
    , m_state(state) {
    QVBoxLayout* layout = column();
    layout->addStretch(2);

    // The percentage sits on the stage's line, so the bar spans the column whether it is known.
    auto* stageRow = new QHBoxLayout();
    m_stage = Look::heading(QString(), this);
    stageRow->addWidget(m_stage, 1);
    m_percent = Look::secondary(QString(), this);
    m_percent->setWordWrap(false);
    m_percent->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    stageRow->addWidget(m_percent);
    layout->addLayout(stageRow);
    m_detail = Look::secondary(QString(), this);
    m_detail->setMinimumHeight(m_detail->fontMetrics().height());
    layout->addWidget(m_detail);

    m_bar = new QProgressBar(this);
    m_bar->setTextVisible(false);
    layout->addWidget(m_bar);

    m_elapsed = Look::secondary(QString(), this);
    layout->addWidget(m_elapsed);

    // Hidden until the first lines come, but holding its room, so the bar never moves.
    m_linesPanel = new QWidget(this);
    auto* linesLayout = new QVBoxLayout(m_linesPanel);
    linesLayout->setContentsMargins(0, Look::groupGap - Look::rowGap, 0, 0);
    linesLayout->setSpacing(Look::rowGap / 2);
    linesLayout->addWidget(Look::heading(QStringLiteral("Últimas líneas"), m_linesPanel));
    m_lines = new LiveLines(AppState::liveLineCount, m_linesPanel);
    linesLayout->addWidget(m_lines);
    QSizePolicy keepRoom = m_linesPanel->sizePolicy();
    keepRoom.setRetainSizeWhenHidden(true);
    m_linesPanel->setSizePolicy(keepRoom);
    m_linesPanel->hide();
    layout->addWidget(m_linesPanel);
    layout->addStretch(3);

    m_cancel = Look::button(QStringLiteral("Cancelar"), this);
    connect(m_cancel, &QPushButton::clicked, &m_state, &AppState::cancel);
    footer()->addWidget(m_cancel);

    m_ticker.setInterval(1000);
    connect(&m_ticker, &QTimer::timeout, this, &ProgressView::tick);
    connect(&m_state, &AppState::progressChanged, this, &ProgressView::showProgress);
    connect(&m_state, &AppState::latestLinesChanged, this, &ProgressView::showLines);
    connect(&m_state, &AppState::sourceURLChanged, this, [this] {
        titleLabel()->setText(m_state.sourceURL() ? QFileInfo(*m_state.sourceURL()).fileName()
                                                  : QString());
    });
    showProgress();
    showLines();
}

void ProgressView::startClock() {
    m_ticker.start();
    tick();
    showProgress();
}

void ProgressView::stopClock() {
    m_ticker.stop();
}

void ProgressView::showProgress() {
    const JobUpdate& progress = m_state.progress();
    m_stage->setText(label(progress));
    showDetail();
    if (const std::optional<double> fraction = progress.progress) {
        m_bar->setRange(0, barSteps);
        m_bar->setValue(static_cast<int>(std::lround(qBound(0.0, *fraction, 1.0) * barSteps)));
        m_percent->setText(Format::percent(*fraction));
    } else {
        // A zero range is Qt's indeterminate bar.
        m_bar->setRange(0, 0);
        m_percent->clear();
    }
}

void ProgressView::showDetail() {
    const JobUpdate& progress = m_state.progress();
    if (!progress.translation) {
        m_detail->setText(progress.detail);
        return;
    }
    QString detail = Format::counts(*progress.translation);
    if (const std::optional<double> left = m_state.secondsLeft())
        detail += QStringLiteral(" · ") + Format::timeLeft(*left);
    m_detail->setText(detail);
}

void ProgressView::showLines() {
    m_lines->setLines(m_state.latestLines());
    m_linesPanel->setVisible(!m_state.latestLines().isEmpty());
}

void ProgressView::tick() {
    m_elapsed->setText(Format::elapsed(m_state.elapsed()));
    // The guess moves with the clock too: a stalled engine makes it grow.
    showDetail();
}

} // namespace velto
