#include "VeltoKit/job/SourceNames.h"

#include "VeltoKit/job/JobPlan.h"
#include "VeltoKit/job/WorkingDirectory.h"
#include "VeltoKit/media/FFmpeg.h"
#include "VeltoKit/subtitles/AssDocument.h"
#include "VeltoKit/subtitles/SubtitleDocument.h"
#include "VeltoKit/subtitles/Subtitles.h"
#include "VeltoKit/translation/NameCandidates.h"

namespace velto::SourceNames {

QStringList of(const FFmpeg& ffmpeg, const QString& source, const MediaInfo& info,
               const JobOptions& options, std::stop_token stop) {
    const JobPlan plan = JobPlan::make(source, info, options);
    // A file already in Spanish, or an output that needs changing, still has names to list.
    if (!plan.track || !plan.track->isText())
        throw plan.refusal.value_or(JobError::noSubtitles());
    const WorkingDirectory work;
    const QString path = ffmpeg.extract(*plan.track, source, work.path(), stop);
    const std::shared_ptr<SubtitleDocument> document = Subtitles::load(path, plan.track->codec);
    const auto* ass = dynamic_cast<const AssDocument*>(document.get());
    return NameCandidates::find(document->texts(), ass ? ass->actorNames() : QStringList());
}

QStringList of(const FFmpeg& ffmpeg, const QString& source, const JobOptions& options,
               std::stop_token stop) {
    return of(ffmpeg, source, ffmpeg.inspect(source, stop), options, stop);
}

} // namespace velto::SourceNames
