#pragma once

#include "VeltoKit/core/VeltoError.h"

namespace velto {

// The job's refusals, raised before anything is written.
class JobError : public VeltoError {
public:
    enum class Kind {
        noSourceTrack,
        bitmapOnly,
        noSubtitles,
        alreadySpanish,
        sameInputOutput,
        badOptions,
        badOutput,
        outputFolderReadOnly,
        cacheUnavailable,
    };

    // These two carry the message the pipeline built, which names the language or the codecs.
    static JobError noSourceTrack(const QString& message);
    static JobError bitmapOnly(const QString& message);
    static JobError noSubtitles();
    static JobError alreadySpanish();
    static JobError sameInputOutput();
    // A number the engine cannot work with, said before anything starts.
    static JobError badOptions(const QString& message);
    // An output that is a folder, or whose extension names no container the mux can write.
    static JobError badOutput(const QString& message);
    static JobError outputFolderReadOnly(const QString& folder);
    static JobError cacheUnavailable(const QString& folder);

    Kind kind() const { return m_kind; }

private:
    JobError(Kind kind, QString description);

    Kind m_kind;
};

} // namespace velto
