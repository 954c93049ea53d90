#pragma once

#include <stop_token>

#include <QString>
#include <QStringList>

#include "VeltoKit/job/JobOptions.h"
#include "VeltoKit/media/FFmpeg.h"

namespace velto {

// The cue texts a job would send, read ahead of it: the same track, extracted and stripped as
// the job would, in a working directory that goes away at once. Nothing is translated.
struct SourceTexts {
    QStringList texts;
    // In Spanish, as the system prompt names it ("inglés").
    QString languageName;

    // Throws the job's refusals and the errors of the tools and documents; Cancelled on `stop`.
    static SourceTexts read(const FFmpeg& ffmpeg, const QString& source, const JobOptions& options,
                            std::stop_token stop);
};

} // namespace velto
