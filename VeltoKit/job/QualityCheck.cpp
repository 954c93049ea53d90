#include "VeltoKit/job/QualityCheck.h"

#include <algorithm>

#include "VeltoKit/subtitles/AssDocument.h"
#include "VeltoKit/subtitles/AssPlaceholders.h"
#include "VeltoKit/subtitles/SubtitleDocument.h"
#include "VeltoKit/translation/Translator.h"

namespace velto::QualityCheck {
namespace {

constexpr qint64 maxCharactersPerSecond = 20;
constexpr qsizetype maxLineLength = 42;
constexpr qsizetype maxLines = 2;
constexpr qsizetype listedCues = 5;

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

// "⟪3⟫", also padded with spaces as models sometimes write it; -1 when not one.
qsizetype placeholderEnd(QStringView text, qsizetype open) {
    qsizetype i = open + 1;
    while (i < text.size() && text[i].isSpace())
        ++i;
    const qsizetype digits = i;
    while (i < text.size() && text[i].isDigit())
        ++i;
    if (i == digits)
        return -1;
    while (i < text.size() && text[i].isSpace())
        ++i;
    return i < text.size() && text[i] == u'⟫' ? i : -1;
}

bool isApostrophe(QChar c) {
    return c == u'\'' || c == u'’';
}

template <typename Visit>
void forEachWord(QStringView visible, Visit visit) {
    const qsizetype size = visible.size();
    qsizetype i = 0;
    while (i < size) {
        if (!visible[i].isLetter()) {
            ++i;
            continue;
        }
        const qsizetype start = i++;
        while (i < size) {
            const QChar c = visible[i];
            if (c.isLetterOrNumber() || c.isMark() ||
                (isApostrophe(c) && i + 1 < size && visible[i + 1].isLetter()))
                ++i;
            else
                break;
        }
        visit(visible.sliced(start, i - start));
    }
}

// The next letter or digit from `i` on, case folded; 0 at the end. Tags, case, blanks and
// punctuation are what this sets aside.
char16_t nextFolded(QStringView text, qsizetype& i) {
    while (i < text.size()) {
        const QChar c = text[i++];
        const char16_t code = c.unicode();
        if (code < 0x80) {
            if ((code >= u'a' && code <= u'z') || (code >= u'0' && code <= u'9'))
                return code;
            if (code >= u'A' && code <= u'Z')
                return code + (u'a' - u'A');
        } else if (c.isLetterOrNumber() || c.isMark()) {
            return c.toCaseFolded().unicode();
        }
    }
    return 0;
}

bool sameLettersAndDigits(QStringView a, QStringView b) {
    qsizetype i = 0;
    qsizetype j = 0;
    for (;;) {
        const char16_t x = nextFolded(a, i);
        if (x != nextFolded(b, j))
            return false;
        if (x == 0)
            return true;
    }
}

bool readsAsSpanish(QStringView visible) {
    for (const QChar c : visible) {
        if (c == u'¿' || c == u'¡' || c == u'ñ' || c == u'Ñ')
            return true;
    }
    return false;
}

// "John Paul Jones", "New York": every word capitalised and not shouted.
bool onlyNames(QStringView visible) {
    bool names = true;
    forEachWord(visible, [&](QStringView word) {
        bool lower = false;
        for (const QChar c : word.sliced(1))
            lower = lower || c.isLower();
        names = names && word[0].isUpper() && (lower || word.size() == 1);
    });
    return names;
}

bool untranslatedVisible(QStringView source, QStringView translation) {
    // Most translations differ in their first letters, so the comparison goes first.
    return sameLettersAndDigits(source, translation) && wordCount(source) >= 3 &&
           !readsAsSpanish(source) && !onlyNames(source);
}

bool lostVisible(QStringView source, QStringView translation) {
    return translation.isEmpty() ||
           (translation.size() * 3 < source.size() && wordCount(source) >= 3);
}

bool fastVisible(QStringView translation, const CheckedCue& cue) {
    if (!cue.startMs || !cue.endMs || *cue.endMs <= *cue.startMs)
        return false;
    return translation.size() * 1000 > maxCharactersPerSecond * (*cue.endMs - *cue.startMs);
}

bool longVisible(QStringView translation) {
    qsizetype lines = 0;
    for (const QStringView line : translation.tokenize(u'\n')) {
        if (++lines > maxLines || line.size() > maxLineLength)
            return true;
    }
    return false;
}

struct Wording {
    QStringView one;
    QStringView many;
};

Wording wording(QualityIssue issue) {
    switch (issue) {
    case QualityIssue::untranslated:
        return {u"subtítulo quedó sin traducir", u"subtítulos quedaron sin traducir"};
    case QualityIssue::lost:
        return {u"subtítulo quedó vacío o incompleto", u"subtítulos quedaron vacíos o incompletos"};
    case QualityIssue::readingSpeed:
        return {u"subtítulo se lee a más de 20 caracteres por segundo",
                u"subtítulos se leen a más de 20 caracteres por segundo"};
    case QualityIssue::lineLength:
        break;
    }
    return {u"subtítulo tiene renglones de más de 42 caracteres o más de dos renglones",
            u"subtítulos tienen renglones de más de 42 caracteres o más de dos renglones"};
}

QString cueReference(const CheckedCue& cue) {
    QString reference = u'#' + QString::number(cue.number);
    if (cue.startMs)
        reference += QStringLiteral(" (") + clockText(*cue.startMs) + u')';
    return reference;
}

} // namespace

QString visibleText(QStringView text) {
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
            skipTo = placeholderEnd(text, i);
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
    // Lines trimmed and blank ones dropped, moving text only towards the front.
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
    shown.truncate(kept);
    return shown;
}

qsizetype wordCount(QStringView visible) {
    qsizetype words = 0;
    forEachWord(visible, [&](QStringView) { ++words; });
    return words;
}

bool isUntranslated(const QString& source, const QString& translation) {
    return untranslatedVisible(visibleText(source), visibleText(translation));
}

bool isLost(const QString& source, const QString& translation) {
    const QString shownSource = visibleText(source);
    return !shownSource.isEmpty() && lostVisible(shownSource, visibleText(translation));
}

bool readsTooFast(const CheckedCue& cue) {
    return fastVisible(visibleText(cue.translation), cue);
}

bool hasLongLines(const QString& translation) {
    return longVisible(visibleText(translation));
}

QList<CheckedCue> cues(const SubtitleDocument& source, const QStringList& translations) {
    // ASS texts travel with placeholders; the track holds them restored, as setTexts does.
    const auto* ass = dynamic_cast<const AssDocument*>(&source);
    const QStringList written = ass ? ass->dialogueTexts() : source.texts();
    QList<TimingSignature> timings = source.timingSignature();
    if (ass) {
        // Comments have timings too, but no text to translate.
        timings.removeIf([](const TimingSignature& timing) {
            return timing.fields.value(0).compare(u"dialogue", Qt::CaseInsensitive) != 0;
        });
    }
    QList<CheckedCue> checked;
    checked.reserve(written.size());
    for (qsizetype k = 0; k < written.size() && k < translations.size(); ++k) {
        CheckedCue cue{.number = k + 1, .source = written[k]};
        // Without a placeholder there is nothing to put back.
        cue.translation = ass && translations[k].contains(u'⟪')
                              ? AssPlaceholders::restore(
                                    translations[k], AssPlaceholders::protect(written[k]).tokens)
                              : translations[k];
        // Only what was sent is checked: the translator keeps the rest as it was.
        if (!Translator::isTranslatable(ass ? AssPlaceholders::protect(written[k]).text
                                            : written[k]))
            continue;
        // Fields 1 and 2 are the start and end for every kind of document.
        if (timings.size() == written.size() && timings[k].fields.size() > 2) {
            cue.startMs = milliseconds(timings[k].fields[1]);
            cue.endMs = milliseconds(timings[k].fields[2]);
        }
        checked.append(std::move(cue));
    }
    return checked;
}

QList<QualityFinding> inspect(const QList<CheckedCue>& cues) {
    QList<QualityFinding> findings;
    for (const CheckedCue& cue : cues) {
        const QString source = visibleText(cue.source);
        if (source.isEmpty())
            continue;
        const QString translation = visibleText(cue.translation);
        if (untranslatedVisible(source, translation)) {
            findings.append({QualityIssue::untranslated, cue});
        } else if (lostVisible(source, translation)) {
            findings.append({QualityIssue::lost, cue});
        } else {
            if (fastVisible(translation, cue))
                findings.append({QualityIssue::readingSpeed, cue});
            if (longVisible(translation))
                findings.append({QualityIssue::lineLength, cue});
        }
    }
    return findings;
}

QStringList warnings(const QList<QualityFinding>& findings) {
    QStringList out;
    for (const QualityIssue issue : {QualityIssue::untranslated, QualityIssue::lost,
                                     QualityIssue::readingSpeed, QualityIssue::lineLength}) {
        QStringList named;
        qsizetype count = 0;
        for (const QualityFinding& finding : findings) {
            if (finding.issue != issue)
                continue;
            if (++count <= listedCues)
                named.append(cueReference(finding.cue));
        }
        if (count == 0)
            continue;
        const Wording words = wording(issue);
        QString warning = QString::number(count) + u' ' + (count == 1 ? words.one : words.many) +
                          QStringLiteral(": ") + named.join(QStringLiteral(", "));
        if (count > listedCues)
            warning += QStringLiteral(" y ") + QString::number(count - listedCues) +
                       QStringLiteral(" más");
        out.append(warning + u'.');
    }
    return out;
}

QString issueName(QualityIssue issue) {
    switch (issue) {
    case QualityIssue::untranslated:
        return QStringLiteral("untranslated");
    case QualityIssue::lost:
        return QStringLiteral("lost");
    case QualityIssue::readingSpeed:
        return QStringLiteral("readingSpeed");
    case QualityIssue::lineLength:
        break;
    }
    return QStringLiteral("lineLength");
}

std::optional<qint64> milliseconds(QStringView timestamp) {
    const QStringView text = timestamp.trimmed();
    qint64 seconds = 0;
    qint64 field = 0;
    qsizetype fields = 0;
    qsizetype digits = 0;
    qsizetype i = 0;
    // Fields of digits up to the decimal separator; read by hand, as this runs for every cue.
    for (; i < text.size() && text[i] != u'.' && text[i] != u','; ++i) {
        const char16_t c = text[i].unicode();
        if (c == u':') {
            if (digits == 0)
                return std::nullopt;
            seconds = seconds * 60 + field;
            field = 0;
            digits = 0;
            ++fields;
        } else if (c >= u'0' && c <= u'9' && digits < 9) {
            field = field * 10 + (c - u'0');
            ++digits;
        } else {
            return std::nullopt;
        }
    }
    if (digits == 0 || fields < 1 || fields > 2)
        return std::nullopt;
    seconds = seconds * 60 + field;
    qint64 millis = 0;
    qsizetype decimals = 0;
    for (++i; i < text.size(); ++i) {
        const char16_t c = text[i].unicode();
        if (c < u'0' || c > u'9')
            return std::nullopt;
        if (decimals++ < 3)
            millis = millis * 10 + (c - u'0');
    }
    for (; decimals < 3; ++decimals)
        millis *= 10;
    return seconds * 1000 + millis;
}

QString clockText(qint64 milliseconds) {
    const qint64 seconds = std::max<qint64>(0, milliseconds) / 1000;
    auto twoDigits = [](qint64 value) {
        return QStringLiteral("%1").arg(value, 2, 10, QLatin1Char('0'));
    };
    if (seconds < 3600)
        return QString::number(seconds / 60) + u':' + twoDigits(seconds % 60);
    return QString::number(seconds / 3600) + u':' + twoDigits(seconds / 60 % 60) + u':' +
           twoDigits(seconds % 60);
}

} // namespace velto::QualityCheck
