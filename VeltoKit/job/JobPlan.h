#pragma once

#include <optional>

#include <QString>
#include <QStringList>

#include "VeltoKit/job/JobError.h"
#include "VeltoKit/job/JobOptions.h"
#include "VeltoKit/media/MediaInfo.h"

namespace velto {

// What a job will do with one probed video, decided in one place: which track it translates,
// from which language, and what it writes where. Front ends show it before the job starts; the
// job runs exactly this. Making one never fails: a plan the job would refuse carries the refusal.
struct JobPlan {
    QString source;
    MediaInfo info;
    // The track to translate; absent when none qualifies.
    std::optional<SubtitleTrack> track;
    // Where the copy goes: the one asked for, else beside the source (see defaultOutputURL);
    // none when only the subtitle file is written.
    std::optional<QString> output;
    // The subtitle file beside the source (see sidecarURL); none when it is not asked for.
    std::optional<QString> sidecar;
    // The first reason the job would give for not running, in the order it checks.
    std::optional<JobError> refusal;

    static JobPlan make(const QString& source, const MediaInfo& info, const JobOptions& options);

    // The language named in the prompt: the track's, in Spanish, or "inglés" when unknown.
    QString sourceLanguageName() const;

    // "a/Movie.mkv" gives "a/Movie.es.mkv"; a source without extension, or in a container the
    // mux cannot write (.avi, .webm), gets an MKV.
    static QString defaultOutputURL(const QString& source);

    // Named as media servers pair a subtitle file with its video: "a/Film.mkv" gives
    // "a/Film.es.srt", or "a/Film.es.ass" when the track's codec is ASS or SSA, whose styles an
    // SRT would lose. "es" for every variant: see the README.
    static QString sidecarURL(const QString& source, const QString& codec);

    // What the job writes, the video first; each one replaces a file of that name.
    QStringList writes() const;
};

} // namespace velto
