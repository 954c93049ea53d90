#include "VeltoKit/core/OwnerOnly.h"

#include <QDir>
#include <QFile>
#include <QFileDevice>

namespace velto::OwnerOnly {

namespace {

constexpr QFile::Permissions folderPermissions = QFile::ReadOwner | QFile::WriteOwner |
                                                 QFile::ExeOwner | QFile::ReadUser |
                                                 QFile::WriteUser | QFile::ExeUser;
constexpr QFile::Permissions filePermissions =
    QFile::ReadOwner | QFile::WriteOwner | QFile::ReadUser | QFile::WriteUser;

} // namespace

bool makeFolder(const QString& path) {
    return QDir().mkpath(path) && closeFolder(path);
}

bool closeFolder(const QString& path) {
    return QFile::setPermissions(path, folderPermissions);
}

bool closeFile(const QString& path) {
    return QFile::setPermissions(path, filePermissions);
}

bool closeFile(QFileDevice& file) {
    return file.setPermissions(filePermissions);
}

} // namespace velto::OwnerOnly
