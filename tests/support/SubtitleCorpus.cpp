#include "support/SubtitleCorpus.h"

#include <QDirIterator>
#include <QFileInfo>
#include <QRegularExpression>
#include <QStringList>

#include "VeltoKit/subtitles/Subtitles.h"

namespace velto::SubtitleCorpus {

namespace {

// Files without an extension are judged by their content.
QString codecFor(const QString& path, const QString& text) {
    const QString suffix = QFileInfo(path).suffix().toLower();
    if (suffix == u"ass" || suffix == u"ssa")
        return QStringLiteral("ass");
    if (suffix == u"srt")
        return QStringLiteral("subrip");
    static const QRegularExpression assLine(QStringLiteral("^\\s*(\\[script info\\]|dialogue:)"),
                                            QRegularExpression::CaseInsensitiveOption |
                                                QRegularExpression::MultilineOption);
    return assLine.match(text).hasMatch() ? QStringLiteral("ass") : QStringLiteral("subrip");
}

} // namespace

bool File::holdsNoCue() const {
    static const QRegularExpression dialogue(QStringLiteral("^[ \\t]*dialogue[ \\t]*:"),
                                             QRegularExpression::CaseInsensitiveOption |
                                                 QRegularExpression::MultilineOption);
    static const QRegularExpression timing(
        QStringLiteral(
            "^\\s*-?\\d{1,3}:\\d\\d:\\d\\d[,.]\\d{1,3}\\s*-->\\s*-?\\d{1,3}:\\d\\d:\\d\\d[,.]\\d"),
        QRegularExpression::MultilineOption);
    return !(codec == u"ass" ? dialogue : timing).match(text).hasMatch();
}

QString directory() {
    return QStringLiteral(VELTO_CORPUS_DIR);
}

QList<File> files(const QString& root) {
    static const QStringList notSubtitles = {QStringLiteral("SOURCES.md"),
                                             QStringLiteral("SHA256SUMS"),
                                             QStringLiteral(".gitattributes")};
    QStringList paths;
    QDirIterator it(root, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        if (!notSubtitles.contains(it.fileName()))
            paths.append(path);
    }
    paths.sort();
    QList<File> out;
    for (const QString& path : paths) {
        const QString text = Subtitles::readText(path);
        out.append(File{path, text, codecFor(path, text)});
    }
    return out;
}

} // namespace velto::SubtitleCorpus
