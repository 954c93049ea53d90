#include "VeltoMKV/JobView.h"

#include <QCheckBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QScrollArea>
#include <QToolButton>
#include <QVBoxLayout>

#include "VeltoKit/providers/Preferences.h"
#include "VeltoMKV/AppIcon.h"
#include "VeltoMKV/ElidingLabel.h"
#include "VeltoMKV/EngineLine.h"
#include "VeltoMKV/EstimateLine.h"
#include "VeltoMKV/Look.h"
#include "VeltoMKV/NamesPanel.h"
#include "VeltoMKV/OptionsPanel.h"
#include "VeltoMKV/Page.h"
#include "VeltoMKV/SettingsPresenter.h"
#include "VeltoMKV/state/AppState.h"
#include "VeltoMKV/state/CurrentPlan.h"
#include "VeltoMKV/state/Format.h"

namespace velto {
namespace {

constexpr int trackIndexRole = Qt::UserRole;

QString trackCount(qsizetype count) {
    return count == 1 ? QStringLiteral("1 pista de subtítulos")
                      : QString::number(count) + QStringLiteral(" pistas de subtítulos");
}

} // namespace

JobView::JobView(AppState& state, Preferences& preferences, SettingsPresenter& settings,
                 QWidget* parent)
    : Page(appIcon(), parent)
    , m_state(state)
    , m_preferences(preferences) {
    QVBoxLayout* layout = column();
    auto* close = Look::quietButton(QStringLiteral("Cerrar este archivo"), this);
    connect(close, &QPushButton::clicked, &m_state, &AppState::reset);
    setHeaderAction(close);

    // The tracks.
    layout->addWidget(Look::heading(QStringLiteral("Pista a traducir"), this));
    m_tracks = new QListWidget(this);
    m_tracks->setSelectionMode(QAbstractItemView::SingleSelection);
    m_tracks->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_tracks->setTextElideMode(Qt::ElideRight);
    m_tracks->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    m_tracks->setUniformItemSizes(true);
    const int mark = fontMetrics().height();
    m_tracks->setIconSize(QSize(mark, mark));
    layout->addWidget(m_tracks);
    connect(m_tracks, &QListWidget::currentItemChanged, this, [this](QListWidgetItem* item) {
        if (item && (item->flags() & Qt::ItemIsEnabled))
            m_state.setSelectedTrack(item->data(trackIndexRole).toLongLong());
    });

    // What the file already has in Spanish.
    m_noticeRow = new QWidget(this);
    auto* notice = new QHBoxLayout(m_noticeRow);
    notice->setContentsMargins(0, 0, 0, 0);
    notice->setSpacing(Look::rowGap / 2 + 2);
    m_noticeIcon = Look::iconLabel(Look::informationIcon(), 20, m_noticeRow);
    notice->addWidget(m_noticeIcon, 0, Qt::AlignTop);
    m_noticeText = Look::paragraph(QString(), m_noticeRow);
    notice->addWidget(m_noticeText, 1);
    m_force = new QCheckBox(QStringLiteral("Traducir igual"), m_noticeRow);
    notice->addWidget(m_force, 0, Qt::AlignTop);
    layout->addWidget(m_noticeRow);
    connect(m_force, &QCheckBox::toggled, &m_state, &AppState::setForce);
    connect(&m_state, &AppState::forceChanged, this, [this] {
        const QSignalBlocker block(m_force);
        m_force->setChecked(m_state.force());
    });
    layout->addSpacing(Look::groupGap - Look::rowGap);

    // The options, folded: the first glance goes file, track, engine, start.
    auto* disclosureRow = new QHBoxLayout();
    m_disclosure = Look::disclosure(QStringLiteral("Opciones"), this);
    disclosureRow->addWidget(m_disclosure, 0, Qt::AlignLeft);
    disclosureRow->addSpacing(Look::rowGap);
    m_optionsSummary = new ElidingLabel(this, Qt::ElideRight);
    m_optionsSummary->setForegroundRole(QPalette::PlaceholderText);
    disclosureRow->addWidget(m_optionsSummary, 1);
    layout->addLayout(disclosureRow);
    m_options = new OptionsPanel(preferences, this);
    m_options->setVisible(false);
    layout->addWidget(m_options);
    connect(m_disclosure, &QToolButton::toggled, this, [this](bool open) {
        m_options->setVisible(open);
        m_optionsSummary->setVisible(!open);
    });
    m_optionsSummary->setText(m_options->summary());
    connect(m_options, &OptionsPanel::summaryChanged, this,
            [this] { m_optionsSummary->setText(m_options->summary()); });
    layout->addWidget(new NamesPanel(m_state, this));
    layout->addSpacing(Look::groupGap - Look::rowGap);

    // The engine.
    m_engine = new EngineLine(preferences, settings, this);
    layout->addWidget(m_engine);
    connect(m_engine, &EngineLine::refreshed, this, &JobView::showStart);
    layout->addWidget(new EstimateLine(state, preferences, this));

    // Where the result goes: the question over the name, so a long name has the whole row.
    m_outputQuestion = Look::secondary(QString(), this);
    layout->addWidget(m_outputQuestion);
    auto* outputRow = new QHBoxLayout();
    outputRow->setSpacing(Look::rowGap / 2 + 2);
    m_output = new ElidingLabel(this);
    outputRow->addWidget(m_output, 1);
    m_saveAs = Look::button(QStringLiteral("Guardar como"), this);
    connect(m_saveAs, &QPushButton::clicked, this, &JobView::chooseOutput);
    outputRow->addWidget(m_saveAs);
    layout->addLayout(outputRow);

    layout->addStretch(1);
    m_start = Look::primaryButton(QStringLiteral("Traducir al español"), this);
    connect(m_start, &QPushButton::clicked, this, &JobView::startRequested);
    footer()->addWidget(m_start);

    // Creation order is reading order; only the way out, created first, goes last.
    setTabOrder(m_start, close);

    connect(&m_state, &AppState::sourceURLChanged, this, &JobView::showFile);
    connect(&m_state, &AppState::infoChanged, this, &JobView::showTracks);
    connect(&m_state, &AppState::selectedTrackChanged, this, &JobView::markChosenTrack);
    connect(&m_state, &AppState::outputURLChanged, this, &JobView::showOutput);
    // The subtitle file's name follows the chosen track (.srt or .ass) and what to save.
    connect(&m_state, &AppState::selectedTrackChanged, this, &JobView::showOutput);
    connect(&m_preferences, &Preferences::jobOptionsChanged, this, &JobView::showOutput);
    showFile();
    showTracks();
    showOutput();
    showStart();
}

void JobView::showFile() {
    titleLabel()->setText(m_state.sourceURL() ? QFileInfo(*m_state.sourceURL()).fileName()
                                              : QString());
}

void JobView::showTracks() {
    const QSignalBlocker block(m_tracks);
    m_tracks->clear();
    const std::optional<MediaInfo>& info = m_state.info();
    if (!info) {
        setSubtitle(QString());
        m_noticeRow->setVisible(false);
        return;
    }
    setSubtitle(Format::duration(info->duration) + QStringLiteral(" · ") +
                trackCount(info->tracks.size()));
    for (const SubtitleTrack& track : info->tracks) {
        auto* item = new QListWidgetItem(Format::track(track), m_tracks);
        item->setData(trackIndexRole, track.index);
        item->setSizeHint(QSize(0, rowHeight()));
        if (track.isBitmap())
            item->setFlags(item->flags() & ~(Qt::ItemIsEnabled | Qt::ItemIsSelectable));
    }
    // Every row shows without scrolling up to six; more scroll.
    const int rows = static_cast<int>(qMin<qsizetype>(info->tracks.size(), 6));
    m_tracks->setFixedHeight(qMax(rows, 1) * rowHeight() + 2 * m_tracks->frameWidth());

    switch (info->spanishStatus()) {
    case SpanishStatus::full:
        m_noticeIcon->setPixmap(
            Look::warningIcon().pixmap(QSize(20, 20), m_noticeIcon->devicePixelRatioF()));
        m_noticeText->setText(QStringLiteral("Este archivo ya tiene una pista en español."));
        m_force->setVisible(true);
        m_noticeRow->setVisible(true);
        break;
    case SpanishStatus::forcedOnly:
        m_noticeIcon->setPixmap(
            Look::informationIcon().pixmap(QSize(20, 20), m_noticeIcon->devicePixelRatioF()));
        m_noticeText->setText(QStringLiteral(
            "Solo hay español en una pista forzada, que traduce carteles sueltos y no los "
            "diálogos. Se generará una completa."));
        m_force->setVisible(false);
        m_noticeRow->setVisible(true);
        break;
    case SpanishStatus::none:
        m_noticeRow->setVisible(false);
        break;
    }
    markChosenTrack();
}

int JobView::rowHeight() const {
    return fontMetrics().height() * 2;
}

void JobView::markChosenTrack() {
    const QSignalBlocker block(m_tracks);
    const std::optional<qint64> chosen = m_state.selectedTrack();
    for (int row = 0; row < m_tracks->count(); ++row) {
        QListWidgetItem* item = m_tracks->item(row);
        const bool isChosen = chosen && item->data(trackIndexRole).toLongLong() == *chosen;
        if (item->flags() & Qt::ItemIsEnabled)
            item->setIcon(Look::choiceMark(isChosen, palette()));
        else
            item->setIcon(Look::warningIcon());
        if (isChosen)
            m_tracks->setCurrentItem(item);
    }
    if (!chosen)
        m_tracks->setCurrentItem(nullptr);
}

void JobView::showOutput() {
    const std::optional<JobPlan> plan = currentPlan(m_state, m_preferences);
    const bool video = !plan || plan->output;
    m_outputQuestion->setText(video ? QStringLiteral("Dónde guardar el archivo con la pista nueva:")
                                    : QStringLiteral("El subtítulo se guarda junto al video:"));
    m_saveAs->setVisible(video);
    QStringList names;
    if (plan) {
        for (const QString& file : plan->writes())
            names.append(QFileInfo(file).fileName());
    }
    m_output->setText(names.join(QStringLiteral(" · ")));
}

void JobView::chooseOutput() {
    // Probed while only the subtitle file was asked for, the state holds no video name.
    const std::optional<QString>& source = m_state.sourceURL();
    const QString current =
        m_state.outputURL().value_or(source ? JobPlan::defaultOutputURL(*source) : QString());
    const QString chosen = QFileDialog::getSaveFileName(
        this, QStringLiteral("Dónde guardar el archivo con la pista nueva"), current,
        QStringLiteral("Videos (*.mkv *.mp4 *.mov *.m4v)"));
    if (!chosen.isEmpty())
        m_state.setOutputURL(chosen);
}

QLabel* JobView::engineLine() const {
    return m_engine->text();
}

void JobView::refreshEngine() {
    m_engine->refresh();
}

void JobView::showStart() {
    m_start->setEnabled(m_engine->isReady());
    m_start->setToolTip(m_engine->isReady() ? QString() : m_engine->text()->text());
}

} // namespace velto
