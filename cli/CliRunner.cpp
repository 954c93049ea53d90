#include "cli/CliRunner.h"

#include <QFileInfo>

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

// A folder that refuses the subtitle file is the original's: --output cannot move it.
QString readOnlyRemedy(const JobError& refusal, const JobOptions& options, const QString& video) {
    if (options.outputs == JobOutputs::video ||
        QFileInfo(refusal.folder()).absoluteFilePath() != QFileInfo(video).absolutePath())
        return QStringLiteral("Desde la terminal, elegí dónde guardarlo con --output ARCHIVO.");
    const QString besides = QStringLiteral("El subtítulo va siempre junto al video original: "
                                           "copiá el video a una carpeta donde se pueda escribir "
                                           "y traducí esa copia.");
    return options.outputs == JobOutputs::sidecarOnly
               ? besides
               : besides + QStringLiteral(" Sin --sidecar, el video nuevo puede ir a otra "
                                          "carpeta con --output ARCHIVO.");
}

// The way out of a refusal from a terminal, said under the job's sentence.
QString remedyFor(const VeltoError& error, const JobOptions& options, const QString& video) {
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
        return readOnlyRemedy(*refusal, options, video);
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
                m_reporter.failed(video, error.description(),
                                  remedyFor(error, m_options.job, video));
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
