#include "VeltoKit/job/QualityCheck.h"

#include <algorithm>

#include "VeltoKit/core/EnumTable.h"
#include "VeltoKit/subtitles/AssDocument.h"
#include "VeltoKit/subtitles/AssPlaceholders.h"
#include "VeltoKit/subtitles/CueText.h"
#include "VeltoKit/subtitles/SubtitleDocument.h"

namespace velto::QualityCheck {
namespace {

constexpr qint64 maxCharactersPerSecond = 20;
constexpr qsizetype maxLineLength = 42;
constexpr qsizetype maxLines = 2;
constexpr qsizetype listedCues = 5;

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

// What a warning and a script call each issue; the warning's noun agrees with its count.
struct IssueTexts {
    QualityIssue value;
    QStringView name;
    QStringView one;
    QStringView many;
};

constexpr IssueTexts issues[] = {
    {QualityIssue::untranslated, u"untranslated", u"subtítulo quedó sin traducir",
     u"subtítulos quedaron sin traducir"},
    {QualityIssue::lost, u"lost", u"subtítulo quedó vacío o incompleto",
     u"subtítulos quedaron vacíos o incompletos"},
    {QualityIssue::readingSpeed, u"readingSpeed",
     u"subtítulo se lee a más de 20 caracteres por segundo",
     u"subtítulos se leen a más de 20 caracteres por segundo"},
    {QualityIssue::lineLength, u"lineLength",
     u"subtítulo tiene renglones de más de 42 caracteres o más de dos renglones",
     u"subtítulos tienen renglones de más de 42 caracteres o más de dos renglones"},
    {QualityIssue::names, u"names", u"subtítulo no respeta «Nombres y términos»",
     u"subtítulos no respetan «Nombres y términos»"},
};
static_assert(EnumTable::coversInOrder(issues, QualityIssue::names));

QString cueReference(const CheckedCue& cue) {
    QString reference = u'#' + QString::number(cue.number);
    if (cue.startMs)
        reference += QStringLiteral(" (") + clockText(*cue.startMs) + u')';
    return reference;
}

} // namespace

qsizetype wordCount(QStringView visible) {
    qsizetype words = 0;
    forEachWord(visible, [&](QStringView) { ++words; });
    return words;
}

bool isUntranslated(const QString& source, const QString& translation) {
    return untranslatedVisible(CueText::visible(source), CueText::visible(translation));
}

bool isLost(const QString& source, const QString& translation) {
    const QString shownSource = CueText::visible(source);
    return !shownSource.isEmpty() && lostVisible(shownSource, CueText::visible(translation));
}

bool carriesExtra(const QString& source, const QString& translation) {
    if (translation.contains(QStringLiteral("#@#")))
        return true;
    // Bodies come trimmed, so a blank line is one between two others.
    for (const QStringView line : QStringView(translation).split(u'\n')) {
        if (line.trimmed().isEmpty() && !translation.trimmed().isEmpty())
            return true;
    }
    const QString shownSource = CueText::visible(source);
    const QString shown = CueText::visible(translation);
    return shown.count(u'\n') > shownSource.count(u'\n') + 1 ||
           shown.size() > 2 * shownSource.size() + 12;
}

bool readsTooFast(const CheckedCue& cue) {
    return fastVisible(CueText::visible(cue.translation), cue);
}

bool hasLongLines(const QString& translation) {
    return longVisible(CueText::visible(translation));
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
        if (!CueText::isTranslatable(ass ? AssPlaceholders::protect(written[k]).text : written[k]))
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
        const QString source = CueText::visible(cue.source);
        if (source.isEmpty())
            continue;
        const QString translation = CueText::visible(cue.translation);
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
    for (const IssueTexts& issue : issues) {
        QStringList named;
        qsizetype count = 0;
        for (const QualityFinding& finding : findings) {
            if (finding.issue != issue.value)
                continue;
            if (++count <= listedCues)
                named.append(cueReference(finding.cue));
        }
        if (count == 0)
            continue;
        QString warning = QString::number(count) + u' ' + (count == 1 ? issue.one : issue.many) +
                          QStringLiteral(": ") + named.join(QStringLiteral(", "));
        if (count > listedCues)
            warning += QStringLiteral(" y ") + QString::number(count - listedCues) +
                       QStringLiteral(" más");
        out.append(warning + u'.');
    }
    return out;
}

QString issueName(QualityIssue issue) {
    return EnumTable::row(issues, issue).name.toString();
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
