#include "VeltoKit/job/SidecarFile.h"

#include <filesystem>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QUuid>

#include "VeltoKit/core/VeltoError.h"
#include "VeltoKit/subtitles/SubtitleDocument.h"
#include "VeltoKit/subtitles/Subtitles.h"

namespace velto {
namespace {

// Hidden and unique, keeping the extension that tells the reader SRT from ASS.
QString hiddenPathBeside(const QString& path) {
    const QFileInfo info(path);
    const QString random = QUuid::createUuid().toString(QUuid::Id128).left(12);
    return info.absoluteDir().filePath(u'.' + info.completeBaseName() +
                                       QStringLiteral(".partial-") + random + u'.' + info.suffix());
}

FileError unsaved(const QString& path, const QString& why) {
    return FileError(QStringLiteral("No pude guardar el subtítulo como «") +
                     QFileInfo(path).fileName() + QStringLiteral("»: ") + why);
}

QByteArray readAll(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw FileError(QStringLiteral("No pude leer «") + QFileInfo(path).fileName() +
                        QStringLiteral("»: el sistema respondió «") + file.errorString() +
                        QStringLiteral("»."));
    return file.readAll();
}

} // namespace

SidecarFile::SidecarFile(QString path, const QString& verified, const SubtitleDocument& source)
    : m_path(std::move(path))
    , m_hidden(hiddenPathBeside(m_path))
    , m_listed(std::make_unique<Leftovers::Path>(m_hidden)) {
    const QByteArray bytes = readAll(verified);
    // Flushed to the disk before it can appear under its name.
    QSaveFile file(m_hidden);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit())
        throw unsaved(m_path, QStringLiteral("el sistema respondió «") + file.errorString() +
                                  QStringLiteral("»."));
    try {
        // The proof is about the bytes on the disk, not the ones we meant to write.
        Subtitles::verifyTiming(source, *Subtitles::load(m_hidden, source.kind()));
    } catch (...) {
        QFile::remove(m_hidden);
        throw;
    }
}

SidecarFile::~SidecarFile() {
    if (!m_hidden.isEmpty())
        QFile::remove(m_hidden);
}

void SidecarFile::commit() {
    std::error_code error;
    std::filesystem::rename(std::filesystem::path(m_hidden.toStdU16String()),
                            std::filesystem::path(m_path.toStdU16String()), error);
    if (error)
        throw unsaved(m_path, QStringLiteral("revisá que se pueda escribir en esa carpeta."));
    m_hidden.clear();
}

} // namespace velto
