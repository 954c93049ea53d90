#pragma once

#include "VeltoKit/core/VeltoError.h"

namespace velto {

// A document with nothing to translate (or a text count that does not match), or a rebuilt
// document whose timings drifted from the source's. The description is the message as given.
class SubtitleError : public VeltoError {
public:
    enum class Kind { empty, timingChanged };

    static SubtitleError empty(const QString& message);
    static SubtitleError timingChanged(const QString& message);
    // setTexts got the wrong number of texts: "Se esperaban N textos y llegaron M".
    static SubtitleError textCountMismatch(qsizetype expected, qsizetype received);

    Kind kind() const { return m_kind; }

private:
    SubtitleError(Kind kind, const QString& message);

    Kind m_kind;
};

} // namespace velto
