#pragma once

#include <functional>
#include <memory>
#include <stop_token>

#include <QString>

#include "VeltoKit/job/JobOptions.h"
#include "VeltoKit/job/JobResult.h"
#include "VeltoKit/job/JobUpdate.h"
#include "VeltoKit/media/FFmpeg.h"

namespace velto {

class TranslationBackend;

// Turns one video into a copy with a new Spanish subtitle track. The source is only read;
// everything of a run lives in a working directory that is removed on every way out, and the
// translation cache is the one thing that outlives it, so that a retry in the same run of the
// program (after a cancel or a failure) skips what was finished.
class TranslationJob {
public:
    using UpdateHandler = std::function<void(const JobUpdate&)>;

    TranslationJob(FFmpeg ffmpeg, std::shared_ptr<const TranslationBackend> backend,
                   JobOptions options, QString cacheDirectory);

    // Throws JobError for the refusals, and the errors of the tools, documents, stripping and
    // engine unchanged; Cancelled when `stop` is requested.
    JobResult run(const QString& source, const UpdateHandler& onUpdate, std::stop_token stop) const;

    const JobOptions& options() const { return m_options; }

private:
    FFmpeg m_ffmpeg;
    std::shared_ptr<const TranslationBackend> m_backend;
    JobOptions m_options;
    QString m_cacheDirectory;
};

} // namespace velto
