#include "VeltoKit/subtitles/AssPlaceholders.h"

#include <utility>

namespace velto::AssPlaceholders {

namespace {

// "⟪7⟫", also padded with blanks as models sometimes write it, at `at`: its length and the
// number it carries (0 when the digits are not ASCII), or length 0 when there is none.
// Scanned by hand: every event of a script goes through here several times per job.
std::pair<qsizetype, qsizetype> placeholderAt(QStringView text, qsizetype at) {
    if (text[at] != u'⟪')
        return {0, 0};
    qsizetype i = at + 1;
    while (i < text.size() && text[i].isSpace())
        ++i;
    const qsizetype digits = i;
    while (i < text.size() && text[i].isDigit())
        ++i;
    const QStringView number = text.sliced(digits, i - digits);
    while (i < text.size() && text[i].isSpace())
        ++i;
    if (number.isEmpty() || i >= text.size() || text[i] != u'⟫')
        return {0, 0};
    bool ok = false;
    const qsizetype value = number.toLongLong(&ok);
    return {i + 1 - at, ok ? value : 0};
}

// Length of the override block ({...}, no brace inside), \N, \n, \h or placeholder at `at`; 0
// when none starts there. Whatever restore() would read as a placeholder is protected as well.
qsizetype protectedAt(QStringView text, qsizetype at) {
    const QChar c = text[at];
    if (c == u'{') {
        for (qsizetype i = at + 1; i < text.size(); ++i) {
            if (text[i] == u'}')
                return i + 1 - at;
            if (text[i] == u'{')
                return 0;
        }
        return 0;
    }
    if (c == u'\\' && at + 1 < text.size()) {
        const QChar escape = text[at + 1];
        return escape == u'N' || escape == u'n' || escape == u'h' ? 2 : 0;
    }
    return placeholderLength(text, at);
}

} // namespace

QString placeholder(qsizetype number) {
    return u'⟪' + QString::number(number) + u'⟫';
}

qsizetype placeholderLength(QStringView text, qsizetype at) {
    return placeholderAt(text, at).first;
}

Protected protect(QStringView text) {
    Protected out;
    qsizetype copied = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const qsizetype length = protectedAt(text, i);
        if (length == 0)
            continue;
        out.text += text.sliced(copied, i - copied);
        out.tokens.append(text.sliced(i, length).toString());
        out.text += placeholder(out.tokens.size());
        i += length - 1;
        copied = i + 1;
    }
    out.text += text.sliced(copied);
    return out;
}

QString restore(QStringView text, const QStringList& tokens) {
    QString out;
    qsizetype copied = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const auto [length, number] = placeholderAt(text, i);
        if (length == 0)
            continue;
        out += text.sliced(copied, i - copied);
        if (number >= 1 && number <= tokens.size())
            out += tokens[number - 1];
        i += length - 1;
        copied = i + 1;
    }
    out += text.sliced(copied);
    return out;
}

} // namespace velto::AssPlaceholders
