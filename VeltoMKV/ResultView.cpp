#include "VeltoMKV/ResultView.h"

#include <memory>

#include <QDir>
#include <QFileInfo>
#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>

#include "VeltoKit/job/UsageSummary.h"
#include "VeltoKit/platform/PlatformText.h"
#include "VeltoMKV/Look.h"
#include "VeltoMKV/Page.h"
#include "VeltoMKV/state/AppState.h"
#include "VeltoMKV/state/Format.h"

namespace velto {

ResultView::ResultView(AppState& state, QWidget* parent)
    : Page(QIcon(), parent)
    , m_state(state) {
    setIcon(Look::doneMark(palette()));
    QVBoxLayout* layout = column();

    layout->addWidget(Look::paragraph(
        QStringLiteral("Timestamps verificados uno a uno contra el original."), this));
    m_sidecar = Look::paragraph(QString(), this);
    layout->addWidget(m_sidecar);
    m_untranslated = Look::heading(QString(), this);
    layout->addWidget(m_untranslated);
    m_counts = Look::secondary(QString(), this);
    layout->addWidget(m_counts);
    m_usage = Look::secondary(QString(), this);
    layout->addWidget(m_usage);
    m_removed = Look::paragraph(QString(), this);
    layout->addWidget(m_removed);

    // A quiet panel: a count in its header, one selectable line per warning.
    m_warnings = new QFrame(this);
    m_warnings->setObjectName(QStringLiteral("warnings"));
    m_warnings->setStyleSheet(QStringLiteral(
        "QFrame#warnings { background-color: palette(alternate-base); border: 1px solid "
        "palette(mid); border-radius: 8px; }"));
    auto* panel = new QVBoxLayout(m_warnings);
    panel->setContentsMargins(Look::rowGap, Look::rowGap, Look::rowGap, Look::rowGap);
    panel->setSpacing(Look::rowGap / 2);
    auto* panelHeader = new QHBoxLayout();
    panelHeader->addWidget(Look::iconLabel(Look::warningIcon(), 18, m_warnings));
    m_warningsHeader = Look::heading(QString(), m_warnings);
    panelHeader->addWidget(m_warningsHeader, 1);
    panel->addLayout(panelHeader);
    m_warningLines = new QVBoxLayout();
    m_warningLines->setContentsMargins(0, 0, 0, 0);
    m_warningLines->setSpacing(Look::rowGap / 2);
    m_warningLines->addStretch(1);
    panel->addLayout(m_warningLines);
    layout->addWidget(m_warnings);
    layout->addStretch(1);

    m_reveal = Look::button(PlatformText::revealInFileBrowser(), this);
    connect(m_reveal, &QPushButton::clicked, this, [this] {
        if (m_state.result())
            emit revealRequested(m_state.result()->written());
    });
    footer()->addWidget(m_reveal);
    m_revealSidecar = Look::button(QStringLiteral("Mostrar el subtítulo"), this);
    connect(m_revealSidecar, &QPushButton::clicked, this, [this] {
        if (m_state.result() && m_state.result()->sidecarURL)
            emit revealRequested(*m_state.result()->sidecarURL);
    });
    footer()->addWidget(m_revealSidecar);
    m_another = Look::primaryButton(QStringLiteral("Traducir otro"), this);
    connect(m_another, &QPushButton::clicked, this, &ResultView::anotherRequested);
    footer()->addWidget(m_another);
    setTabOrder(m_reveal, m_revealSidecar);
    setTabOrder(m_revealSidecar, m_another);

    connect(&m_state, &AppState::resultChanged, this, &ResultView::showResult);
    connect(&m_state, &AppState::warningsChanged, this, &ResultView::showResult);
    showResult();
}

void ResultView::showSidecar() {
    const std::optional<JobResult>& result = m_state.result();
    const bool both = result && !result->outputURL.isEmpty() && result->sidecarURL;
    const QFileInfo sidecar(both ? *result->sidecarURL : QString());
    const bool elsewhere =
        both && sidecar.absolutePath() != QFileInfo(result->outputURL).absolutePath();
    m_sidecar->setVisible(both);
    m_sidecar->setText(both ? QStringLiteral("Subtítulo aparte: ") +
                                  (elsewhere ? QDir::toNativeSeparators(sidecar.absoluteFilePath())
                                             : sidecar.fileName())
                            : QString());
    m_revealSidecar->setVisible(elsewhere);
}

void ResultView::setStripped(bool stripped) {
    m_stripped = stripped;
    showResult();
}

void ResultView::showResult() {
    const std::optional<JobResult>& result = m_state.result();
    titleLabel()->setText(result ? QFileInfo(result->written()).fileName() : QString());
    setSubtitle(result ? QDir::toNativeSeparators(QFileInfo(result->written()).absolutePath())
                       : QString());
    showSidecar();
    // A track partly in the source language is said as plainly as the file it went into.
    const bool partial = result && result->failedLines > 0;
    setIcon(partial ? Look::warningIcon() : Look::doneMark(palette()));
    m_counts->setText(result ? Format::count(result->translatedCount) +
                                   QStringLiteral(" subtítulos traducidos en ") +
                                   Format::elapsed(result->elapsed)
                             : QString());
    m_usage->setText(result ? UsageSummary::of(*result) : QString());
    m_usage->setVisible(!m_usage->text().isEmpty());
    m_untranslated->setVisible(partial);
    m_untranslated->setText(
        partial ? (result->failedLines == 1
                       ? QStringLiteral("1 subtítulo quedó sin traducir, en el idioma original.")
                       : Format::count(result->failedLines) +
                             QStringLiteral(
                                 " subtítulos quedaron sin traducir, en el idioma original."))
                : QString());
    m_removed->setVisible(result && m_stripped);
    m_removed->setText(result ? QStringLiteral("Descripciones quitadas: ") +
                                    Format::count(result->removedDescriptions)
                              : QString());

    while (m_warningLines->count() > 1) {
        const std::unique_ptr<QLayoutItem> item(m_warningLines->takeAt(0));
        if (QWidget* line = item->widget()) {
            line->hide();
            line->deleteLater();
        }
    }
    const QStringList& warnings = m_state.warnings();
    m_warnings->setVisible(!warnings.isEmpty());
    m_warningsHeader->setText(warnings.size() == 1
                                  ? QStringLiteral("1 aviso")
                                  : QString::number(warnings.size()) + QStringLiteral(" avisos"));
    for (qsizetype i = 0; i < warnings.size(); ++i) {
        QLabel* line = Look::paragraph(QStringLiteral("• ") + warnings.at(i), m_warnings);
        m_warningLines->insertWidget(static_cast<int>(i), line);
    }
}

} // namespace velto
