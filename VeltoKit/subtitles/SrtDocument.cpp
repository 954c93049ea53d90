#include "VeltoKit/subtitles/SrtDocument.h"

#include <QRegularExpression>

#include "VeltoKit/core/TextTrim.h"
#include "VeltoKit/subtitles/SubtitleError.h"

namespace velto {

namespace {

const QRegularExpression& timingLine() {
    static const QRegularExpression pattern(
        QStringLiteral("^\\s*(-?\\d{1,3}:\\d{2}:\\d{2}[,.]\\d{1,3})\\s*-->\\s*"
                       "(-?\\d{1,3}:\\d{2}:\\d{2}[,.]\\d{1,3})(.*)$"),
        QRegularExpression::UseUnicodePropertiesOption);
    return pattern;
}

bool isBlank(QStringView line) {
    for (QChar c : line) {
        if (c != u' ' && c != u'\t')
            return false;
    }
    return true;
}

QString withNewlines(const QString& text) {
    QString out = text;
    out.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    out.replace(u'\r', u'\n');
    return out;
}

// A blank line ends a cue, so a text that carries one would split its cue when read back.
QString asCueText(const QString& text) {
    QStringList lines;
    const QString normalised = withNewlines(text);
    for (QStringView line : QStringView(normalised).split(u'\n')) {
        if (!isBlank(line))
            lines.append(line.toString());
    }
    return lines.join(u'\n');
}

} // namespace

SrtDocument::SrtDocument(QList<SrtCue> cues)
    : m_cues(std::move(cues)) {}

SrtDocument SrtDocument::parse(const QString& source) {
    const QString text = withNewlines(source);
    const QList<QStringView> lines = QStringView(text).split(u'\n');
    const qsizetype count = lines.size();
    QList<SrtCue> cues;
    qsizetype i = 0;
    while (true) {
        while (i < count && isBlank(lines[i]))
            ++i;
        if (i >= count)
            break;
        QString number;
        QRegularExpressionMatch timing = timingLine().match(lines[i]);
        if (!timing.hasMatch()) {
            number = trimSpacesAndTabs(lines[i]);
            if (++i >= count)
                break;
            timing = timingLine().match(lines[i]);
            if (!timing.hasMatch()) {
                ++i; // a number without its timing line: drop the block
                continue;
            }
        }
        SrtCue cue;
        cue.start = timing.captured(1);
        cue.end = timing.captured(2);
        cue.extra = trimTrailingWhitespace(timing.capturedView(3));
        QStringList textLines;
        for (++i; i < count && !isBlank(lines[i]); ++i)
            textLines.append(lines[i].toString());
        cue.text = textLines.join(u'\n');
        cue.number = number.isEmpty() ? QString::number(cues.size() + 1) : number;
        cues.append(std::move(cue));
    }
    if (cues.isEmpty())
        throw SubtitleError::empty(
            QStringLiteral("El archivo SRT no contiene ningún subtítulo legible."));
    return SrtDocument(std::move(cues));
}

QString SrtDocument::fileExtension() const {
    return QStringLiteral(".srt");
}

QString SrtDocument::kind() const {
    return QStringLiteral("srt");
}

QStringList SrtDocument::texts() const {
    QStringList out;
    out.reserve(m_cues.size());
    for (const SrtCue& cue : m_cues)
        out.append(cue.text);
    return out;
}

void SrtDocument::setTexts(const QStringList& texts) {
    if (texts.size() != m_cues.size())
        throw SubtitleError::textCountMismatch(m_cues.size(), texts.size());
    for (qsizetype k = 0; k < texts.size(); ++k)
        m_cues[k].text = asCueText(texts[k]);
}

QList<TimingSignature> SrtDocument::timingSignature() const {
    QList<TimingSignature> out;
    out.reserve(m_cues.size());
    for (const SrtCue& cue : m_cues)
        out.append(TimingSignature{{cue.number, cue.start, cue.end, cue.extra}});
    return out;
}

QString SrtDocument::render() const {
    qsizetype size = 1;
    for (const SrtCue& cue : m_cues)
        size += cue.number.size() + cue.start.size() + cue.end.size() + cue.extra.size() +
                cue.text.size() + 10;
    QString out;
    out.reserve(size);
    for (const SrtCue& cue : m_cues) {
        if (!out.isEmpty())
            out += u'\n';
        // The extra is written as read: the parser kept its leading blanks, and one glued to the
        // end time (the fourth digit of "00:00:03,4560") must stay glued to be read back the same.
        out += cue.number + u'\n' + cue.start + QStringLiteral(" --> ") + cue.end + cue.extra +
               u'\n' + cue.text + u'\n';
    }
    out += u'\n';
    return out;
}

std::unique_ptr<SubtitleDocument> SrtDocument::clone() const {
    return std::make_unique<SrtDocument>(*this);
}

} // namespace velto
