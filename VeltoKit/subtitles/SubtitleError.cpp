#include "VeltoKit/subtitles/SubtitleError.h"

namespace velto {

SubtitleError::SubtitleError(Kind kind, const QString& message)
    : VeltoError(message)
    , m_kind(kind) {}

SubtitleError SubtitleError::empty(const QString& message) {
    return SubtitleError(Kind::empty, message);
}

SubtitleError SubtitleError::timingChanged(const QString& message) {
    return SubtitleError(Kind::timingChanged, message);
}

SubtitleError SubtitleError::textCountMismatch(qsizetype expected, qsizetype received) {
    return empty(QStringLiteral("Se esperaban ") + QString::number(expected) +
                 QStringLiteral(" textos y llegaron ") + QString::number(received));
}

} // namespace velto
