#pragma once

#include <functional>
#include <optional>

#include <QElapsedTimer>
#include <QObject>
#include <QString>
#include <QStringList>

#include "VeltoKit/job/JobOptions.h"
#include "VeltoKit/job/JobResult.h"
#include "VeltoKit/job/JobUpdate.h"
#include "VeltoKit/media/FFmpeg.h"
#include "VeltoKit/media/MediaInfo.h"
#include "VeltoMKV/state/BackgroundTasks.h"
#include "VeltoMKV/state/Phase.h"
#include "VeltoMKV/state/TimeLeft.h"

namespace velto {

class Preferences;

// The one object behind the main window: the open video, what the probe found, the chosen
// track, the running job and its outcome, and whether ffmpeg is there. The views read it and
// call its actions; every field announces its changes. Lives on the main thread; probes and
// jobs run on background tasks whose reports are applied here only while they are current.
class AppState : public QObject {
    Q_OBJECT

public:
    // Finds ffmpeg and ffprobe, preferring a folder; called on background threads.
    using ToolLocator =
        std::function<std::optional<FFmpeg>(const std::optional<QString>& preferredDirectory)>;

    // Without a locator the tools are looked for where FFmpeg::locate looks.
    explicit AppState(ToolLocator locate = {}, QObject* parent = nullptr);
    ~AppState() override;

    const Phase& phase() const { return m_phase; }
    const std::optional<QString>& sourceURL() const { return m_sourceURL; }
    const std::optional<MediaInfo>& info() const { return m_info; }
    std::optional<qint64> selectedTrack() const { return m_selectedTrack; }
    void setSelectedTrack(std::optional<qint64> index);
    const std::optional<QString>& outputURL() const { return m_outputURL; }
    void setOutputURL(std::optional<QString> url);
    bool force() const { return m_force; }
    void setForce(bool force);
    // The names and terms the next job keeps; none: the list file beside the video.
    void setGlossary(std::optional<Glossary> glossary) { m_glossary = std::move(glossary); }
    // Where the running job is: its stage, the detail line and the fraction when known.
    const JobUpdate& progress() const { return m_progress; }
    // The cues translated last, as they came back, newest last; at most liveLineCount.
    const QList<TranslatedLine>& latestLines() const { return m_latestLines; }
    static constexpr qsizetype liveLineCount = 4;
    // How long the running translation still needs; none before its first batches came back.
    std::optional<double> secondsLeft() const;
    // Seconds of work on this job so far, the legs that failed before a retry included.
    double elapsed() const;
    const std::optional<JobResult>& result() const { return m_result; }
    const QStringList& warnings() const { return m_warnings; }
    const std::optional<QString>& ffmpegStatus() const { return m_ffmpegStatus; }
    bool ffmpegReady() const { return m_ffmpegReady; }
    // The tools the last probe found.
    const std::optional<FFmpeg>& tools() const { return m_tools; }
    // A job is running (the task, which the views do not see).
    bool hasTask() const { return m_task.has_value(); }
    // Background tasks still winding down, cancelled ones included.
    std::size_t backgroundTasks() const { return m_tasks.running(); }

    // Looks for ffmpeg in the preferred folder, then the usual places, and asks its version.
    void checkTools(const Preferences& preferences);
    void load(const QString& url, const Preferences& preferences);
    void start(const Preferences& preferences);
    void cancel();
    void reset();

signals:
    void phaseChanged();
    void sourceURLChanged();
    void infoChanged();
    void selectedTrackChanged();
    void outputURLChanged();
    void forceChanged();
    void progressChanged();
    void latestLinesChanged();
    void resultChanged();
    void warningsChanged();
    void ffmpegStatusChanged();
    void ffmpegReadyChanged();

private:
    void setPhase(Phase phase);
    void setSourceURL(std::optional<QString> url);
    void setInfo(std::optional<MediaInfo> info);
    void setProgress(JobUpdate progress);
    void applyUpdate(const JobUpdate& update);
    void setLatestLines(QList<TranslatedLine> lines);
    // Ends the running leg; a failed one counts towards the job that a retry finishes.
    void endLeg(bool failed);
    void setResult(std::optional<JobResult> result);
    void setWarnings(QStringList warnings);
    void setFfmpegStatus(std::optional<QString> status);
    void setFfmpegReady(bool ready);
    void toolsFound(const std::optional<FFmpeg>& tools, const QString& installHint);
    // Stops whatever probe or job is current and makes its later reports stale.
    quint64 nextRun();
    void probed(const QString& url, const MediaInfo& info, const JobOptions& options);

    Phase m_phase;
    std::optional<QString> m_sourceURL;
    std::optional<MediaInfo> m_info;
    std::optional<qint64> m_selectedTrack;
    std::optional<QString> m_outputURL;
    bool m_force = false;
    std::optional<Glossary> m_glossary;
    JobUpdate m_progress;
    QList<TranslatedLine> m_latestLines;
    std::optional<TimeLeft> m_timeLeft;
    QElapsedTimer m_leg;
    double m_earlierLegs = 0;
    std::optional<JobResult> m_result;
    QStringList m_warnings;
    std::optional<QString> m_ffmpegStatus;
    bool m_ffmpegReady = false;

    ToolLocator m_locate;
    std::optional<FFmpeg> m_tools;
    // The running job; reports of any other run are stale.
    std::optional<BackgroundTasks::Id> m_task;
    std::optional<BackgroundTasks::Id> m_probe;
    quint64 m_run = 0;
    quint64 m_toolCheck = 0;
    BackgroundTasks m_tasks;
};

} // namespace velto
