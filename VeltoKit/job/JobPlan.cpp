#include "VeltoKit/job/JobPlan.h"

#include <algorithm>

#include <QDir>
#include <QFileInfo>

#include "VeltoKit/media/FFmpeg.h"
#include "VeltoKit/media/Languages.h"

namespace velto {
namespace {

// Beside the source, before its extension: "Movie.es.mkv", "Movie.es.srt". Jellyfin, Plex and
// Kodi all read "es" as Spanish in a subtitle file's name.
const QString outputSuffix = QStringLiteral(".es");

// The path as given when it lies in the current folder without saying so, like the source.
QString beside(const QString& source, const QString& name) {
    const QString directory = QFileInfo(source).path();
    return directory == QStringLiteral(".") && !source.startsWith(QStringLiteral("./"))
               ? name
               : QDir(directory).filePath(name);
}

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

QStringList imageCodecs(const MediaInfo& info) {
    QStringList codecs;
    for (const SubtitleTrack& track : info.tracks) {
        if (track.isBitmap() && !codecs.contains(track.codec))
            codecs.append(track.codec);
    }
    std::sort(codecs.begin(), codecs.end());
    return codecs;
}

std::optional<SubtitleTrack> trackWithIndex(const MediaInfo& info, qint64 index) {
    for (const SubtitleTrack& track : info.tracks) {
        if (track.index == index)
            return track;
    }
    return std::nullopt;
}

bool anyText(const MediaInfo& info) {
    return std::any_of(info.tracks.begin(), info.tracks.end(),
                       [](const SubtitleTrack& track) { return track.isText(); });
}

// Why the chosen track (or the lack of one) cannot be translated.
std::optional<JobError> trackRefusal(const JobPlan& plan, const JobOptions& options) {
    if (options.forcedTrackIndex && !plan.track)
        return JobError::unknownTrack(*options.forcedTrackIndex);
    if (!plan.track && !anyText(plan.info))
        return JobError::bitmapOnly(imageCodecs(plan.info));
    if (!plan.track)
        return JobError::noSourceTrack(
            Languages::displayName(Languages::normalize(options.sourceLanguage)));
    if (plan.track->isBitmap())
        return JobError::imageTrack(plan.track->index, plan.track->codec);
    return std::nullopt;
}

std::optional<JobError> refusalOf(const JobPlan& plan, const JobOptions& options) {
    if (plan.info.tracks.isEmpty())
        return JobError::noSubtitles();
    if (plan.info.spanishStatus() == SpanishStatus::full && !options.force)
        return JobError::alreadySpanish();
    if (auto refused = trackRefusal(plan, options))
        return refused;
    if (!plan.output)
        return std::nullopt;
    if (sameFile(*plan.output, plan.source))
        return JobError::sameInputOutput();
    if (const auto problem = FFmpeg::outputProblem(*plan.output, plan.info))
        return JobError::badOutput(*problem);
    return std::nullopt;
}

} // namespace

JobPlan JobPlan::make(const QString& source, const MediaInfo& info, const JobOptions& options) {
    JobPlan plan;
    plan.source = source;
    plan.info = info;
    plan.track = options.forcedTrackIndex
                     ? trackWithIndex(info, *options.forcedTrackIndex)
                     : info.pickSource(Languages::normalize(options.sourceLanguage));
    if (writesVideo(options.outputs))
        plan.output = options.outputURL.value_or(defaultOutputURL(source));
    if (writesSidecar(options.outputs))
        plan.sidecar = sidecarURL(source, plan.track ? plan.track->codec : QString());
    plan.refusal = refusalOf(plan, options);
    return plan;
}

QString JobPlan::sourceLanguageName() const {
    return track && Languages::isKnown(track->language) ? Languages::displayName(track->language)
                                                        : QStringLiteral("inglés");
}

QString JobPlan::defaultOutputURL(const QString& source) {
    const QFileInfo info(source);
    QString extension = info.suffix().isEmpty() ? QStringLiteral("mkv") : info.suffix();
    if (!FFmpeg::writesContainer(extension))
        extension = QStringLiteral("mkv");
    return beside(source, info.completeBaseName() + outputSuffix + u'.' + extension);
}

QString JobPlan::sidecarURL(const QString& source, const QString& codec) {
    const QString lower = codec.toLower();
    const bool styled = lower == QStringLiteral("ass") || lower == QStringLiteral("ssa");
    return beside(source, QFileInfo(source).completeBaseName() + outputSuffix +
                              (styled ? QStringLiteral(".ass") : QStringLiteral(".srt")));
}

QStringList JobPlan::writes() const {
    QStringList files;
    if (output)
        files.append(*output);
    if (sidecar)
        files.append(*sidecar);
    return files;
}

} // namespace velto
