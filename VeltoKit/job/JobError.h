#pragma once

#include "VeltoKit/core/VeltoError.h"

namespace velto {

// The job's refusals, raised before anything is written.
class JobError : public VeltoError {
public:
    enum class Kind { noSourceTrack, bitmapOnly, noSubtitles, alreadySpanish, sameInputOutput };

    // These two carry the message the pipeline built, which names the language or the codecs.
    static JobError noSourceTrack(const QString& message);
    static JobError bitmapOnly(const QString& message);
    static JobError noSubtitles();
    static JobError alreadySpanish();
    static JobError sameInputOutput();

    Kind kind() const { return m_kind; }

private:
    JobError(Kind kind, QString description);

    Kind m_kind;
};

} // namespace velto
