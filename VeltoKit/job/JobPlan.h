#pragma once

#include <optional>

#include <QString>

#include "VeltoKit/job/JobError.h"
#include "VeltoKit/job/JobOptions.h"
#include "VeltoKit/media/MediaInfo.h"

namespace velto {

// What a job will do with one probed video, decided in one place: which track it translates,
// from which language, and where the copy goes. Front ends show it before the job starts; the
// job runs exactly this. Making one never fails: a plan the job would refuse carries the refusal.
struct JobPlan {
    QString source;
    MediaInfo info;
    // The track to translate; absent when none qualifies.
    std::optional<SubtitleTrack> track;
    // Where the copy goes: the one asked for, else beside the source (see defaultOutputURL).
    QString output;
    // The first reason the job would give for not running, in the order it checks.
    std::optional<JobError> refusal;

    static JobPlan make(const QString& source, const MediaInfo& info, const JobOptions& options);

    // The language named in the prompt: the track's, in Spanish, or "inglés" when unknown.
    QString sourceLanguageName() const;

    // "a/Movie.mkv" gives "a/Movie.es.mkv"; a source without extension, or in a container the
    // mux cannot write (.avi, .webm), gets an MKV.
    static QString defaultOutputURL(const QString& source);
};

} // namespace velto
