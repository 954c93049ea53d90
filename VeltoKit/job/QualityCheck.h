#pragma once

#include <optional>

#include <QList>
#include <QString>
#include <QStringList>
#include <QStringView>

#include "VeltoKit/job/QualityFinding.h"

namespace velto {

class SubtitleDocument;

// Checks translated cues against their sources for what the timing proof cannot see: lines
// left in the source language, lines lost, lines too fast or too long to read.
namespace QualityCheck {

// Words as a reader counts them: runs of letters, "don't" being one.
qsizetype wordCount(QStringView visible);

// Same letters and digits as the source, whatever the tags, case, blanks and punctuation, for
// a source of three words or more. Sources already in Spanish and lines made only of
// capitalised names are left alone: keeping them is the right translation.
bool isUntranslated(const QString& source, const QString& translation);
// Empty, or under a third of the source's characters for a source of three words or more.
bool isLost(const QString& source, const QString& translation);
// Holds what its source does not: a block marker, a blank line, two lines more than the source,
// or more than twice its length and a dozen characters; what a model says around its blocks
// ends up there.
bool carriesExtra(const QString& source, const QString& translation);
// More than 20 visible characters per second on screen; a line break counts as one.
bool readsTooFast(const CheckedCue& cue);
// A line of more than 42 visible characters, or more than two lines.
bool hasLongLines(const QString& translation);

// One entry per text of `source` (the document as loaded, before translation) that the
// translator sends to the engine, in order, with `translations` (as handed to setTexts)
// restored to what the written track holds.
QList<CheckedCue> cues(const SubtitleDocument& source, const QStringList& translations);

// Cues whose source shows nothing are not looked at. A cue left untranslated or lost is
// reported for that alone; the others may be both fast and long.
QList<QualityFinding> inspect(const QList<CheckedCue>& cues);

// One warning per issue that has findings, in the order of QualityIssue, naming up to five
// cues by number and start time: "3 subtítulos quedaron sin traducir: #12 (1:02), …".
QStringList warnings(const QList<QualityFinding>& findings);

// "untranslated", "lost", "readingSpeed", "lineLength", "names": for scripts.
QString issueName(QualityIssue issue);

// "00:01:02,500", "0:01:02.50", "01:02.5" in milliseconds; none for anything else.
std::optional<qint64> milliseconds(QStringView timestamp);
// "m:ss", or "h:mm:ss" from the first hour; seconds rounded down.
QString clockText(qint64 milliseconds);

} // namespace QualityCheck
} // namespace velto
