#pragma once

#include <memory>
#include <optional>

#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>

#include "VeltoKit/job/JobOptions.h"
#include "VeltoKit/media/FFmpeg.h"
#include "VeltoMKV/state/AppState.h"
#include "VeltoMKV/state/BackgroundTasks.h"
#include "VeltoMKV/state/QueueRow.h"
#include "VeltoMKV/state/QueueSummary.h"

namespace velto {

class Preferences;
class TranslationBackend;

// Several videos, one after another, with one engine and one set of options: the rows are
// probed as they arrive, so their track and whether they will be skipped show before the start;
// the jobs then run in order on background tasks. A failure never stops the rest; cancelling
// stops the current job and leaves the others where they were. Lives on the main thread.
class QueueState : public QObject {
    Q_OBJECT

public:
    using ToolLocator = AppState::ToolLocator;

    explicit QueueState(ToolLocator locate = {}, QObject* parent = nullptr);
    ~QueueState() override;

    const QList<QueueRow>& rows() const { return m_rows; }
    const QueueRow* row(quint64 id) const;
    // A run is under way: rows queued for it have not all ended.
    bool isRunning() const { return m_running; }
    // «Traducir igual», for every video of the queue.
    bool force() const { return m_force; }
    void setForce(bool force);
    // Why the last start could not begin (the engine could not be made); empty otherwise.
    const QString& failure() const { return m_failure; }
    // Rows that a start would run now.
    qsizetype runnable() const;
    QueueSummary summary() const;
    // Background tasks still winding down, cancelled ones included.
    std::size_t backgroundTasks() const { return m_tasks.running(); }

    // Adds the videos not in the list yet; during a run they join it.
    void add(const QStringList& paths, const Preferences& preferences);
    // Rows that are not being worked on can go; ones that have not started can move.
    void remove(quint64 id);
    void move(quint64 id, qsizetype position);
    void setTrack(quint64 id, std::optional<qint64> index);
    // Runs every row that has not started, in order.
    void start(const Preferences& preferences);
    // Runs a failed or cancelled row again, alone if no run is under way.
    void retry(quint64 id, const Preferences& preferences);
    // Stops the current job, whose row reads cancelled, and the rest of the run.
    void cancel();
    // Stops everything and forgets every row.
    void clear();

signals:
    // Rows were added, removed or moved.
    void rowsChanged();
    void rowChanged(quint64 id);
    void runningChanged();
    void forceChanged();
    void failureChanged();
    // A run ended with every row it queued done, skipped or failed (not when cancelled).
    void finished();

private:
    QueueRow* find(quint64 id);
    void changed(const QueueRow& row);
    // Takes the next step: probes an unprobed row, else runs the next queued one, else ends.
    void advance();
    void probe(QueueRow& row);
    void probed(quint64 id, const MediaInfo& info);
    void run(QueueRow& row);
    void ended(quint64 id, QueueRow::State state, const QString& message,
               std::optional<JobResult> result);
    // The plan for the row's track and «Traducir igual»; a refusal skips the row.
    void plan(QueueRow& row);
    bool engineReady(const Preferences& preferences);
    void setRunning(bool running);
    void setFailure(QString failure);

    QList<QueueRow> m_rows;
    quint64 m_lastId = 0;
    bool m_running = false;
    bool m_force = false;
    QString m_failure;
    // The options the rows are planned with, and those of the run (one for every job).
    JobOptions m_planOptions;
    JobOptions m_runOptions;
    std::shared_ptr<const TranslationBackend> m_backend;
    ToolLocator m_locate;
    std::optional<QString> m_ffmpegDirectory;
    std::optional<FFmpeg> m_tools;
    // The probe or job under way, by its serial; reports of any other are stale.
    std::optional<BackgroundTasks::Id> m_task;
    quint64 m_activeRow = 0;
    quint64 m_serial = 0;
    quint64 m_current = 0;
    BackgroundTasks m_tasks;
};

} // namespace velto
