#include "VeltoKit/job/TranslationJob.h"

#include <algorithm>

#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>

#include "VeltoKit/core/VeltoError.h"
#include "VeltoKit/job/JobError.h"
#include "VeltoKit/job/WorkingDirectory.h"
#include "VeltoKit/media/Languages.h"
#include "VeltoKit/media/MediaInfo.h"
#include "VeltoKit/subtitles/StripSDH.h"
#include "VeltoKit/subtitles/SubtitleDocument.h"
#include "VeltoKit/subtitles/Subtitles.h"
#include "VeltoKit/translation/TranslationBackend.h"
#include "VeltoKit/translation/TranslationCache.h"
#include "VeltoKit/translation/Translator.h"

namespace velto {
namespace {

QString standardised(const QString& path) {
    return QDir::cleanPath(QFileInfo(path).absoluteFilePath());
}

bool sameFile(const QString& a, const QString& b) {
    if (standardised(a) == standardised(b))
        return true;
    // Also catches two spellings of one existing file through links.
    const QString canonicalA = QFileInfo(a).canonicalFilePath();
    return !canonicalA.isEmpty() && canonicalA == QFileInfo(b).canonicalFilePath();
}

QString imageCodecList(const MediaInfo& info) {
    QStringList codecs;
    for (const SubtitleTrack& track : info.tracks) {
        if (track.isBitmap() && !codecs.contains(track.codec))
            codecs.append(track.codec);
    }
    std::sort(codecs.begin(), codecs.end());
    return codecs.join(QStringLiteral(", "));
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
        , m_backend(backend)
        , m_options(options)
        , m_cacheDirectory(cacheDirectory)
        , m_source(source)
        , m_onUpdate(onUpdate)
        , m_stop(std::move(stop)) {
        m_clock.start();
    }

    JobResult run() {
        report(JobStage::analyzing, QFileInfo(m_source).fileName());
        checkSourceIsReadable();
        m_info = m_ffmpeg.inspect(m_source, m_stop);
        const SubtitleTrack track = chooseTrack();
        m_output = m_options.outputURL.value_or(
            TranslationJob::defaultOutputURL(m_source, QStringLiteral(".es")));
        if (sameFile(m_output, m_source))
            throw JobError::sameInputOutput();
        checkOutputFolder();

        const WorkingDirectory work;
        auto document = extract(track, work);
        if (m_options.stripSDH)
            document = strip(document);
        throwIfStopped(m_stop);
        report(JobStage::checking, m_backend->label());
        m_backend->preflight(m_stop);
        const QStringList translations = translate(*document, track);
        const QString subtitle = rebuild(*document, translations, work);
        report(JobStage::muxing, QFileInfo(m_output).fileName());
        m_ffmpeg.mux(m_source, subtitle, m_output, m_info.tracks.size(), muxOptions(), m_stop);
        report(JobStage::verifying, QString());
        m_result.finalTracks = m_ffmpeg.inspect(m_output, m_stop).tracks;
        report(JobStage::done, QFileInfo(m_output).fileName(), 1.0);
        m_result.outputURL = m_output;
        m_result.elapsed = static_cast<double>(m_clock.nsecsElapsed()) / 1e9;
        return m_result;
    }

private:
    void report(JobStage stage, const QString& detail, std::optional<double> progress = {}) {
        if (m_onUpdate)
            m_onUpdate(JobUpdate{stage, detail, progress});
    }

    // ffprobe would say the same in English, after a start-up; this says it in the user's words.
    void checkSourceIsReadable() const {
        const QFileInfo info(m_source);
        const QString name = QDir::toNativeSeparators(m_source);
        if (!info.exists())
            throw FileError(QStringLiteral("No encuentro el video «") + name +
                            QStringLiteral("»."));
        if (info.isDir()) {
            throw FileError(QStringLiteral("«") + name +
                            QStringLiteral("» es una carpeta. Elegí un archivo de video."));
        }
        if (!info.isReadable()) {
            throw FileError(QStringLiteral("No tengo permiso para leer «") + name +
                            QStringLiteral("»."));
        }
    }

    // Found out now rather than after the whole translation was paid for.
    void checkOutputFolder() const {
        const QFileInfo folder(QFileInfo(m_output).absolutePath());
        const QString name = QDir::toNativeSeparators(folder.filePath());
        if (!folder.isDir()) {
            throw FileError(QStringLiteral("La carpeta de salida «") + name +
                            QStringLiteral("» no existe."));
        }
        if (!folder.isWritable()) {
            throw FileError(QStringLiteral("No tengo permiso para escribir en la carpeta «") +
                            name + QStringLiteral("»."));
        }
    }

    SubtitleTrack chooseTrack() const {
        if (m_info.tracks.isEmpty())
            throw JobError::noSubtitles();
        if (m_info.spanishStatus() == SpanishStatus::full && !m_options.force)
            throw JobError::alreadySpanish();
        const std::optional<SubtitleTrack> chosen =
            m_options.forcedTrackIndex ? trackWithIndex(*m_options.forcedTrackIndex)
                                       : automaticChoice();
        if (chosen->isBitmap()) {
            throw JobError::bitmapOnly(QStringLiteral("La pista #") +
                                       QString::number(chosen->index) +
                                       QStringLiteral(" es de imagen (") + chosen->codec +
                                       QStringLiteral(") y no se puede traducir sin OCR."));
        }
        return *chosen;
    }

    std::optional<SubtitleTrack> trackWithIndex(qint64 index) const {
        for (const SubtitleTrack& track : m_info.tracks) {
            if (track.index == index)
                return track;
        }
        throw JobError::noSourceTrack(QStringLiteral("El archivo no tiene ninguna pista de "
                                                     "subtítulos con el número #") +
                                      QString::number(index) +
                                      QStringLiteral(". Elegí una pista de la lista."));
    }

    std::optional<SubtitleTrack> automaticChoice() const {
        const QString language = Languages::normalize(m_options.sourceLanguage);
        if (auto track = m_info.pickSource(language))
            return track;
        const bool anyText = std::any_of(m_info.tracks.begin(), m_info.tracks.end(),
                                         [](const SubtitleTrack& t) { return t.isText(); });
        if (!anyText) {
            throw JobError::bitmapOnly(
                QStringLiteral("No hay subtítulos de texto para traducir. Las pistas disponibles "
                               "son de imagen (") +
                imageCodecList(m_info) + QStringLiteral(") y harían falta OCR."));
        }
        throw JobError::noSourceTrack(
            QStringLiteral("No encontré ninguna pista de subtítulos en ") +
            Languages::displayName(language) +
            QStringLiteral(". Elegí una pista a mano en la lista."));
    }

    std::shared_ptr<SubtitleDocument> extract(const SubtitleTrack& track,
                                              const WorkingDirectory& work) {
        report(JobStage::extracting, track.summary());
        const QString path = m_ffmpeg.extract(track, m_source, work.path(), m_stop);
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
        if (!QDir().mkpath(m_cacheDirectory)) {
            throw FileError(QStringLiteral("No pude crear la carpeta del caché de traducciones «") +
                            QDir::toNativeSeparators(m_cacheDirectory) + QStringLiteral("»."));
        }
        QString name = QFileInfo(m_source).completeBaseName();
        name.replace(u'/', u'_');
        return std::make_shared<TranslationCache>(
            QDir(m_cacheDirectory).filePath(name + QStringLiteral(".json")),
            m_backend->cacheScope() + u'|' + rawValue(m_options.variant));
    }

    static QString sourceLanguageName(const SubtitleTrack& track) {
        return Languages::isKnown(track.language) ? Languages::displayName(track.language)
                                                  : QStringLiteral("inglés");
    }

    QStringList translate(const SubtitleDocument& document, const SubtitleTrack& track) {
        const Translator translator(m_backend, sourceLanguageName(track), m_options.variant,
                                    m_options.batchSize, m_options.contextLines,
                                    m_options.concurrency, openCache());
        const QStringList texts = document.texts();
        report(JobStage::translating, QString::number(texts.size()) + QStringLiteral(" subtítulos"),
               0.0);
        const Translator::Result result = translator.translateAll(
            texts,
            // The translator calls this one call at a time, from whichever thread finished.
            [&](const TranslationProgress& progress) {
                report(JobStage::translating, progressDetail(progress), progress.fraction());
            },
            m_stop);
        // Blank cues and drawings were kept, not translated.
        m_result.translatedCount = result.progress.total - result.progress.failed;
        m_result.failedLines = result.progress.failed;
        m_result.warnings = result.warnings;
        return result.translations;
    }

    QString rebuild(const SubtitleDocument& document, const QStringList& translations,
                    const WorkingDirectory& work) {
        throwIfStopped(m_stop);
        report(JobStage::rebuilding, QString());
        const std::unique_ptr<SubtitleDocument> rebuilt = document.clone();
        rebuilt->setTexts(translations);
        Subtitles::verifyTiming(document, *rebuilt);
        const QString path = work.filePath(QStringLiteral("es") + rebuilt->fileExtension());
        Subtitles::write(*rebuilt, path);
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
    const std::shared_ptr<const TranslationBackend>& m_backend;
    const JobOptions& m_options;
    const QString& m_cacheDirectory;
    const QString& m_source;
    const TranslationJob::UpdateHandler& m_onUpdate;
    std::stop_token m_stop;
    QElapsedTimer m_clock;
    MediaInfo m_info;
    QString m_output;
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

QString TranslationJob::defaultOutputURL(const QString& source, const QString& suffix) {
    const QFileInfo info(source);
    const QString extension = info.suffix().isEmpty() ? QStringLiteral("mkv") : info.suffix();
    const QString name = info.completeBaseName() + suffix + u'.' + extension;
    const QString directory = info.path();
    return directory == QStringLiteral(".") && !source.startsWith(QStringLiteral("./"))
               ? name
               : QDir(directory).filePath(name);
}

} // namespace velto
