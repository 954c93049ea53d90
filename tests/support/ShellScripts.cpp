#include "support/ShellScripts.h"

#include <stdexcept>

#include <QFile>

namespace velto {

QString writeShellScript(const QString& path, const QString& body) {
    QFile file(path);
    const QByteArray text = "#!/bin/sh\n" + body.toUtf8() + '\n';
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size() ||
        !file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner |
                             QFile::ReadGroup | QFile::ExeGroup | QFile::ReadOther |
                             QFile::ExeOther))
        throw std::runtime_error("cannot write the script " + path.toStdString());
    return path;
}

} // namespace velto
