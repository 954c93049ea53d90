#include "support/SubtitleCorpus.h"

#include <QDirIterator>
#include <QFileInfo>
#include <QRegularExpression>
#include <QStringList>

#include "VeltoKit/subtitles/Subtitles.h"

namespace velto::SubtitleCorpus {

namespace {

QRegularExpression lineStart(const char* pattern) {
    return QRegularExpression(QString::fromLatin1(pattern),
                              QRegularExpression::CaseInsensitiveOption |
                                  QRegularExpression::MultilineOption |
                                  QRegularExpression::UseUnicodePropertiesOption);
}

// Files without an extension are judged by their content.
QString codecFor(const QString& path, const QString& text) {
    static const QRegularExpression assLine = lineStart("^\\s*(\\[script info\\]|dialogue:)");
    const QString suffix = QFileInfo(path).suffix().toLower();
    const bool ass = suffix == u"ass" || suffix == u"ssa" ||
                     (suffix != u"srt" && assLine.match(text).hasMatch());
    return ass ? QStringLiteral("ass") : QStringLiteral("subrip");
}

QStringList paths(const QString& root) {
    static const QStringList notes = {QStringLiteral("SOURCES.md"), QStringLiteral("SHA256SUMS"),
                                      QStringLiteral(".gitattributes")};
    QStringList paths;
    for (QDirIterator it(root, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
         it.hasNext();) {
        const QString path = it.next();
        if (!notes.contains(it.fileName()))
            paths.append(path);
    }
    paths.sort();
    return paths;
}

} // namespace

bool File::holdsNoCue() const {
    static const QRegularExpression dialogue = lineStart("^[ \\t]*dialogue[ \\t]*:");
    static const QRegularExpression timing = lineStart(
        "^\\s*-?\\d{1,3}:\\d\\d:\\d\\d[,.]\\d{1,3}\\s*-->\\s*-?\\d{1,3}:\\d\\d:\\d\\d[,.]\\d");
    return !(codec == u"ass" ? dialogue : timing).match(text).hasMatch();
}

QString directory() {
    const QString chosen = qEnvironmentVariable("VELTO_CORPUS_DIR");
    return chosen.isEmpty() ? QStringLiteral(VELTO_CORPUS_DIR) : chosen;
}

QString missingReason() {
    if (!paths(directory()).isEmpty())
        return {};
    return QStringLiteral("no real-world subtitle corpus in ") + directory() +
           QStringLiteral(" (set VELTO_CORPUS_DIR)");
}

QList<File> files(const QString& root) {
    QList<File> out;
    for (const QString& path : paths(root)) {
        const QString text = Subtitles::readText(path);
        out.append(File{path, text, codecFor(path, text)});
    }
    return out;
}

} // namespace velto::SubtitleCorpus
