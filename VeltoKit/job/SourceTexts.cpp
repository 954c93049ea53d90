#include "VeltoKit/job/SourceTexts.h"

#include "VeltoKit/job/JobPlan.h"
#include "VeltoKit/job/WorkingDirectory.h"
#include "VeltoKit/subtitles/StripSDH.h"
#include "VeltoKit/subtitles/SubtitleDocument.h"
#include "VeltoKit/subtitles/Subtitles.h"

namespace velto {

SourceTexts SourceTexts::read(const FFmpeg& ffmpeg, const QString& source,
                              const JobOptions& options, std::stop_token stop) {
    const JobPlan plan = JobPlan::make(source, ffmpeg.inspect(source, stop), options);
    if (plan.refusal)
        throw *plan.refusal;
    const WorkingDirectory work;
    const QString path = ffmpeg.extract(*plan.track, source, work.path(), stop);
    std::shared_ptr<SubtitleDocument> document = Subtitles::load(path, plan.track->codec);
    if (options.stripSDH)
        document = StripSDH::apply(*document, options.stripParens).document;
    return {document->texts(), plan.sourceLanguageName()};
}

} // namespace velto
