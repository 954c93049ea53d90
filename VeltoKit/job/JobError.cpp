#include "VeltoKit/job/JobError.h"

#include <QDir>

namespace velto {

JobError::JobError(Kind kind, QString description)
    : VeltoError(std::move(description))
    , m_kind(kind) {}

JobError JobError::noSourceTrack(const QString& languageName) {
    return JobError(Kind::noSourceTrack,
                    QStringLiteral("No encontré ninguna pista de subtítulos en ") + languageName +
                        u'.');
}

JobError JobError::unknownTrack(qint64 index) {
    JobError error(Kind::noSourceTrack,
                   QStringLiteral("El archivo no tiene ninguna pista de subtítulos con el número "
                                  "#") +
                       QString::number(index) + u'.');
    error.m_trackIndex = index;
    return error;
}

JobError JobError::bitmapOnly(const QStringList& codecs) {
    return JobError(Kind::bitmapOnly,
                    QStringLiteral("No hay subtítulos de texto para traducir. Las pistas "
                                   "disponibles son de imagen (") +
                        codecs.join(QStringLiteral(", ")) +
                        QStringLiteral(") y harían falta OCR."));
}

JobError JobError::imageTrack(qint64 index, const QString& codec) {
    JobError error(Kind::bitmapOnly, QStringLiteral("La pista #") + QString::number(index) +
                                         QStringLiteral(" es de imagen (") + codec +
                                         QStringLiteral(") y no se puede traducir sin OCR."));
    error.m_trackIndex = index;
    return error;
}

JobError JobError::noSubtitles() {
    return JobError(Kind::noSubtitles,
                    QStringLiteral("El archivo no tiene ninguna pista de subtítulos, no hay nada "
                                   "que traducir."));
}

JobError JobError::alreadySpanish() {
    return JobError(Kind::alreadySpanish,
                    QStringLiteral("El archivo ya tiene subtítulos en español."));
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
    JobError error(Kind::outputFolderReadOnly,
                   QStringLiteral("No tengo permiso para escribir en la carpeta «") +
                       QDir::toNativeSeparators(folder) +
                       QStringLiteral("». Elegí otra carpeta para guardar el resultado."));
    error.m_folder = folder;
    return error;
}

JobError JobError::cacheUnavailable(const QString& folder) {
    JobError error(Kind::cacheUnavailable,
                   QStringLiteral("No puedo guardar el caché de traducciones en «") +
                       QDir::toNativeSeparators(folder) +
                       QStringLiteral("». Revisá los permisos de esa carpeta o desactivá el "
                                      "caché."));
    error.m_folder = folder;
    return error;
}

} // namespace velto
