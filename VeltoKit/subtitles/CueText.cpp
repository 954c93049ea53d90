#include "VeltoKit/subtitles/CueText.h"

#include <QRegularExpression>
#include <QStringList>

#include "VeltoKit/subtitles/AssPlaceholders.h"

namespace velto::CueText {
namespace {

// A placeholder (⟪0⟫) or an HTML-like style tag.
const QRegularExpression& markPattern() {
    static const QRegularExpression mark(QStringLiteral("⟪\\d+⟫|</?[A-Za-z][^<>]*>"),
                                         QRegularExpression::UseUnicodePropertiesOption);
    return mark;
}

// Most subtitles have no marks at all; this spares them the regular expression.
bool mayHoldMarks(QStringView text) {
    return text.contains(u'⟪') || text.contains(u'<');
}

// The formatting marks of a text, in order.
QStringList formattingMarks(const QString& text) {
    if (!mayHoldMarks(text))
        return {};
    QStringList marks;
    for (const QRegularExpressionMatch& match : markPattern().globalMatch(text))
        marks.append(match.captured(0));
    return marks;
}

// The last \pN of an ASS override block decides whether what follows is a drawing.
bool drawingAfter(QStringView block, bool drawing) {
    for (qsizetype i = 0; i + 2 < block.size(); ++i) {
        if (block[i] != u'\\' || block[i + 1] != u'p' || !block[i + 2].isDigit())
            continue;
        qsizetype end = i + 2;
        qint64 scale = 0;
        while (end < block.size() && block[end].isDigit())
            scale = scale * 10 + block[end++].digitValue();
        drawing = scale > 0;
        i = end - 1;
    }
    return drawing;
}

// The position of the '>' that closes a tag opened at `open`; -1 when "<" is just text, as in
// "I <3 you".
qsizetype tagEnd(QStringView text, qsizetype open) {
    qsizetype name = open + 1;
    if (name < text.size() && text[name] == u'/')
        ++name;
    if (name >= text.size() || !text[name].isLetter())
        return -1;
    for (qsizetype i = name + 1; i < text.size(); ++i) {
        if (text[i] == u'>')
            return i;
        if (text[i] == u'<' || text[i] == u'\n')
            return -1;
    }
    return -1;
}

// Trims every line of the first `size` characters of `out` and drops the blank ones, moving
// text only towards the front; the new size.
qsizetype trimLines(QChar* out, qsizetype size) {
    qsizetype kept = 0;
    for (qsizetype line = 0; line < size;) {
        qsizetype end = line;
        while (end < size && out[end] != u'\n')
            ++end;
        qsizetype first = line;
        qsizetype last = end;
        while (first < last && out[first].isSpace())
            ++first;
        while (last > first && out[last - 1].isSpace())
            --last;
        if (first < last) {
            if (kept > 0)
                out[kept++] = u'\n';
            for (qsizetype k = first; k < last; ++k)
                out[kept++] = out[k];
        }
        line = end + 1;
    }
    return kept;
}

} // namespace

QString visible(QStringView text) {
    // Written in place into one buffer: this runs twice for every cue of a film.
    QString shown(text.size(), Qt::Uninitialized);
    QChar* out = shown.data();
    qsizetype size = 0;
    bool drawing = false;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text[i];
        qsizetype skipTo = -1;
        if (c == u'{') {
            skipTo = text.indexOf(u'}', i + 1);
            if (skipTo > i)
                drawing = drawingAfter(text.sliced(i + 1, skipTo - i - 1), drawing);
        } else if (c == u'<') {
            skipTo = tagEnd(text, i);
        } else if (c == u'⟪') {
            skipTo = i + AssPlaceholders::placeholderLength(text, i) - 1;
        } else if (c == u'\\' && i + 1 < text.size()) {
            const QChar escape = text[i + 1];
            if (escape == u'N' || escape == u'n' || escape == u'h') {
                out[size++] = escape == u'h' ? u' ' : u'\n';
                ++i;
                continue;
            }
        }
        if (skipTo > i)
            i = skipTo;
        else if (c == u'\n' || (!drawing && c != u'\r'))
            out[size++] = c;
    }
    shown.truncate(trimLines(out, size));
    return shown;
}

bool isTranslatable(const QString& text) {
    static const QRegularExpression tagFirst(QStringLiteral("^\\s*⟪\\d+⟫"),
                                             QRegularExpression::UseUnicodePropertiesOption);
    static const QRegularExpression drawing(
        QStringLiteral("^\\s*m(\\s+-?\\d+(\\.\\d+)?){2}(\\s+([mnlbspc]|-?\\d+(\\.\\d+)?))*\\s*$"),
        QRegularExpression::UseUnicodePropertiesOption);
    if (!mayHoldMarks(text))
        return !QStringView(text).trimmed().isEmpty();
    if (QString(text).remove(markPattern()).trimmed().isEmpty())
        return false;
    // Tags between drawing commands separate them like spaces.
    return !tagFirst.match(text).hasMatch() ||
           !drawing.match(QString(text).replace(markPattern(), QStringLiteral(" "))).hasMatch();
}

bool keepsFormatting(const QString& original, const QString& translated) {
    QStringList unmatched = formattingMarks(translated);
    for (const QString& mark : formattingMarks(original)) {
        if (!unmatched.removeOne(mark))
            return false;
    }
    return true;
}

bool keepsPlaceholders(const QString& original, const QString& answer) {
    for (const QString& mark : formattingMarks(original)) {
        if (mark.startsWith(u'⟪') && !answer.contains(mark))
            return false;
    }
    return true;
}

} // namespace velto::CueText
