#include "VeltoMKV/state/AppState.h"

#include <algorithm>
#include <memory>

#include "VeltoKit/core/VeltoError.h"
#include "VeltoKit/job/JobError.h"
#include "VeltoKit/job/JobPlan.h"
#include "VeltoKit/job/TranslationJob.h"
#include "VeltoKit/providers/Preferences.h"
#include "VeltoKit/translation/TranslationBackend.h"
#include "VeltoMKV/state/FailureText.h"

namespace velto {
namespace {

std::optional<QString> folder(const QString& directory) {
    if (directory.isEmpty())
        return std::nullopt;
    return directory;
}

} // namespace

AppState::AppState(ToolLocator locate, QObject* parent)
    : QObject(parent)
    , m_locate(locate ? std::move(locate) : ToolLocator(&FFmpeg::locate))
    , m_tasks(this) {}

AppState::~AppState() = default;

void AppState::checkTools(const Preferences& preferences) {
    const quint64 check = ++m_toolCheck;
    const std::optional<QString> directory = folder(preferences.ffmpegDirectory());
    // Locating may read the login shell's PATH and the version runs ffmpeg: neither on this thread.
    m_tasks.launch(
        [this, check, directory, locate = m_locate](std::stop_token stop, const auto& post) {
            const std::optional<FFmpeg> tools = locate(directory);
            post([this, check, tools] {
                if (check == m_toolCheck)
                    toolsFound(tools, missingFfmpegText());
            });
            if (!tools)
                return;
            QString version;
            try {
                version = tools->version(std::move(stop));
            } catch (const std::exception&) {
                // No version is no reason to doubt the tools; the status says it was found.
            }
            post([this, check, version] {
                if (check != m_toolCheck || !m_ffmpegReady)
                    return;
                const bool known = !version.isEmpty() && version != QStringLiteral("desconocida");
                setFfmpegStatus(known ? version : QStringLiteral("ffmpeg encontrado"));
            });
        });
}

void AppState::toolsFound(const std::optional<FFmpeg>& tools, const QString& installHint) {
    m_tools = tools;
    setFfmpegReady(tools.has_value());
    if (!tools)
        setFfmpegStatus(installHint);
}

void AppState::load(const QString& url, const Preferences& preferences) {
    const quint64 run = nextRun();
    // The same file again, after a failure, is a retry of the same job.
    if (url != m_sourceURL)
        m_earlierLegs = 0;
    setResult(std::nullopt);
    setWarnings({});
    setForce(false);
    setProgress({});
    // Nothing of a previous video may survive into this one, even if this probe fails.
    setInfo(std::nullopt);
    setSelectedTrack(std::nullopt);
    setOutputURL(std::nullopt);
    setSourceURL(url);
    setPhase(Phase::inspecting());

    const std::optional<QString> directory = folder(preferences.ffmpegDirectory());
    const QString hint = missingFfmpegText();
    const JobOptions options = preferences.makeJobOptions({}, {}, false);
    m_probe = m_tasks.launch([this, run, url, directory, hint, options,
                              locate = m_locate](std::stop_token stop, const auto& post) {
        const std::optional<FFmpeg> tools = locate(directory);
        if (!tools) {
            post([this, run, hint] {
                if (run != m_run)
                    return;
                ++m_toolCheck;
                toolsFound(std::nullopt, hint);
                setPhase(Phase::failed(m_ffmpegStatus.value_or(QStringLiteral("Falta ffmpeg."))));
            });
            return;
        }
        try {
            const MediaInfo info = tools->inspect(url, std::move(stop));
            post([this, run, url, info, tools, options] {
                if (run != m_run)
                    return;
                m_tools = tools;
                setFfmpegReady(true);
                probed(url, info, options);
            });
        } catch (const Cancelled&) {
        } catch (const std::exception& error) {
            post([this, run, message = failureText(error)] {
                if (run == m_run)
                    setPhase(Phase::failed(message));
            });
        }
    });
}

void AppState::probed(const QString& url, const MediaInfo& info, const JobOptions& options) {
    m_probe.reset();
    setInfo(info);
    // The job's own choices, so that what the window proposes is what the job would do.
    const JobPlan plan = JobPlan::make(url, info, options);
    setSelectedTrack(plan.track ? std::optional<qint64>(plan.track->index) : std::nullopt);
    setOutputURL(plan.output);
    // A file without subtitles has nothing to show; every other refusal waits for the start.
    if (plan.refusal && plan.refusal->kind() == JobError::Kind::noSubtitles)
        setPhase(Phase::failed(failureText(*plan.refusal)));
    else
        setPhase(Phase::ready());
}

void AppState::start(const Preferences& preferences) {
    if (!m_sourceURL || !m_tools || m_task)
        return;
    std::shared_ptr<const TranslationBackend> backend;
    try {
        backend = preferences.engineConfiguration().makeBackend();
    } catch (const std::exception& error) {
        nextRun();
        setPhase(Phase::failed(failureText(error)));
        return;
    }
    JobOptions options = preferences.makeJobOptions(m_outputURL, m_selectedTrack, m_force);
    options.glossary = m_glossary;
    const TranslationJob job(*m_tools, std::move(backend), options, Preferences::cacheDirectory());
    const QString source = *m_sourceURL;

    const quint64 run = nextRun();
    setResult(std::nullopt);
    setWarnings({});
    setProgress({});
    setLatestLines({});
    m_timeLeft.emplace(options.concurrency);
    m_leg.start();
    setPhase(Phase::working());
    m_task = m_tasks.launch([this, run, job, source](std::stop_token stop, const auto& post) {
        const auto onUpdate = [this, run, post](const JobUpdate& update) {
            post([this, run, update] {
                if (run == m_run)
                    applyUpdate(update);
            });
        };
        try {
            const JobResult result = job.run(source, onUpdate, std::move(stop));
            post([this, run, result] {
                if (run != m_run)
                    return;
                m_task.reset();
                JobResult whole = result;
                whole.elapsed += m_earlierLegs;
                endLeg(false);
                setResult(whole);
                setWarnings(result.warnings);
                setPhase(Phase::finished());
            });
        } catch (const Cancelled&) {
        } catch (const std::exception& error) {
            post([this, run, message = failureText(error)] {
                if (run != m_run)
                    return;
                m_task.reset();
                endLeg(true);
                setPhase(Phase::failed(message));
            });
        }
    });
}

void AppState::cancel() {
    if (!m_task)
        return;
    nextRun();
    setPhase(Phase::ready());
    setProgress({});
}

void AppState::reset() {
    nextRun();
    endLeg(false);
    setLatestLines({});
    setPhase(Phase::idle());
    setSourceURL(std::nullopt);
    setInfo(std::nullopt);
    setSelectedTrack(std::nullopt);
    setOutputURL(std::nullopt);
    setResult(std::nullopt);
    setProgress({});
    setWarnings({});
    setForce(false);
}

std::optional<double> AppState::secondsLeft() const {
    if (!m_task || !m_timeLeft || m_progress.stage != JobStage::translating)
        return std::nullopt;
    return m_timeLeft->secondsLeft(TimeLeft::Clock::now());
}

double AppState::elapsed() const {
    return m_earlierLegs + (m_leg.isValid() ? static_cast<double>(m_leg.elapsed()) / 1000.0 : 0.0);
}

void AppState::endLeg(bool failed) {
    if (failed && m_leg.isValid())
        m_earlierLegs += static_cast<double>(m_leg.elapsed()) / 1000.0;
    else if (!failed)
        m_earlierLegs = 0;
    m_leg.invalidate();
    m_timeLeft.reset();
}

void AppState::applyUpdate(const JobUpdate& update) {
    if (update.estimate && m_timeLeft)
        m_timeLeft->expect(*update.estimate, TimeLeft::Clock::now());
    if (const std::optional<TranslationProgress>& translation = update.translation) {
        if (m_timeLeft)
            m_timeLeft->observe(*translation, TimeLeft::Clock::now());
        if (!translation->arrived.isEmpty()) {
            QList<TranslatedLine> lines = m_latestLines + translation->arrived;
            setLatestLines(lines.sliced(std::max<qsizetype>(lines.size() - liveLineCount, 0)));
        }
    }
    setProgress(update);
}

quint64 AppState::nextRun() {
    // A job stopped by the user is not retried: its time is not the next one's.
    if (m_task) {
        endLeg(false);
        m_tasks.stop(*m_task);
    }
    if (m_probe)
        m_tasks.stop(*m_probe);
    m_task.reset();
    m_probe.reset();
    return ++m_run;
}

void AppState::setPhase(Phase phase) {
    if (phase == m_phase)
        return;
    m_phase = std::move(phase);
    emit phaseChanged();
}

void AppState::setSourceURL(std::optional<QString> url) {
    if (url == m_sourceURL)
        return;
    m_sourceURL = std::move(url);
    emit sourceURLChanged();
}

void AppState::setInfo(std::optional<MediaInfo> info) {
    if (!info && !m_info)
        return;
    m_info = std::move(info);
    emit infoChanged();
}

void AppState::setSelectedTrack(std::optional<qint64> index) {
    if (index == m_selectedTrack)
        return;
    m_selectedTrack = index;
    emit selectedTrackChanged();
}

void AppState::setOutputURL(std::optional<QString> url) {
    if (url == m_outputURL)
        return;
    m_outputURL = std::move(url);
    emit outputURLChanged();
}

void AppState::setForce(bool force) {
    if (force == m_force)
        return;
    m_force = force;
    emit forceChanged();
}

void AppState::setProgress(JobUpdate progress) {
    if (progress == m_progress)
        return;
    m_progress = std::move(progress);
    emit progressChanged();
}

void AppState::setLatestLines(QList<TranslatedLine> lines) {
    if (lines == m_latestLines)
        return;
    m_latestLines = std::move(lines);
    emit latestLinesChanged();
}

void AppState::setResult(std::optional<JobResult> result) {
    if (!result && !m_result)
        return;
    m_result = std::move(result);
    emit resultChanged();
}

void AppState::setWarnings(QStringList warnings) {
    if (warnings == m_warnings)
        return;
    m_warnings = std::move(warnings);
    emit warningsChanged();
}

void AppState::setFfmpegStatus(std::optional<QString> status) {
    if (status == m_ffmpegStatus)
        return;
    m_ffmpegStatus = std::move(status);
    emit ffmpegStatusChanged();
}

void AppState::setFfmpegReady(bool ready) {
    if (ready == m_ffmpegReady)
        return;
    m_ffmpegReady = ready;
    emit ffmpegReadyChanged();
}

} // namespace velto
