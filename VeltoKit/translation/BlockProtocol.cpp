#include "VeltoKit/translation/BlockProtocol.h"

#include "VeltoKit/core/TextTrim.h"

namespace velto::BlockProtocol {

namespace {

QStringView trimLineFeeds(QStringView text) {
    while (text.startsWith(u'\n'))
        text = text.sliced(1);
    while (text.endsWith(u'\n'))
        text.chop(1);
    return text;
}

// ICU's $ ends a line only before "\n": an answer with Windows line ends would have no markers
// at all.
QString unixLineEnds(QString response) {
    if (response.contains(u'\r'))
        response.replace(QStringLiteral("\r\n"), QStringLiteral("\n")).replace(u'\r', u'\n');
    return response;
}

} // namespace

QString marker(int number) {
    return QStringLiteral("#@#") + QString::number(number) + QStringLiteral("#@#");
}

QString header() {
    return QStringLiteral("BLOQUES A TRADUCIR:");
}

const QRegularExpression& markerPattern() {
    static const QRegularExpression pattern(QStringLiteral("^[ \\t]*#@#(\\d+)#@#[ \\t]*$"),
                                            QRegularExpression::MultilineOption |
                                                QRegularExpression::UseUnicodePropertiesOption);
    return pattern;
}

QString build(const QList<std::pair<int, QString>>& blocks) {
    QStringList parts;
    parts.reserve(blocks.size());
    for (const auto& [number, text] : blocks)
        parts.append(marker(number) + u'\n' + text);
    return parts.join(u'\n');
}

std::map<int, QString> split(const QString& rawResponse) {
    const QString response = unixLineEnds(rawResponse);
    std::map<int, QString> blocks;
    QList<QRegularExpressionMatch> markers;
    for (const QRegularExpressionMatch& match : markerPattern().globalMatch(response))
        markers.append(match);
    for (qsizetype k = 0; k < markers.size(); ++k) {
        bool parsed = false;
        const int number = markers[k].captured(1).toInt(&parsed);
        if (!parsed)
            continue;
        const qsizetype begin = markers[k].capturedEnd(0);
        const qsizetype end =
            k + 1 < markers.size() ? markers[k + 1].capturedStart(0) : response.size();
        const QStringView body = QStringView(response).sliced(begin, end - begin);
        blocks.insert_or_assign(number, trimTrailingWhitespace(trimLineFeeds(body)));
    }
    return blocks;
}

qsizetype markerCount(const QString& response) {
    qsizetype count = 0;
    for (auto matches = markerPattern().globalMatch(unixLineEnds(response)); matches.hasNext();
         matches.next())
        ++count;
    return count;
}

} // namespace velto::BlockProtocol
