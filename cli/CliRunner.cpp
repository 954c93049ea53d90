#include "cli/CliRunner.h"

#include "VeltoKit/core/VeltoError.h"
#include "VeltoKit/job/JobError.h"
#include "VeltoKit/job/TranslationJob.h"
#include "VeltoKit/media/MediaInfo.h"
#include "cli/Reporter.h"

namespace velto::cli {
namespace {

// The job's messages speak of the window's controls; this names the option that does the same.
QString hintFor(const VeltoError& error) {
    const auto* refusal = dynamic_cast<const JobError*>(&error);
    if (refusal && refusal->kind() == JobError::Kind::alreadySpanish)
        return QStringLiteral("Desde la terminal, agregá --force.");
    if (refusal && refusal->kind() == JobError::Kind::noSourceTrack)
        return QStringLiteral("Desde la terminal, elegí la pista con --track N (mirá los números "
                              "con --list-tracks).");
    return {};
}

} // namespace

CliRunner::CliRunner(CliOptions options, FFmpeg ffmpeg,
                     std::shared_ptr<const TranslationBackend> backend, QString cacheDirectory,
                     Reporter& reporter)
    : m_options(std::move(options))
    , m_ffmpeg(std::move(ffmpeg))
    , m_backend(std::move(backend))
    , m_cacheDirectory(std::move(cacheDirectory))
    , m_reporter(reporter) {}

int CliRunner::run(std::stop_token stop, const std::function<bool()>& wasInterrupted) {
    int status = success;
    for (const QString& video : m_options.videos) {
        m_reporter.started(video);
        try {
            runOne(video, stop);
        } catch (const Cancelled&) {
            m_reporter.cancelled(video);
            return interrupted;
        } catch (const VeltoError& error) {
            if (wasInterrupted()) {
                m_reporter.cancelled(video);
                return interrupted;
            }
            m_reporter.failed(video, error.description(), hintFor(error));
            status = jobFailed;
        } catch (const std::exception& error) {
            m_reporter.failed(video,
                              QStringLiteral("Falló algo inesperado: ") +
                                  QString::fromLocal8Bit(error.what()),
                              QString());
            status = jobFailed;
        }
    }
    return status;
}

void CliRunner::runOne(const QString& video, std::stop_token stop) {
    if (m_options.listTracks) {
        m_reporter.tracks(video, m_ffmpeg.inspect(video, stop));
        return;
    }
    const TranslationJob job(m_ffmpeg, m_backend, m_options.job, m_cacheDirectory);
    const JobResult result = job.run(
        video, [this](const JobUpdate& update) { m_reporter.update(update); }, stop);
    m_reporter.finished(video, result);
}

} // namespace velto::cli
