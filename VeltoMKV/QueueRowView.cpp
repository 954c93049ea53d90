#include "VeltoMKV/QueueRowView.h"

#include <QComboBox>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>

#include "VeltoKit/platform/PlatformText.h"
#include "VeltoMKV/ElidingLabel.h"
#include "VeltoMKV/Look.h"
#include "VeltoMKV/WheelGuard.h"
#include "VeltoMKV/state/Format.h"
#include "VeltoMKV/state/QueueRow.h"

namespace velto {
namespace {

constexpr int markSize = 18;
using State = QueueRow::State;

QString running(const QueueRow& row) {
    const JobUpdate& update = row.progress;
    if (update.translation)
        return label(update) + QStringLiteral(" · ") + Format::counts(*update.translation);
    return update.detail.isEmpty() || update.stage == JobStage::analyzing
               ? label(update)
               : label(update) + QStringLiteral(" · ") + update.detail;
}

QString done(const QueueRow& row) {
    QString text = QFileInfo(row.result->written()).fileName();
    const qsizetype warnings = row.result->warnings.size();
    if (warnings > 0)
        text += QStringLiteral(" · ") + Format::count(warnings) +
                (warnings == 1 ? QStringLiteral(" aviso") : QStringLiteral(" avisos"));
    return text;
}

// The state in a word or two, beside the name, lower case as a list reads.
QString stateWord(const QueueRow& row) {
    switch (row.state) {
    case State::waiting:
        return QStringLiteral("esperando");
    case State::analysing:
        return QStringLiteral("analizando…");
    case State::translating:
        return row.progress.progress ? Format::percent(*row.progress.progress) : QString();
    case State::done:
        return QStringLiteral("listo");
    case State::skipped:
        return QStringLiteral("omitido");
    case State::failed:
        return QStringLiteral("falló");
    case State::cancelled:
        return QStringLiteral("cancelado");
    }
    return {};
}

// What the badge cannot say: the stage, the file written, the reason.
QString details(const QueueRow& row) {
    switch (row.state) {
    case State::translating:
        return running(row);
    case State::done:
        return done(row);
    case State::skipped:
    case State::failed:
        return row.message;
    default:
        return {};
    }
}

QIcon markFor(State state, const QPalette& palette) {
    switch (state) {
    case State::done:
        return Look::doneMark(palette);
    case State::failed:
    case State::cancelled:
        return Look::warningIcon();
    case State::skipped:
        return Look::informationIcon();
    case State::analysing:
    case State::translating:
        return Look::choiceMark(true, palette);
    case State::waiting:
        break;
    }
    return Look::choiceMark(false, palette);
}

QToolButton* arrow(Qt::ArrowType type, const QString& tip, QWidget* parent) {
    auto* button = new QToolButton(parent);
    button->setArrowType(type);
    button->setAutoRaise(true);
    button->setToolTip(tip);
    button->setAccessibleName(tip);
    return button;
}

} // namespace

QueueRowView::QueueRowView(quint64 id, QWidget* parent)
    : QWidget(parent)
    , m_id(id) {
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(Look::rowGap);
    m_mark = new QLabel(this);
    m_mark->setFixedSize(markSize, markSize);
    row->addWidget(m_mark, 0, Qt::AlignTop);

    auto* text = new QVBoxLayout();
    text->setSpacing(4);
    auto* naming = new QHBoxLayout();
    naming->setSpacing(Look::rowGap);
    m_name = new ElidingLabel(this);
    naming->addWidget(m_name, 1);
    m_badge = Look::secondary(QString(), this);
    m_badge->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    naming->addWidget(m_badge);
    text->addLayout(naming);
    m_track = new QComboBox(this);
    // A long track title must not widen the page: the picker shortens, its list does not.
    m_track->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    m_track->setMinimumContentsLength(6);
    m_track->setPlaceholderText(QStringLiteral("Elegí una pista"));
    m_track->setAccessibleName(QStringLiteral("Pista a traducir"));
    guardWheel(m_track);
    text->addWidget(m_track);
    m_state = Look::secondary(QString(), this);
    m_state->setWordWrap(true);
    m_state->setTextInteractionFlags(Qt::TextSelectableByMouse);
    text->addWidget(m_state);
    m_bar = new QProgressBar(this);
    m_bar->setTextVisible(false);
    m_bar->setMaximumHeight(m_state->fontMetrics().height() / 2 + 2);
    text->addWidget(m_bar);
    row->addLayout(text, 1);

    // Close together, so a narrow window keeps its room for the name and the track; as wide in
    // every row whichever buttons show, so the state words of all rows line up.
    auto* actionsBox = new QWidget(this);
    auto* actions = new QHBoxLayout(actionsBox);
    actions->setContentsMargins(0, 0, 0, 0);
    actions->setSpacing(2);
    m_up = arrow(Qt::UpArrow, QStringLiteral("Subir"), actionsBox);
    m_down = arrow(Qt::DownArrow, QStringLiteral("Bajar"), actionsBox);
    m_action = Look::quietButton(QStringLiteral("Reintentar"), actionsBox);
    for (QWidget* button : {static_cast<QWidget*>(m_up), static_cast<QWidget*>(m_down),
                            static_cast<QWidget*>(m_action)}) {
        QSizePolicy policy = button->sizePolicy();
        policy.setRetainSizeWhenHidden(true);
        button->setSizePolicy(policy);
        actions->addWidget(button, 0, Qt::AlignTop);
    }
    actionsBox->setFixedWidth(actionsBox->sizeHint().width());
    row->addWidget(actionsBox, 0, Qt::AlignTop);

    connect(m_up, &QToolButton::clicked, this, [this] { emit moveRequested(m_id, -1); });
    connect(m_down, &QToolButton::clicked, this, [this] { emit moveRequested(m_id, 1); });
    connect(m_action, &QPushButton::clicked, this, &QueueRowView::act);
    connect(m_track, &QComboBox::currentIndexChanged, this, [this](int index) {
        if (!m_filling && index >= 0)
            emit trackChosen(m_id, m_track->itemData(index).toLongLong());
    });
}

void QueueRowView::show(const QueueRow& row, bool first, bool last) {
    m_mark->setPixmap(markFor(row.state, palette())
                          .pixmap(QSize(markSize, markSize), m_mark->devicePixelRatioF()));
    m_name->setText(QFileInfo(row.source).fileName());
    showTracks(row);
    m_badge->setText(stateWord(row));
    m_state->setText(details(row));
    m_state->setVisible(!m_state->text().isEmpty());
    const bool translating = row.state == State::translating;
    m_bar->setVisible(translating);
    if (translating) {
        // Indeterminate until the job knows a fraction.
        const std::optional<double> fraction = row.progress.progress;
        m_bar->setRange(0, fraction ? 1000 : 0);
        m_bar->setValue(fraction ? static_cast<int>(*fraction * 1000) : 0);
    }
    showAction(row, first, last);
}

void QueueRowView::showTracks(const QueueRow& row) {
    const bool choosing = !row.started() && row.info && !row.info->tracks.isEmpty();
    m_track->setVisible(choosing);
    if (!choosing)
        return;
    m_filling = true;
    m_track->clear();
    for (const SubtitleTrack& track : row.info->tracks)
        m_track->addItem(Format::track(track), QVariant::fromValue(track.index));
    const std::optional<qint64> chosen =
        row.chosenTrack
            ? row.chosenTrack
            : (row.plan && row.plan->track ? std::optional(row.plan->track->index) : std::nullopt);
    m_track->setCurrentIndex(chosen ? m_track->findData(QVariant::fromValue(*chosen)) : -1);
    m_filling = false;
}

void QueueRowView::showAction(const QueueRow& row, bool first, bool last) {
    const bool movable = !row.started();
    m_up->setVisible(movable && !first);
    m_down->setVisible(movable && !last);
    m_output = row.result ? row.result->written() : QString();
    if (row.state == State::done) {
        m_doing = Action::reveal;
        m_action->setText(QStringLiteral("Mostrar"));
        m_action->setToolTip(PlatformText::revealInFileBrowser());
    } else if (row.state == State::failed || row.state == State::cancelled) {
        m_doing = Action::retry;
        m_action->setText(QStringLiteral("Reintentar"));
        m_action->setToolTip({});
    } else if (movable) {
        m_doing = Action::remove;
        m_action->setText(QStringLiteral("Quitar"));
        m_action->setToolTip(QStringLiteral("Sacar este video de la lista"));
    } else {
        m_doing = Action::none;
    }
    m_action->setVisible(m_doing != Action::none);
}

void QueueRowView::act() {
    switch (m_doing) {
    case Action::remove:
        emit removeRequested(m_id);
        break;
    case Action::reveal:
        emit revealRequested(m_output);
        break;
    case Action::retry:
        emit retryRequested(m_id);
        break;
    case Action::none:
        break;
    }
}

} // namespace velto
