#include "VeltoKit/subtitles/Subtitles.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include "VeltoKit/core/VeltoError.h"
#include "VeltoKit/subtitles/AssDocument.h"
#include "VeltoKit/subtitles/SrtDocument.h"
#include "VeltoKit/subtitles/SubtitleError.h"
#include "VeltoKit/subtitles/TextDecoder.h"

namespace velto::Subtitles {

namespace {

QString quotedName(const QString& path) {
    return u'«' + QFileInfo(path).fileName() + u'»';
}

// Qt's own explanation is English; it goes in quotes inside our sentence.
QString systemSaid(const QFileDevice& file) {
    return QStringLiteral("el sistema respondió «") + file.errorString() + QStringLiteral("».");
}

QString whyUnreadable(const QString& path, const QFile& file) {
    const QFileInfo info(path);
    if (!info.exists())
        return QStringLiteral("el archivo no existe.");
    if (info.isDir())
        return QStringLiteral("es una carpeta, no un archivo.");
    if (file.error() == QFileDevice::PermissionsError)
        return QStringLiteral("no tengo permiso para leerlo.");
    return systemSaid(file);
}

QString whyUnwritable(const QString& path, const QFileDevice& file) {
    const QFileInfo info(path);
    if (!info.absoluteDir().exists())
        return QStringLiteral("la carpeta no existe.");
    if (info.isDir())
        return QStringLiteral("ya hay una carpeta con ese nombre.");
    if (file.error() == QFileDevice::PermissionsError)
        return QStringLiteral("no tengo permiso para escribir ahí.");
    return systemSaid(file);
}

bool isAss(const QString& path, const QString& codec) {
    const QString lowerCodec = codec.toLower();
    const QString name = QFileInfo(path).fileName().toLower();
    return lowerCodec == u"ass" || lowerCodec == u"ssa" || name.endsWith(u".ass") ||
           name.endsWith(u".ssa");
}

} // namespace

QString readText(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw FileError(QStringLiteral("No pude leer ") + quotedName(path) + QStringLiteral(": ") +
                        whyUnreadable(path, file));
    const QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError)
        throw FileError(QStringLiteral("No pude leer ") + quotedName(path) + QStringLiteral(": ") +
                        systemSaid(file));
    return TextDecoder::decode(bytes);
}

std::shared_ptr<SubtitleDocument> load(const QString& path, const QString& codec) {
    const QString text = readText(path);
    if (isAss(path, codec))
        return std::make_shared<AssDocument>(AssDocument::parse(text));
    return std::make_shared<SrtDocument>(SrtDocument::parse(text));
}

void write(const SubtitleDocument& document, const QString& path, Keeping keeping) {
    const QByteArray bytes = document.render().toUtf8();
    const auto fail = [&](const QFileDevice& file) {
        return FileError(QStringLiteral("No pude guardar ") + quotedName(path) +
                         QStringLiteral(": ") + whyUnwritable(path, file));
    };
    if (keeping == Keeping::scratch) {
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) ||
            file.write(bytes) != bytes.size() || !file.flush())
            throw fail(file);
        return;
    }
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit())
        throw fail(file);
}

void verifyTiming(const SubtitleDocument& source, const SubtitleDocument& rebuilt) {
    const QList<TimingSignature> before = source.timingSignature();
    const QList<TimingSignature> after = rebuilt.timingSignature();
    if (before.size() != after.size())
        throw SubtitleError::timingChanged(QStringLiteral("Cambió la cantidad de eventos: ") +
                                           QString::number(before.size()) + QStringLiteral(" -> ") +
                                           QString::number(after.size()));
    for (qsizetype i = 0; i < before.size(); ++i) {
        if (before[i] != after[i])
            throw SubtitleError::timingChanged(
                QStringLiteral("Los tiempos cambiaron en el evento ") + QString::number(i + 1) +
                QStringLiteral(": ") + before[i].toListNotation() + QStringLiteral(" -> ") +
                after[i].toListNotation());
    }
}

} // namespace velto::Subtitles
