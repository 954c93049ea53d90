#pragma once

#include <stop_token>

#include <QString>
#include <QStringList>

#include "VeltoKit/job/JobOptions.h"
#include "VeltoKit/media/MediaInfo.h"

namespace velto {

struct FFmpeg;

// The candidate names of the track a job would translate, before anything is sent: what the
// list «Nombres y términos» starts from.
namespace SourceNames {

// Extracts the track the plan for `info` chooses into a temporary folder and reads its names
// (NameCandidates). Throws the plan's refusal, the tools' and the document's errors, or
// Cancelled.
QStringList of(const FFmpeg& ffmpeg, const QString& source, const MediaInfo& info,
               const JobOptions& options, std::stop_token stop);

// The same, probing `source` first.
QStringList of(const FFmpeg& ffmpeg, const QString& source, const JobOptions& options,
               std::stop_token stop);

} // namespace SourceNames
} // namespace velto
