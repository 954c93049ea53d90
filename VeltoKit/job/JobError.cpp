#include "VeltoKit/job/JobError.h"

#include <QDir>

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

JobError JobError::badOptions(const QString& message) {
    return JobError(Kind::badOptions, message);
}

JobError JobError::badOutput(const QString& message) {
    return JobError(Kind::badOutput, message);
}

JobError JobError::outputFolderReadOnly(const QString& folder) {
    return JobError(Kind::outputFolderReadOnly,
                    QStringLiteral("No tengo permiso para escribir en la carpeta «") +
                        QDir::toNativeSeparators(folder) +
                        QStringLiteral("». Elegí otra carpeta para guardar el resultado."));
}

JobError JobError::cacheUnavailable(const QString& folder) {
    return JobError(Kind::cacheUnavailable,
                    QStringLiteral("No puedo guardar el caché de traducciones en «") +
                        QDir::toNativeSeparators(folder) +
                        QStringLiteral("». Revisá los permisos de esa carpeta o desactivá el "
                                       "caché."));
}

} // namespace velto
