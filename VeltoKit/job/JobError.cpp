#include "VeltoKit/job/JobError.h"

namespace velto {

JobError::JobError(Kind kind, QString description)
    : VeltoError(std::move(description))
    , m_kind(kind) {}

JobError JobError::noSourceTrack(const QString& message) {
    return JobError(Kind::noSourceTrack, message);
}

JobError JobError::bitmapOnly(const QString& message) {
    return JobError(Kind::bitmapOnly, message);
}

JobError JobError::noSubtitles() {
    return JobError(Kind::noSubtitles,
                    QStringLiteral("El archivo no tiene ninguna pista de subtítulos, no hay nada "
                                   "que traducir."));
}

JobError JobError::alreadySpanish() {
    return JobError(Kind::alreadySpanish,
                    QStringLiteral("El archivo ya tiene subtítulos en español. Activá «Traducir "
                                   "igual» si querés hacerlo de todos modos."));
}

JobError JobError::sameInputOutput() {
    return JobError(Kind::sameInputOutput,
                    QStringLiteral("La salida no puede ser el mismo archivo que la entrada."));
}

} // namespace velto
