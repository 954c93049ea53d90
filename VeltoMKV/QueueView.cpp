#include "VeltoMKV/QueueView.h"

#include <QCheckBox>
#include <QDir>
#include <QFileInfo>
#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>

#include "VeltoKit/providers/Preferences.h"
#include "VeltoMKV/AppIcon.h"
#include "VeltoMKV/Confirm.h"
#include "VeltoMKV/ElidingLabel.h"
#include "VeltoMKV/EngineLine.h"
#include "VeltoMKV/Look.h"
#include "VeltoMKV/OptionsPanel.h"
#include "VeltoMKV/QueueRowView.h"
#include "VeltoMKV/state/Format.h"
#include "VeltoMKV/state/QueueState.h"

namespace velto {
namespace {

QString videos(qsizetype count) {
    return count == 1 ? QStringLiteral("1 video")
                      : Format::count(count) + QStringLiteral(" videos");
}

// The folder every video sits in, when they share one.
QString commonFolder(const QList<QueueRow>& rows) {
    QString folder;
    for (const QueueRow& row : rows) {
        const QString mine = QFileInfo(row.source).absolutePath();
        if (!folder.isEmpty() && mine != folder)
            return {};
        folder = mine;
    }
    return QDir(folder).dirName();
}

QFrame* separator(QWidget* parent) {
    auto* line = new QFrame(parent);
    line->setFrameShape(QFrame::HLine);
    line->setForegroundRole(QPalette::Mid);
    return line;
}

} // namespace

QueueView::QueueView(QueueState& queue, Preferences& preferences, SettingsPresenter& settings,
                     QWidget* parent)
    : Page(appIcon(), parent)
    , m_queue(queue)
    , m_preferences(preferences) {
    m_clear = Look::quietButton(QStringLiteral("Vaciar lista"), this);
    setHeaderAction(m_clear);
    connect(m_clear, &QPushButton::clicked, &m_queue, &QueueState::clear);

    // What the run came to, over the list so it is the first thing seen after it.
    m_summary = new QWidget(this);
    auto* summary = new QVBoxLayout(m_summary);
    summary->setContentsMargins(0, 0, 0, Look::groupGap - Look::rowGap);
    summary->setSpacing(Look::rowGap / 2);
    summary->addWidget(Look::heading(QStringLiteral("Terminé la lista"), m_summary));
    m_summaryText = Look::paragraph(QString(), m_summary);
    summary->addWidget(m_summaryText);
    m_warnings = Look::paragraph(QString(), m_summary);
    m_warnings->setForegroundRole(QPalette::PlaceholderText);
    summary->addWidget(m_warnings);
    m_summary->hide();
    column()->addWidget(m_summary);

    m_rows = new QVBoxLayout();
    m_rows->setSpacing(Look::rowGap);
    column()->addLayout(m_rows);
    column()->addSpacing(Look::groupGap - Look::rowGap);

    m_forceRow = new QWidget(this);
    auto* force = new QHBoxLayout(m_forceRow);
    force->setContentsMargins(0, 0, 0, 0);
    force->setSpacing(Look::rowGap / 2 + 2);
    force->addWidget(Look::iconLabel(Look::informationIcon(), 20, m_forceRow), 0, Qt::AlignTop);
    force->addWidget(
        Look::paragraph(QStringLiteral("Algunos videos ya tienen una pista en español."),
                        m_forceRow),
        1);
    m_force = new QCheckBox(QStringLiteral("Traducir igual"), m_forceRow);
    force->addWidget(m_force, 0, Qt::AlignTop);
    column()->addWidget(m_forceRow);
    connect(m_force, &QCheckBox::toggled, &m_queue, &QueueState::setForce);

    // One set of options for the whole list, folded to one line until asked for.
    auto* optionsRow = new QHBoxLayout();
    optionsRow->setSpacing(Look::rowGap);
    m_optionsSummary = new ElidingLabel(this, Qt::ElideRight);
    m_optionsSummary->setForegroundRole(QPalette::PlaceholderText);
    optionsRow->addWidget(m_optionsSummary, 1);
    m_optionsButton = Look::quietButton(QStringLiteral("Cambiar"), this);
    optionsRow->addWidget(m_optionsButton);
    column()->addLayout(optionsRow);
    m_options = new OptionsPanel(preferences, this);
    m_options->hide();
    column()->addWidget(m_options);
    const auto showOptions = [this] {
        m_optionsSummary->setText(QStringLiteral("Opciones: ") + m_options->summary());
        m_optionsButton->setText(m_options->isHidden() ? QStringLiteral("Cambiar")
                                                       : QStringLiteral("Listo"));
    };
    connect(m_options, &OptionsPanel::summaryChanged, this, showOptions);
    connect(m_optionsButton, &QPushButton::clicked, this, [this, showOptions] {
        m_options->setVisible(m_options->isHidden());
        showOptions();
    });
    showOptions();

    m_engine = new EngineLine(preferences, settings, this);
    column()->addWidget(m_engine);
    connect(m_engine, &EngineLine::refreshed, this, &QueueView::showQueue);
    m_failure = Look::paragraph(QString(), this);
    m_failure->hide();
    column()->addWidget(m_failure);
    column()->addStretch(1);

    m_cancel = Look::button(QStringLiteral("Cancelar"), this);
    footer()->addWidget(m_cancel);
    connect(m_cancel, &QPushButton::clicked, &m_queue, &QueueState::cancel);
    m_start = Look::primaryButton(QString(), this);
    m_start->setDefault(true);
    footer()->addWidget(m_start);
    connect(m_start, &QPushButton::clicked, this, &QueueView::start);

    connect(&m_queue, &QueueState::rowsChanged, this, &QueueView::rebuildRows);
    connect(&m_queue, &QueueState::rowChanged, this, &QueueView::showRow);
    connect(&m_queue, &QueueState::runningChanged, this, [this] {
        showQueue();
        // The focus goes to the footer's button, not into the list, where it would follow the
        // rows' pickers as they hide and scroll the list away from the top.
        (m_queue.isRunning() ? m_cancel : m_start)->setFocus();
    });
    connect(&m_queue, &QueueState::failureChanged, this, &QueueView::showQueue);
    connect(&m_queue, &QueueState::finished, this, &QueueView::showSummary);
    connect(&m_queue, &QueueState::forceChanged, this,
            [this] { m_force->setChecked(m_queue.force()); });
    rebuildRows();
}

QueueRowView* QueueView::rowView(qsizetype position) const {
    return position >= 0 && position < m_rowViews.size() ? m_rowViews.at(position) : nullptr;
}

void QueueView::refreshEngine() {
    m_engine->refresh();
}

void QueueView::start() {
    if (!m_start->isEnabled() || m_queue.isRunning())
        return;
    if (m_queue.runnable() == 0) {
        m_queue.clear();
        return;
    }
    QStringList existing;
    for (const QueueRow& row : m_queue.rows()) {
        if (row.state != QueueRow::State::waiting || !row.plan)
            continue;
        for (const QString& file : row.plan->writes()) {
            if (QFileInfo::exists(file))
                existing << file;
        }
    }
    if (!existing.isEmpty() && !Confirm::replaceOutputs(this, existing))
        return;
    m_summary->hide();
    m_queue.start(m_preferences);
}

void QueueView::rebuildRows() {
    // Few rows, rebuilt whole: simpler than keeping widgets in step with moves and removals.
    while (QLayoutItem* item = m_rows->takeAt(0)) {
        if (item->widget())
            item->widget()->deleteLater();
        delete item;
    }
    m_rowViews.clear();
    for (const QueueRow& row : m_queue.rows()) {
        if (!m_rowViews.isEmpty())
            m_rows->addWidget(separator(this));
        auto* view = new QueueRowView(row.id, this);
        m_rowViews.append(view);
        m_rows->addWidget(view);
        connect(view, &QueueRowView::trackChosen, &m_queue, &QueueState::setTrack);
        connect(view, &QueueRowView::removeRequested, &m_queue, &QueueState::remove);
        connect(view, &QueueRowView::revealRequested, this, &QueueView::revealRequested);
        connect(view, &QueueRowView::retryRequested, this,
                [this](quint64 id) { m_queue.retry(id, m_preferences); });
        connect(view, &QueueRowView::moveRequested, this, [this](quint64 id, int step) {
            for (qsizetype at = 0; at < m_queue.rows().size(); ++at) {
                if (m_queue.rows().at(at).id == id) {
                    m_queue.move(id, at + step);
                    return;
                }
            }
        });
        showRow(row.id);
    }
    const QString folder = commonFolder(m_queue.rows());
    const QString count = videos(m_queue.rows().size());
    titleLabel()->setText(folder.isEmpty() ? count : folder + QStringLiteral(" · ") + count);
    showQueue();
}

void QueueView::showRow(quint64 id) {
    const QList<QueueRow>& rows = m_queue.rows();
    for (qsizetype at = 0; at < rows.size() && at < m_rowViews.size(); ++at) {
        if (rows.at(at).id != id)
            continue;
        m_rowViews.at(at)->show(rows.at(at), at == 0, at == rows.size() - 1);
        // The list follows the run once per video, when its job starts, and leaves the
        // scrolling to the user in between.
        if (rows.at(at).state == QueueRow::State::translating && m_followed != id) {
            m_followed = id;
            if (auto* area = findChild<QScrollArea*>())
                area->ensureWidgetVisible(m_rowViews.at(at), 0, Look::rowGap);
        }
    }
    showQueue();
}

void QueueView::showQueue() {
    const bool running = m_queue.isRunning();
    const qsizetype runnable = m_queue.runnable();
    m_clear->setEnabled(!running);
    m_cancel->setVisible(running);
    m_start->setVisible(!running);
    // With nothing left to run, the way on is a new list.
    m_start->setText(runnable == 0   ? QStringLiteral("Traducir otros videos")
                     : runnable == 1 ? QStringLiteral("Traducir el video")
                                     : QStringLiteral("Traducir los ") + videos(runnable));
    const bool ready = m_engine->isReady() || runnable == 0;
    m_start->setEnabled(ready);
    m_start->setToolTip(ready ? QString() : m_engine->text()->text());
    const bool spanish =
        std::any_of(m_queue.rows().begin(), m_queue.rows().end(), [](const QueueRow& row) {
            return row.info && row.info->spanishStatus() == SpanishStatus::full;
        });
    m_forceRow->setVisible(spanish);
    m_force->setEnabled(!running);
    // The run took its options when it started.
    m_options->setEnabled(!running);
    m_optionsButton->setEnabled(!running);
    m_failure->setText(m_queue.failure());
    m_failure->setVisible(!m_queue.failure().isEmpty());
    const QueueSummary summary = m_queue.summary();
    setSubtitle(summary.text());
    if (running)
        m_summary->hide();
}

void QueueView::showSummary() {
    const QueueSummary summary = m_queue.summary();
    m_summaryText->setText(summary.text() + u'.');
    QStringList lines;
    for (const auto& [name, warnings] : summary.warnings) {
        for (const QString& warning : warnings)
            lines << QStringLiteral("«") + name + QStringLiteral("»: ") + warning;
    }
    m_warnings->setText(lines.join(u'\n'));
    m_warnings->setVisible(!lines.isEmpty());
    m_summary->show();
    if (auto* area = findChild<QScrollArea*>())
        area->verticalScrollBar()->setValue(0);
}

} // namespace velto
