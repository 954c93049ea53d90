#include "VeltoKit/job/TranslationJob.h"

#include <algorithm>

#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QTemporaryFile>

#include "VeltoKit/core/OwnerOnly.h"
#include "VeltoKit/core/VeltoError.h"
#include "VeltoKit/job/CostEstimate.h"
#include "VeltoKit/job/GlossaryReview.h"
#include "VeltoKit/job/JobError.h"
#include "VeltoKit/job/JobPlan.h"
#include "VeltoKit/job/MeteredBackend.h"
#include "VeltoKit/job/QualityCheck.h"
#include "VeltoKit/job/QualityReview.h"
#include "VeltoKit/job/SidecarFile.h"
#include "VeltoKit/job/WorkingDirectory.h"
#include "VeltoKit/subtitles/StripSDH.h"
#include "VeltoKit/subtitles/SubtitleDocument.h"
#include "VeltoKit/subtitles/Subtitles.h"
#include "VeltoKit/translation/TranslationBackend.h"
#include "VeltoKit/translation/TranslationCache.h"
#include "VeltoKit/translation/TranslationError.h"
#include "VeltoKit/translation/Translator.h"

namespace velto {
namespace {

// Tried rather than judged from permission bits, which root, ACLs and read-only disks defy.
bool canCreateFilesIn(const QString& folder) {
    QTemporaryFile probe(QDir(folder).filePath(QStringLiteral(".veltomkv-probe-XXXXXX")));
    return probe.open();
}

QString progressDetail(const TranslationProgress& progress) {
    QString detail =
        QString::number(progress.done) + QStringLiteral(" de ") + QString::number(progress.total);
    if (progress.cached >= 1)
        detail += QStringLiteral("  ·  ") + QString::number(progress.cached) +
                  QStringLiteral(" en caché");
    if (progress.failed >= 1)
        detail += QStringLiteral("  ·  ") + QString::number(progress.failed) +
                  QStringLiteral(" sin traducir");
    return detail;
}

// One run of a job: the steps in the order they happen, sharing what the earlier ones found.
class JobRun {
public:
    JobRun(const FFmpeg& ffmpeg, const std::shared_ptr<const TranslationBackend>& backend,
           const JobOptions& options, const QString& cacheDirectory, const QString& source,
           const TranslationJob::UpdateHandler& onUpdate, std::stop_token stop)
        : m_ffmpeg(ffmpeg)
        , m_meter(std::make_shared<MeteredBackend>(backend, options.price, options.maxCost,
                                                   options.useCache))
        , m_backend(m_meter)
        , m_options(options)
        , m_cacheDirectory(cacheDirectory)
        , m_source(source)
        , m_onUpdate(onUpdate)
        , m_stop(std::move(stop)) {
        m_clock.start();
    }

    JobResult run() {
        checkOptions();
        report(JobStage::analyzing, QFileInfo(m_source).fileName());
        m_plan = JobPlan::make(m_source, m_ffmpeg.inspect(m_source, m_stop), m_options);
        if (m_plan.refusal)
            throw *m_plan.refusal;
        checkOutputFolder();
        if (m_options.useCache)
            checkCacheFolder();

        const WorkingDirectory work;
        auto document = extract(*m_plan.track, work);
        if (m_options.stripSDH)
            document = strip(document);
        throwIfStopped(m_stop);
        report(JobStage::checking, m_backend->label());
        QElapsedTimer check;
        check.start();
        m_backend->preflight(m_stop);
        m_pace.latency = static_cast<double>(check.nsecsElapsed()) / 1e9;
        const QStringList translations = translate(*document);
        const QString subtitle = rebuild(*document, translations, work);
        std::optional<SidecarFile> sidecar;
        if (m_plan.sidecar)
            sidecar.emplace(*m_plan.sidecar, subtitle, *document);
        if (m_plan.output)
            writeVideo(*m_plan.output, subtitle);
        if (sidecar) {
            warnIfReplacing(sidecar->path());
            sidecar->commit();
            m_result.sidecarURL = sidecar->path();
        }
        const QString written = m_plan.writes().constFirst();
        report(JobStage::done, QFileInfo(written).fileName(), 1.0);
        m_result.outputURL = m_plan.output.value_or(QString());
        m_result.elapsed = static_cast<double>(m_clock.nsecsElapsed()) / 1e9;
        m_result.usage = m_meter->usage();
        m_result.requests = m_meter->requests();
        m_result.cost = m_meter->spent();
        return m_result;
    }

private:
    void report(JobStage stage, const QString& detail, std::optional<double> progress = {},
                std::optional<TranslationProgress> translation = {}) {
        if (m_onUpdate)
            m_onUpdate(JobUpdate{stage, detail, progress, std::move(translation)});
    }

    // The translator would refuse these in English, after the file was already probed.
    void checkOptions() const {
        const auto refuse = [](const QString& what, qint64 value) {
            throw JobError::badOptions(what + QStringLiteral(" (llegó ") + QString::number(value) +
                                       QStringLiteral(")."));
        };
        if (m_options.batchSize < 1)
            refuse(QStringLiteral("Cada pedido al motor tiene que llevar al menos 1 subtítulo"),
                   m_options.batchSize);
        if (m_options.concurrency < 1)
            refuse(QStringLiteral("Hace falta al menos 1 pedido al motor a la vez"),
                   m_options.concurrency);
        if (m_options.contextLines < 0)
            refuse(QStringLiteral("Las líneas de contexto no pueden ser menos de 0"),
                   m_options.contextLines);
        if (m_options.maxCost && !m_options.price)
            throw JobError::badOptions(QStringLiteral(
                "No sé cuánto cobra este modelo, así que no puedo cuidar el tope de gasto."));
    }

    void checkOutputFolder() const {
        for (const QString& file : m_plan.writes()) {
            const QString folder = QFileInfo(file).absolutePath();
            if (!QFileInfo(folder).isDir()) {
                throw FileError(QStringLiteral("La carpeta de salida «") +
                                QDir::toNativeSeparators(folder) + QStringLiteral("» no existe."));
            }
            if (!canCreateFilesIn(folder))
                throw JobError::outputFolderReadOnly(folder);
        }
    }

    void warnIfReplacing(const QString& file) {
        if (QFileInfo::exists(file))
            m_result.warnings.append(QStringLiteral("Ya existía «") +
                                     QDir::toNativeSeparators(file) +
                                     QStringLiteral("»: lo reemplacé por el nuevo."));
    }

    void writeVideo(const QString& output, const QString& subtitle) {
        report(JobStage::muxing, QFileInfo(output).fileName());
        warnIfReplacing(output);
        m_ffmpeg.mux(m_source, subtitle, output, m_plan.info.tracks.size(), muxOptions(), m_stop);
        report(JobStage::verifying, QString());
        m_result.finalTracks = m_ffmpeg.inspect(output, m_stop).tracks;
    }

    // The cache is written after every batch; a folder that refuses it would fail silently.
    void checkCacheFolder() const {
        if (!OwnerOnly::makeFolder(m_cacheDirectory) || !canCreateFilesIn(m_cacheDirectory))
            throw JobError::cacheUnavailable(m_cacheDirectory);
    }

    std::shared_ptr<SubtitleDocument> extract(const SubtitleTrack& track,
                                              const WorkingDirectory& work) {
        report(JobStage::extracting, track.summary());
        const QString path = m_ffmpeg.extract(track, m_source, work.path(), m_stop);
        OwnerOnly::closeFile(path);
        return Subtitles::load(path, track.codec);
    }

    std::shared_ptr<SubtitleDocument> strip(const std::shared_ptr<SubtitleDocument>& document) {
        report(JobStage::stripping, QString());
        StripSDH::Result stripped = StripSDH::apply(*document, m_options.stripParens);
        StripSDH::verifySubset(*document, *stripped.document);
        m_result.removedDescriptions = stripped.removed;
        return stripped.document;
    }

    std::shared_ptr<TranslationCache> openCache() const {
        if (!m_options.useCache)
            return nullptr;
        QString name = QFileInfo(m_source).completeBaseName();
        name.replace(u'/', u'_');
        return std::make_shared<TranslationCache>(
            QDir(m_cacheDirectory).filePath(name + QStringLiteral(".json")),
            m_backend->cacheScope() + u'|' + rawValue(m_options.variant));
    }

    // The season's list lives beside its videos; the one the front end gave replaces it.
    Glossary glossary() const {
        if (m_options.glossary)
            return *m_options.glossary;
        return Glossary::load(Glossary::pathIn(QFileInfo(m_source).absolutePath()));
    }

    void reportReview(qint64 asked, qint64 count) {
        report(JobStage::reviewing,
               QString::number(asked) + QStringLiteral(" de ") + QString::number(count),
               static_cast<double>(asked) / static_cast<double>(count));
    }

    QStringList translate(const SubtitleDocument& document) {
        const std::shared_ptr<TranslationCache> cache = openCache();
        const Translator translator(m_backend, m_plan.sourceLanguageName(), m_options.variant,
                                    m_options.batchSize, m_options.contextLines,
                                    m_options.concurrency, cache, glossary());
        const QStringList texts = document.texts();
        const QString count =
            QString::number(texts.size()) +
            (texts.size() == 1 ? QStringLiteral(" subtítulo") : QStringLiteral(" subtítulos"));
        if (m_onUpdate) {
            const auto isCached = [&](const QString& text) {
                return cache && cache->get(cache->key(text)).has_value();
            };
            JobUpdate announced{JobStage::translating, count, 0.0};
            announced.estimate =
                CostEstimate::make(texts, m_options, m_plan.sourceLanguageName(), m_pace, isCached);
            m_onUpdate(announced);
        }
        const Translator::Result result = translator.translateAll(
            texts,
            // The translator calls this one call at a time, from whichever thread finished.
            [&](const TranslationProgress& progress) {
                report(JobStage::translating, progressDetail(progress), progress.fraction(),
                       progress);
            },
            m_stop);
        return review(document, translator, cache, result);
    }

    // Counts are the written track's: a cue the second asking fixed is translated. A job whose
    // engine answered nothing at all writes nothing.
    QStringList review(const SubtitleDocument& document, const Translator& translator,
                       const std::shared_ptr<TranslationCache>& cache,
                       const Translator::Result& result) {
        const QualityReview::Outcome reviewed =
            QualityReview(translator, m_backend, m_options.concurrency, cache)
                .run(
                    document, result,
                    [&](qint64 asked, qint64 count) { reportReview(asked, count); }, m_stop);
        // Blank cues and drawings were kept, not translated.
        const qint64 sent = result.progress.total;
        if (sent > 0 && reviewed.untranslated == sent && !result.engineFailure.isEmpty())
            throw TranslationError::fatal(result.engineFailure);
        m_result.translatedCount = sent - reviewed.untranslated;
        m_result.failedLines = reviewed.untranslated;
        m_result.qualityFindings = reviewed.findings;
        m_result.warnings = reviewed.warnings;
        if (translator.glossary().isEmpty())
            return reviewed.translations;
        return reviewNames(document, translator, cache, reviewed.translations);
    }

    QStringList reviewNames(const SubtitleDocument& document, const Translator& translator,
                            const std::shared_ptr<TranslationCache>& cache,
                            const QStringList& translations) {
        GlossaryReview::Outcome checked =
            GlossaryReview(translator, m_backend, m_options.concurrency, cache)
                .run(
                    document, translations,
                    [&](qint64 asked, qint64 count) { reportReview(asked, count); }, m_stop);
        m_result.qualityFindings += checked.findings;
        std::stable_sort(m_result.qualityFindings.begin(), m_result.qualityFindings.end(),
                         [](const auto& a, const auto& b) { return a.cue.number < b.cue.number; });
        m_result.warnings += QualityCheck::warnings(checked.findings);
        return checked.translations;
    }

    QString rebuild(const SubtitleDocument& document, const QStringList& translations,
                    const WorkingDirectory& work) {
        throwIfStopped(m_stop);
        report(JobStage::rebuilding, QString());
        const std::unique_ptr<SubtitleDocument> rebuilt = document.clone();
        rebuilt->setTexts(translations);
        Subtitles::verifyTiming(document, *rebuilt);
        const QString path = work.filePath(QStringLiteral("es") + rebuilt->fileExtension());
        // It lives in the working directory and goes with it.
        Subtitles::write(*rebuilt, path, Subtitles::Keeping::scratch);
        OwnerOnly::closeFile(path);
        // Proves the file that goes into the video, not only the object it came from.
        Subtitles::verifyTiming(document, *Subtitles::load(path, rebuilt->kind()));
        return path;
    }

    MuxOptions muxOptions() const {
        MuxOptions options;
        options.language = QStringLiteral("spa");
        options.title = m_options.trackTitle;
        options.makeDefault = m_options.makeDefault;
        options.forced = false;
        return options;
    }

    const FFmpeg& m_ffmpeg;
    const std::shared_ptr<const MeteredBackend> m_meter;
    const std::shared_ptr<const TranslationBackend> m_backend;
    const JobOptions& m_options;
    const QString& m_cacheDirectory;
    const QString& m_source;
    const TranslationJob::UpdateHandler& m_onUpdate;
    std::stop_token m_stop;
    QElapsedTimer m_clock;
    JobPlan m_plan;
    // The latency is the self-check's.
    EnginePace m_pace;
    JobResult m_result;
};

} // namespace

TranslationJob::TranslationJob(FFmpeg ffmpeg, std::shared_ptr<const TranslationBackend> backend,
                               JobOptions options, QString cacheDirectory)
    : m_ffmpeg(std::move(ffmpeg))
    , m_backend(std::move(backend))
    , m_options(std::move(options))
    , m_cacheDirectory(std::move(cacheDirectory)) {}

JobResult TranslationJob::run(const QString& source, const UpdateHandler& onUpdate,
                              std::stop_token stop) const {
    return JobRun(m_ffmpeg, m_backend, m_options, m_cacheDirectory, source, onUpdate,
                  std::move(stop))
        .run();
}

} // namespace velto
