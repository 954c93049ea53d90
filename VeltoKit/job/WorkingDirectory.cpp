#include "VeltoKit/job/WorkingDirectory.h"

#include <filesystem>
#include <system_error>

#include <QDir>
#include <QUuid>

#include "VeltoKit/core/OwnerOnly.h"
#include "VeltoKit/core/VeltoError.h"

namespace velto {
namespace {

#if defined(Q_OS_WIN)
constexpr auto temporaryVariable = "TEMP";
#else
constexpr auto temporaryVariable = "TMPDIR";
#endif

// The cause decides what the user can do: fix a setting, a permission or the free space.
FileError creationFailure(const QString& parent, const QString& path, std::error_code error) {
    const QString variable = QString::fromLatin1(temporaryVariable);
    const QString folder = QStringLiteral("«") + QDir::toNativeSeparators(parent) + u'»';
    if (error == std::errc::no_space_on_device) {
        return FileError(
            QStringLiteral("No pude crear la carpeta de trabajo «") +
            QDir::toNativeSeparators(path) +
            QStringLiteral("»: el disco está lleno. Liberá espacio y probá de nuevo."));
    }
    if (error == std::errc::permission_denied || error == std::errc::operation_not_permitted ||
        error == std::errc::read_only_file_system) {
        return FileError(QStringLiteral("No tengo permiso para escribir en la carpeta temporal ") +
                         folder +
                         QStringLiteral(". Revisá sus permisos o elegí otra con la "
                                        "variable ") +
                         variable + u'.');
    }
    return FileError(QStringLiteral("La carpeta temporal ") + folder +
                     QStringLiteral(" no existe o no es una carpeta. Revisá la variable ") +
                     variable + u'.');
}

} // namespace

WorkingDirectory::WorkingDirectory() {
    // Qt answers an empty path for a TMPDIR that is missing or relative; the path would then be
    // relative and the folder would land wherever the program runs.
    const QString parent = QDir::tempPath();
    if (parent.isEmpty()) {
        throw creationFailure(qEnvironmentVariable(temporaryVariable), QString(),
                              std::make_error_code(std::errc::no_such_file_or_directory));
    }
    m_path = QDir(parent).filePath(QStringLiteral("veltomkv-") +
                                   QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper());
    m_listed = std::make_unique<Leftovers::Path>(m_path);
    std::error_code error;
    std::filesystem::create_directories(m_path.toStdU16String(), error);
    if (error)
        throw creationFailure(parent, m_path, error);
    // Still empty: nobody else can have seen anything in it.
    if (!OwnerOnly::closeFolder(m_path))
        throw creationFailure(parent, m_path, std::make_error_code(std::errc::permission_denied));
}

WorkingDirectory::~WorkingDirectory() {
    // A folder that cannot be removed is left to the system's cleaning of temporary files.
    QDir(m_path).removeRecursively();
}

QString WorkingDirectory::filePath(const QString& name) const {
    return QDir(m_path).filePath(name);
}

} // namespace velto
