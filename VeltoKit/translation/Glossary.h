#pragma once

#include <QList>
#include <QRegularExpression>
#include <QString>
#include <QStringList>

namespace velto {

// The names and terms that read the same from a film's first cue to its last: each source term
// with its Spanish rendering, or none when it stays as it is (people, places). Kept as a plain
// text file beside the videos so that every episode of a season shares it:
//
//     # comments start with '#'
//     Walter White
//     Heisenberg
//     the Shire<TAB>la Comarca
//
// One entry per line, UTF-8: the term, a tab and the rendering (nothing after the tab, or no
// tab, keeps the term). A later line for the same term replaces the earlier one.
class Glossary {
public:
    struct Entry {
        QString term;
        QString rendering; // empty: the term stays as it is

        bool keeps() const { return rendering.isEmpty(); }
        bool operator==(const Entry&) const = default;
    };

    Glossary() = default;
    explicit Glossary(QList<Entry> entries);

    // The name of the list file in a folder of videos.
    static QString fileName();
    // Where the list of the videos in `folder` lives.
    static QString pathIn(const QString& folder);

    static Glossary parse(const QString& text);
    // The file's text; `comments` go first, each line prefixed with "# ".
    QString text(const QStringList& comments = {}) const;

    // A missing file is an empty list; an unreadable one throws FileError.
    static Glossary load(const QString& path);
    // Written aside and put in place, so a reader never sees half a list. Throws FileError.
    void save(const QString& path, const QStringList& comments = {}) const;

    bool isEmpty() const { return m_entries.isEmpty(); }
    const QList<Entry>& entries() const { return m_entries; }

    // The entries whose term `text` holds as a whole word (case as written), in list order.
    QList<Entry> entriesIn(const QString& text) const;
    // The entries of any of `texts`, in list order.
    QList<Entry> entriesIn(const QStringList& texts) const;
    // Whether `translation` says what `entry` asks for: its rendering, or the term kept.
    static bool isRespected(const Entry& entry, const QString& translation);

    // What follows the fixed system prompt for a request whose texts hold `entries`; empty for
    // none, so a request without listed terms is the same as without a list.
    static QString promptAddition(const QList<Entry>& entries);
    // What a cache key mixes in for a text that holds `entries`: a translation made under
    // another rendering is not taken for this one.
    static QString keyPart(const QList<Entry>& entries);

    // A text whose kept terms travel as placeholders, numbered after the text's own, so that
    // even an engine that translates every word it sees gives them back as written.
    struct Shielded {
        QString text;
        QStringList terms; // terms[k] stands behind placeholder number first + k
        qsizetype first = 0;
    };
    Shielded shieldKept(const QString& text) const;
    static QString unshield(const QString& answer, const Shielded& shielded);

    bool operator==(const Glossary& other) const { return m_entries == other.m_entries; }

private:
    QList<Entry> m_entries;
    // Every term as a whole word, longest first, in one alternation.
    QRegularExpression m_pattern;
};

} // namespace velto
