#include "VeltoKit/subtitles/StripSDH.h"

#include <stdexcept>

#include <QRegularExpression>
#include <QSet>

#include "VeltoKit/core/TextTrim.h"
#include "VeltoKit/subtitles/AssDocument.h"
#include "VeltoKit/subtitles/AssPlaceholders.h"
#include "VeltoKit/subtitles/SrtDocument.h"
#include "VeltoKit/subtitles/SubtitleError.h"

namespace velto::StripSDH {

namespace {

QRegularExpression unicodePattern(const QString& pattern) {
    return QRegularExpression(pattern, QRegularExpression::UseUnicodePropertiesOption);
}

const QRegularExpression& bracket() {
    static const QRegularExpression pattern = unicodePattern(QStringLiteral("\\[[^\\[\\]]*\\]"));
    return pattern;
}

const QRegularExpression& parentheses() {
    static const QRegularExpression pattern = unicodePattern(QStringLiteral("\\([^()]*\\)"));
    return pattern;
}

const QRegularExpression& speaker() {
    static const QRegularExpression pattern = unicodePattern(
        QStringLiteral("^\\s*(?:[-–—]\\s*)?[A-ZÁÉÍÓÚÜÑ][A-ZÁÉÍÓÚÜÑ0-9 .#'’\\-]{1,24}:\\s*"));
    return pattern;
}

const QRegularExpression& emptyTag() {
    static const QRegularExpression pattern =
        unicodePattern(QStringLiteral("<(\\w+)[^>]*>\\s*</\\1>"));
    return pattern;
}

const QRegularExpression& whitespaceRun() {
    static const QRegularExpression pattern = unicodePattern(QStringLiteral("[ \\t]+"));
    return pattern;
}

const QRegularExpression& musicOnly() {
    static const QRegularExpression pattern = unicodePattern(QStringLiteral("^[\\s♪♫#*~-]*$"));
    return pattern;
}

const QRegularExpression& dialogDash() {
    static const QRegularExpression pattern = unicodePattern(QStringLiteral("^\\s*[-–—]\\s*"));
    return pattern;
}

std::optional<QString> strippedLine(QStringView original) {
    QString line = original.toString();
    const QRegularExpressionMatch label = speaker().match(line);
    if (label.hasMatch()) {
        const QString name = trimSpacesAndTabs(label.capturedView());
        const QString rest = line.sliced(label.capturedEnd());
        // A label after an en dash loses the dash: deliberate.
        line = name.startsWith(u'-') || name.startsWith(u'—') ? QStringLiteral("- ") + rest : rest;
    }
    for (QString previous; previous != line;) {
        previous = line;
        line.remove(emptyTag());
    }
    line.replace(whitespaceRun(), QStringLiteral(" "));
    line = trimSpacesAndTabs(line);
    if (line.isEmpty() || musicOnly().match(line).hasMatch())
        return std::nullopt;
    return line;
}

QString visible(QStringView text) {
    QString out;
    for (QChar c : text) {
        if (!c.isSpace())
            out += c;
    }
    return out;
}

bool lostSomething(QStringView before, const std::optional<QString>& after) {
    return visible(before) != visible(after.value_or(QString()));
}

Result stripSrt(const SrtDocument& document, bool stripParens) {
    Result result;
    QList<SrtCue> kept;
    for (const SrtCue& cue : document.cues()) {
        const std::optional<QString> stripped = text(cue.text, stripParens);
        result.removed += lostSomething(cue.text, stripped) ? 1 : 0;
        if (!stripped)
            continue;
        kept.append(cue);
        kept.last().text = *stripped;
    }
    if (kept.isEmpty())
        throw SubtitleError::empty(
            QStringLiteral("Al quitar las descripciones no quedó ningún subtítulo: "
                           "la pista era íntegramente descriptiva."));
    result.document = std::make_shared<SrtDocument>(std::move(kept));
    return result;
}

// Override blocks stay aside as placeholders, except that \N becomes a real line break so that
// a description on a line of its own takes its line with it. Leading overrides ({\an8}, {\i1})
// are held out so that a label or a dash behind them is still at the start of the text.
std::optional<QString> stripAssText(const QString& raw, bool stripParens) {
    const AssPlaceholders::Protected hidden = AssPlaceholders::protect(raw);
    QString work = hidden.text;
    for (qsizetype k = 0; k < hidden.tokens.size(); ++k) {
        if (hidden.tokens[k] == u"\\N")
            work.replace(AssPlaceholders::placeholder(k + 1), QStringLiteral("\n"));
    }
    static const QRegularExpression leading = unicodePattern(QStringLiteral("^(?:⟪\\d+⟫)+"));
    static const QRegularExpression anyPlaceholder = unicodePattern(QStringLiteral("⟪\\d+⟫"));
    const QRegularExpressionMatch styling = leading.match(work);
    const qsizetype restStart = styling.hasMatch() ? styling.capturedEnd() : 0;
    const std::optional<QString> stripped = text(work.sliced(restStart), stripParens);
    if (!stripped || visible(QString(*stripped).remove(anyPlaceholder)).isEmpty())
        return std::nullopt;
    const QString kept = work.first(restStart) + *stripped;
    QString restored = AssPlaceholders::restore(kept, hidden.tokens);
    return restored.replace(u'\n', QStringLiteral("\\N"));
}

Result stripAss(const AssDocument& document, bool stripParens) {
    Result result;
    QList<std::optional<QString>> texts;
    bool anyLeft = false;
    for (const QString& raw : document.dialogueTexts()) {
        texts.append(stripAssText(raw, stripParens));
        result.removed += lostSomething(raw, texts.last()) ? 1 : 0;
        anyLeft = anyLeft || texts.last().has_value();
    }
    if (!anyLeft)
        throw SubtitleError::empty(
            QStringLiteral("Al quitar las descripciones no quedó ningún diálogo."));
    auto stripped = std::make_shared<AssDocument>(document);
    stripped->rewriteDialogues(texts);
    result.document = std::move(stripped);
    return result;
}

QString timingKey(const TimingSignature& signature) {
    if (signature.fields.size() >= 3)
        return signature.fields[1] + u'|' + signature.fields[2];
    return signature.fields.join(u'|');
}

} // namespace

std::optional<QString> text(const QString& text, bool stripParens) {
    QString work = text;
    work.remove(bracket());
    if (stripParens)
        work.remove(parentheses());
    QStringList kept;
    for (QStringView line : QStringView(work).split(u'\n')) {
        if (std::optional<QString> stripped = strippedLine(line))
            kept.append(*stripped);
    }
    if (kept.isEmpty())
        return std::nullopt;
    if (kept.size() > 1)
        return kept.join(u'\n');
    // A lone line keeps no dash: there is no second speaker to tell apart.
    QString only = trimSpacesAndTabs(kept.first().remove(dialogDash()));
    if (only.isEmpty())
        return std::nullopt;
    return only;
}

Result apply(const SubtitleDocument& document, bool stripParens) {
    if (const auto* srt = dynamic_cast<const SrtDocument*>(&document))
        return stripSrt(*srt, stripParens);
    if (const auto* ass = dynamic_cast<const AssDocument*>(&document))
        return stripAss(*ass, stripParens);
    throw std::invalid_argument("StripSDH::apply knows SRT and ASS documents only");
}

void verifySubset(const SubtitleDocument& full, const SubtitleDocument& stripped) {
    QSet<QString> known;
    for (const TimingSignature& signature : full.timingSignature())
        known.insert(timingKey(signature));
    for (const TimingSignature& signature : stripped.timingSignature()) {
        if (!known.contains(timingKey(signature)))
            throw SubtitleError::timingChanged(
                QStringLiteral(
                    "La versión sin descripciones inventó un tiempo que no existía en el "
                    "original: ") +
                signature.toListNotation());
    }
}

} // namespace velto::StripSDH
