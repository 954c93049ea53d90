#include "cli/CliRunner.h"

#include "VeltoKit/core/VeltoError.h"
#include "VeltoKit/job/CostEstimate.h"
#include "VeltoKit/job/JobError.h"
#include "VeltoKit/job/SourceTexts.h"
#include "VeltoKit/job/TranslationJob.h"
#include "VeltoKit/media/MediaInfo.h"
#include "cli/Reporter.h"
#include "cli/TerminalText.h"

namespace velto::cli {
namespace {

// The way out of a refusal from a terminal, said under the job's sentence.
QString remedyFor(const VeltoError& error) {
    const auto* refusal = dynamic_cast<const JobError*>(&error);
    if (!refusal)
        return {};
    switch (refusal->kind()) {
    case JobError::Kind::alreadySpanish:
        return QStringLiteral("Agregá --force si querés traducirlo de todos modos.");
    case JobError::Kind::noSourceTrack:
        return QStringLiteral("Elegí la pista con --track N (mirá los números con "
                              "--list-tracks).");
    case JobError::Kind::outputFolderReadOnly:
        return QStringLiteral("Desde la terminal, elegí dónde guardarlo con --output ARCHIVO.");
    case JobError::Kind::cacheUnavailable:
        return QStringLiteral("Desde la terminal, agregá --no-cache para traducir sin caché.");
    default:
        return {};
    }
}

// A Ctrl-C and a reader that went away both cancel; they end with different statuses.
int cancelStatus() {
    return outputClosed() ? outputGone : interrupted;
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
            if (runOne(video, stop) > 0 && status == success)
                status = partlyUntranslated;
        } catch (const Cancelled&) {
            m_reporter.cancelled(video);
            return cancelStatus();
        } catch (const VeltoError& error) {
            if (wasInterrupted()) {
                m_reporter.cancelled(video);
                return cancelStatus();
            }
            if (m_options.listTracks)
                m_reporter.listingFailed(video, error.description());
            else
                m_reporter.failed(video, error.description(), remedyFor(error));
            status = jobFailed;
        } catch (const std::exception& error) {
            m_reporter.failed(video, describeFailure(error), QString());
            status = jobFailed;
        }
    }
    return status;
}

qint64 CliRunner::runOne(const QString& video, std::stop_token stop) {
    if (m_options.listTracks) {
        m_reporter.tracks(video, m_ffmpeg.inspect(video, stop));
        return 0;
    }
    if (m_options.estimate) {
        const SourceTexts source = SourceTexts::read(m_ffmpeg, video, m_options.job, stop);
        m_reporter.estimated(video,
                             CostEstimate::make(source.texts, m_options.job, source.languageName));
        return 0;
    }
    const TranslationJob job(m_ffmpeg, m_backend, m_options.job, m_cacheDirectory);
    const JobResult result = job.run(
        video, [this](const JobUpdate& update) { m_reporter.update(update); }, stop);
    m_reporter.finished(video, result);
    return result.failedLines;
}

} // namespace velto::cli
