#include "VeltoKit/translation/NameCandidates.h"

#include <algorithm>

#include <QHash>
#include <QRegularExpression>
#include <QSet>

#include "VeltoKit/subtitles/CueText.h"

namespace velto::NameCandidates {
namespace {

// Capitalised, but Spanish has its own word for them, or they are no name at all.
const QSet<QString>& notNames() {
    static const QSet<QString> words = [] {
        QSet<QString> set;
        for (const char* word :
             {"I",       "I'm",       "I'll",     "I've",    "I'd",       "OK",
              "Okay",    "Mr",        "Mrs",      "Ms",      "Dr",        "Miss",
              "Sir",     "Mister",    "Madam",    "Ma'am",   "Mom",       "Dad",
              "Mommy",   "Daddy",     "Mum",      "God",     "Jesus",     "Christ",
              "Lord",    "Christmas", "Monday",   "Tuesday", "Wednesday", "Thursday",
              "Friday",  "Saturday",  "Sunday",   "January", "February",  "March",
              "April",   "May",       "June",     "July",    "August",    "September",
              "October", "November",  "December", "English", "Spanish",   "American",
              "Uncle",   "Aunt",      "Officer",  "Agent",   "Detective", "Captain",
              "Doctor",  "Professor", "Oh",       "Hey",     "Yeah",      "No",
              "Yes",     "Hi",        "Hello"})
            set.insert(QString::fromLatin1(word));
        return set;
    }();
    return words;
}

// Abbreviations whose period does not end the sentence.
bool isTitle(QStringView word) {
    for (const char16_t* title : {u"Mr", u"Mrs", u"Ms", u"Dr", u"St", u"Jr", u"Sr"}) {
        if (word == QStringView(title))
            return true;
    }
    return false;
}

bool isCapitalised(QStringView word) {
    if (word.size() < 2 || !word[0].isUpper())
        return false;
    // All capitals is shouting or an acronym, not how a name is written mid-sentence.
    return std::any_of(word.begin() + 1, word.end(), [](QChar c) { return c.isLower(); });
}

struct Counts {
    qint64 capitalised = 0;
    qint64 midSentence = 0;
    qint64 inRuns = 0; // capitalised occurrences inside a run of two or more
};

class Collector {
public:
    void cue(const QString& text) {
        const QString visible = CueText::visible(text);
        for (const QStringView line : QStringView(visible).split(u'\n'))
            label(line);
        words(visible);
    }

    QStringList candidates() const {
        QHash<QString, qint64> runs = m_runs;
        // "The Night Watch" opening a sentence is the Night Watch.
        for (auto run = m_openingRuns.cbegin(); run != m_openingRuns.cend(); ++run) {
            const qsizetype space = run.key().indexOf(u' ');
            const bool common = m_lower.value(run.key().left(space)) > 0;
            if (!common)
                runs[run.key()] += run.value();
            else if (run.key().indexOf(u' ', space + 1) > 0)
                runs[run.key().mid(space + 1)] += run.value();
        }
        QHash<QString, qint64> found;
        for (auto run = runs.cbegin(); run != runs.cend(); ++run) {
            if (run.value() >= 2)
                found.insert(run.key(), run.value());
        }
        for (auto word = m_words.cbegin(); word != m_words.cend(); ++word) {
            const Counts& c = word.value();
            // A word seen only inside its runs is already named by them.
            const qint64 alone = c.capitalised - c.inRuns;
            const qint64 lower = m_lower.value(word.key());
            const bool recurs = (c.midSentence >= 2 && lower * 3 <= c.midSentence) ||
                                (c.midSentence >= 1 && c.capitalised >= 3 && lower == 0);
            if (recurs && alone >= 1 && !notNames().contains(word.key()))
                found.insert(word.key(), c.capitalised);
        }
        for (auto label = m_labels.cbegin(); label != m_labels.cend(); ++label)
            found.insert(label.key(), std::max(found.value(label.key()), label.value()));
        QStringList names = found.keys();
        std::sort(names.begin(), names.end(), [&](const QString& a, const QString& b) {
            const qint64 x = found.value(a);
            const qint64 y = found.value(b);
            return x != y ? x > y : a < b;
        });
        return names;
    }

    void speaker(const QString& name) {
        if (!name.isEmpty() && !notNames().contains(name))
            ++m_labels[name];
    }

private:
    // "JOHN: Get down!" names John, written as dialogue would write him.
    void label(QStringView line) {
        static const QRegularExpression speaker(
            QStringLiteral("^[-–—\\s]*(\\p{Lu}[\\p{Lu}'’.]+(?: \\p{Lu}[\\p{Lu}'’.]+)?)\\s*:"),
            QRegularExpression::UseUnicodePropertiesOption);
        const QRegularExpressionMatch match = speaker.match(line.toString());
        if (!match.hasMatch())
            return;
        QStringList parts = match.captured(1).toLower().split(u' ');
        for (QString& part : parts)
            part[0] = part[0].toUpper();
        const QString name = parts.join(u' ');
        if (!notNames().contains(name))
            ++m_labels[name];
    }

    void words(const QString& visible) {
        static const QRegularExpression word(
            QStringLiteral("\\p{L}[\\p{L}\\p{M}]*(?:['’]\\p{L}+)*"),
            QRegularExpression::UseUnicodePropertiesOption);
        bool sentenceStart = true;
        qsizetype previousEnd = 0;
        QStringList run;
        bool runOpensSentence = false;
        const auto endRun = [&] {
            if (run.size() >= 2) {
                // "King's Landing" keeps its possessive, "Jesse Pinkman's" is Jesse Pinkman.
                run.last() = withoutPossessive(run.last()).toString();
                ++(runOpensSentence ? m_openingRuns : m_runs)[run.join(u' ')];
                for (const QString& part : run)
                    ++m_words[withoutPossessive(part).toString()].inRuns;
            }
            run.clear();
        };
        QStringView previousWord;
        for (const QRegularExpressionMatch& match : word.globalMatch(visible)) {
            const QStringView gap =
                QStringView(visible).sliced(previousEnd, match.capturedStart() - previousEnd);
            if (endsSentence(gap, previousWord))
                sentenceStart = true;
            const QStringView written = match.capturedView();
            const QStringView token = withoutPossessive(written);
            const bool joins = gap == u" " || (isTitle(previousWord) && gap == u". ");
            const bool named = isCapitalised(token) && !notNames().contains(token.toString());
            if (!joins || !named)
                endRun();
            count(token, sentenceStart);
            if (named) {
                if (run.isEmpty())
                    runOpensSentence = sentenceStart;
                run.append(written.toString());
            }
            sentenceStart = false;
            previousEnd = match.capturedEnd();
            previousWord = token;
        }
        endRun();
    }

    // "Mike's" is Mike.
    static QStringView withoutPossessive(QStringView token) {
        if (token.size() > 3 && (token.endsWith(u"'s") || token.endsWith(u"’s")))
            return token.chopped(2);
        return token;
    }

    static bool endsSentence(QStringView gap, QStringView previousWord) {
        // A dash opens a line of dialogue only at the start of a line.
        if (gap.contains(u'\n') && (gap.contains(u'-') || gap.contains(u'–')))
            return true;
        for (const QChar c : gap) {
            if (c == u'!' || c == u'?' || c == u'…' || c == u':' || c == u'♪' || c == u'"' ||
                c == u'“')
                return true;
            if (c == u'.' && !isTitle(previousWord))
                return true;
        }
        return false;
    }

    void count(QStringView token, bool sentenceStart) {
        if (isCapitalised(token)) {
            Counts& c = m_words[token.toString()];
            ++c.capitalised;
            if (!sentenceStart)
                ++c.midSentence;
        } else if (token[0].isLower() && token.size() >= 2) {
            // Keyed as it would be capitalised: "white" counts against "White".
            QString capital = token.toString();
            capital[0] = capital[0].toUpper();
            ++m_lower[capital];
        }
    }

    QHash<QString, Counts> m_words;
    QHash<QString, qint64> m_lower;
    QHash<QString, qint64> m_runs;
    QHash<QString, qint64> m_openingRuns;
    QHash<QString, qint64> m_labels;
};

} // namespace

QStringList find(const QStringList& texts, const QStringList& speakers) {
    Collector collector;
    for (const QString& text : texts)
        collector.cue(text);
    for (const QString& speaker : speakers)
        collector.speaker(speaker);
    return collector.candidates();
}

} // namespace velto::NameCandidates
