#include "VeltoKit/job/WorkingDirectory.h"

#include <QDir>
#include <QUuid>

#include "VeltoKit/core/VeltoError.h"

namespace velto {

WorkingDirectory::WorkingDirectory()
    : m_path(QDir(QDir::tempPath())
                 .filePath(QStringLiteral("veltomkv-") +
                           QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper())) {
    if (!QDir().mkpath(m_path)) {
        throw FileError(QStringLiteral("No pude crear la carpeta de trabajo «") +
                        QDir::toNativeSeparators(m_path) +
                        QStringLiteral("». Revisá el espacio libre del disco."));
    }
}

WorkingDirectory::~WorkingDirectory() {
    // A folder that cannot be removed is left to the system's cleaning of temporary files.
    QDir(m_path).removeRecursively();
}

QString WorkingDirectory::filePath(const QString& name) const {
    return QDir(m_path).filePath(name);
}

} // namespace velto
