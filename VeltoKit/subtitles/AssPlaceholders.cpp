#include "VeltoKit/subtitles/AssPlaceholders.h"

#include <QRegularExpression>

namespace velto::AssPlaceholders {

namespace {

// Models sometimes pad a placeholder with spaces; it is still the same placeholder.
const QRegularExpression& placeholderPattern() {
    static const QRegularExpression pattern(QStringLiteral("⟪\\s*(\\d+)\\s*⟫"),
                                            QRegularExpression::UseUnicodePropertiesOption);
    return pattern;
}

// Whatever restore() would read as a placeholder is protected as well.
const QRegularExpression& protectedParts() {
    static const QRegularExpression pattern(QStringLiteral("\\{[^{}]*\\}|\\\\[Nnh]|") +
                                                placeholderPattern().pattern(),
                                            QRegularExpression::UseUnicodePropertiesOption);
    return pattern;
}

} // namespace

QString placeholder(qsizetype number) {
    return u'⟪' + QString::number(number) + u'⟫';
}

Protected protect(QStringView text) {
    Protected out;
    qsizetype copied = 0;
    QRegularExpressionMatchIterator it = protectedParts().globalMatch(text);
    while (it.hasNext()) {
        const QRegularExpressionMatch match = it.next();
        out.text += text.sliced(copied, match.capturedStart() - copied);
        out.tokens.append(match.captured());
        out.text += placeholder(out.tokens.size());
        copied = match.capturedEnd();
    }
    out.text += text.sliced(copied);
    return out;
}

QString restore(QStringView text, const QStringList& tokens) {
    QString out;
    qsizetype copied = 0;
    QRegularExpressionMatchIterator it = placeholderPattern().globalMatch(text);
    while (it.hasNext()) {
        const QRegularExpressionMatch match = it.next();
        out += text.sliced(copied, match.capturedStart() - copied);
        bool ok = false;
        const qsizetype number = match.capturedView(1).toLongLong(&ok);
        if (ok && number >= 1 && number <= tokens.size())
            out += tokens[number - 1];
        copied = match.capturedEnd();
    }
    out += text.sliced(copied);
    return out;
}

} // namespace velto::AssPlaceholders
