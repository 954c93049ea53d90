#include "VeltoMKV/state/QueueState.h"

#include <QFileInfo>

#include "VeltoKit/core/VeltoError.h"
#include "VeltoKit/job/TranslationJob.h"
#include "VeltoKit/providers/Preferences.h"
#include "VeltoKit/translation/TranslationBackend.h"
#include "VeltoMKV/state/FailureText.h"

namespace velto {

using State = QueueRow::State;

QueueState::QueueState(ToolLocator locate, QObject* parent)
    : QObject(parent)
    , m_locate(locate ? std::move(locate) : ToolLocator(&FFmpeg::locate))
    , m_tasks(this) {}

QueueState::~QueueState() = default;

const QueueRow* QueueState::row(quint64 id) const {
    for (const QueueRow& row : m_rows) {
        if (row.id == id)
            return &row;
    }
    return nullptr;
}

QueueRow* QueueState::find(quint64 id) {
    return const_cast<QueueRow*>(std::as_const(*this).row(id));
}

qsizetype QueueState::runnable() const {
    return std::count_if(m_rows.begin(), m_rows.end(),
                         [](const QueueRow& row) { return row.state == State::waiting; });
}

QueueSummary QueueState::summary() const {
    QueueSummary summary;
    for (const QueueRow& row : m_rows) {
        summary.done += row.state == State::done;
        summary.skipped += row.state == State::skipped;
        summary.failed += row.state == State::failed;
        summary.cancelled += row.state == State::cancelled;
        if (row.result && !row.result->warnings.isEmpty())
            summary.warnings.append({QFileInfo(row.source).fileName(), row.result->warnings});
    }
    return summary;
}

void QueueState::add(const QStringList& paths, const Preferences& preferences) {
    m_planOptions = preferences.makeJobOptions({}, {}, false);
    const QString directory = preferences.ffmpegDirectory();
    m_ffmpegDirectory = directory.isEmpty() ? std::nullopt : std::optional<QString>(directory);
    qsizetype added = 0;
    for (const QString& path : paths) {
        const QString source = QFileInfo(path).absoluteFilePath();
        const bool known = std::any_of(m_rows.begin(), m_rows.end(),
                                       [&](const QueueRow& row) { return row.source == source; });
        if (known)
            continue;
        m_rows.append({.id = ++m_lastId, .source = source, .queued = m_running});
        ++added;
    }
    if (added == 0)
        return;
    emit rowsChanged();
    advance();
}

void QueueState::remove(quint64 id) {
    const QueueRow* row = this->row(id);
    if (!row || row->active())
        return;
    m_rows.removeAt(row - m_rows.constData());
    emit rowsChanged();
}

void QueueState::move(quint64 id, qsizetype position) {
    const QueueRow* row = this->row(id);
    if (!row || row->started() || position < 0 || position >= m_rows.size())
        return;
    const qsizetype from = row - m_rows.constData();
    if (from == position)
        return;
    m_rows.move(from, position);
    emit rowsChanged();
}

void QueueState::setTrack(quint64 id, std::optional<qint64> index) {
    QueueRow* row = find(id);
    if (!row || row->started() || !row->info || row->chosenTrack == index)
        return;
    row->chosenTrack = index;
    plan(*row);
    changed(*row);
}

void QueueState::setForce(bool force) {
    if (force == m_force)
        return;
    m_force = force;
    emit forceChanged();
    for (QueueRow& row : m_rows) {
        if (!row.started() && row.info) {
            plan(row);
            changed(row);
        }
    }
    advance();
}

void QueueState::plan(QueueRow& row) {
    JobOptions options = m_planOptions;
    options.forcedTrackIndex = row.chosenTrack;
    options.force = m_force;
    row.plan = JobPlan::make(row.source, *row.info, options);
    row.state = row.plan->refusal ? State::skipped : State::waiting;
    row.message = row.plan->refusal ? failureText(*row.plan->refusal) : QString();
}

void QueueState::start(const Preferences& preferences) {
    if (m_running || !engineReady(preferences))
        return;
    for (QueueRow& row : m_rows)
        row.queued = !row.started();
    setRunning(true);
    advance();
}

void QueueState::retry(quint64 id, const Preferences& preferences) {
    QueueRow* row = find(id);
    if (!row || (row->state != State::failed && row->state != State::cancelled))
        return;
    if (!m_running && !engineReady(preferences))
        return;
    row->queued = true;
    row->result.reset();
    row->progress = {};
    if (row->info) {
        plan(*row);
    } else {
        row->state = State::waiting;
        row->message.clear();
    }
    changed(*row);
    setRunning(true);
    advance();
}

bool QueueState::engineReady(const Preferences& preferences) {
    // One engine and one set of options for every video of the run.
    try {
        m_backend = preferences.engineConfiguration().makeBackend();
    } catch (const std::exception& error) {
        setFailure(failureText(error));
        return false;
    }
    setFailure({});
    m_runOptions = preferences.makeJobOptions({}, {}, false);
    return true;
}

void QueueState::cancel() {
    for (QueueRow& row : m_rows)
        row.queued = false;
    if (QueueRow* row = find(m_activeRow); row && row->state == State::translating) {
        m_tasks.stop(*m_task);
        m_task.reset();
        m_current = 0;
        row->state = State::cancelled;
        row->progress = {};
        changed(*row);
    }
    setRunning(false);
    advance();
}

void QueueState::clear() {
    if (m_task)
        m_tasks.stop(*m_task);
    m_task.reset();
    m_current = 0;
    m_rows.clear();
    setRunning(false);
    emit rowsChanged();
}

void QueueState::advance() {
    if (m_task)
        return;
    for (QueueRow& row : m_rows) {
        if (!row.info && row.state == State::waiting) {
            probe(row);
            return;
        }
    }
    if (!m_running)
        return;
    for (QueueRow& row : m_rows) {
        if (row.queued && row.state == State::waiting) {
            run(row);
            return;
        }
    }
    for (QueueRow& row : m_rows)
        row.queued = false;
    m_backend.reset();
    setRunning(false);
    emit finished();
}

void QueueState::probe(QueueRow& row) {
    const quint64 serial = m_current = ++m_serial;
    const quint64 id = m_activeRow = row.id;
    row.state = State::analysing;
    changed(row);
    const std::optional<FFmpeg> known = m_tools;
    m_task =
        m_tasks.launch([this, serial, id, source = row.source, known, locate = m_locate,
                        directory = m_ffmpegDirectory](std::stop_token stop, const auto& post) {
            const std::optional<FFmpeg> tools = known ? known : locate(directory);
            if (!tools) {
                post([this, serial, id] {
                    if (serial == m_current)
                        ended(id, State::failed, missingFfmpegText(), std::nullopt);
                });
                return;
            }
            try {
                const MediaInfo info = tools->inspect(source, std::move(stop));
                post([this, serial, id, info, tools] {
                    if (serial != m_current)
                        return;
                    m_tools = tools;
                    probed(id, info);
                });
            } catch (const Cancelled&) {
            } catch (const std::exception& error) {
                post([this, serial, id, message = failureText(error)] {
                    if (serial == m_current)
                        ended(id, State::failed, message, std::nullopt);
                });
            }
        });
}

void QueueState::probed(quint64 id, const MediaInfo& info) {
    m_task.reset();
    if (QueueRow* row = find(id)) {
        row->info = info;
        plan(*row);
        changed(*row);
    }
    advance();
}

void QueueState::run(QueueRow& row) {
    JobOptions options = m_runOptions;
    options.outputURL = row.plan->output;
    options.forcedTrackIndex = row.chosenTrack;
    options.force = m_force;
    const TranslationJob job(*m_tools, m_backend, options, Preferences::cacheDirectory());
    const quint64 serial = m_current = ++m_serial;
    const quint64 id = m_activeRow = row.id;
    row.state = State::translating;
    row.progress = {};
    changed(row);
    m_task = m_tasks.launch(
        [this, serial, id, job, source = row.source](std::stop_token stop, const auto& post) {
            const auto onUpdate = [this, serial, id, post](const JobUpdate& update) {
                post([this, serial, id, update] {
                    QueueRow* row = find(id);
                    if (serial != m_current || !row)
                        return;
                    row->progress = update;
                    changed(*row);
                });
            };
            try {
                const JobResult result = job.run(source, onUpdate, std::move(stop));
                post([this, serial, id, result] {
                    if (serial == m_current)
                        ended(id, State::done, {}, result);
                });
            } catch (const Cancelled&) {
            } catch (const std::exception& error) {
                post([this, serial, id, message = failureText(error)] {
                    if (serial == m_current)
                        ended(id, State::failed, message, std::nullopt);
                });
            }
        });
}

void QueueState::ended(quint64 id, State state, const QString& message,
                       std::optional<JobResult> result) {
    m_task.reset();
    m_current = 0;
    if (QueueRow* row = find(id)) {
        row->state = state;
        row->message = message;
        row->result = std::move(result);
        row->queued = false;
        changed(*row);
    }
    advance();
}

void QueueState::changed(const QueueRow& row) {
    emit rowChanged(row.id);
}

void QueueState::setRunning(bool running) {
    if (running == m_running)
        return;
    m_running = running;
    emit runningChanged();
}

void QueueState::setFailure(QString failure) {
    if (failure == m_failure)
        return;
    m_failure = std::move(failure);
    emit failureChanged();
}

} // namespace velto
