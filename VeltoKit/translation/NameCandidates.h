#pragma once

#include <QStringList>

namespace velto {

// The names a film's subtitles are likely to hold, found from the source texts alone, the same
// way every time and fast enough to run while the window shows the file: capitalised words and
// runs of them ("Walter White") that recur where a sentence does not begin, and never or
// seldom in lower case; and speaker labels ("JOHN: Get down!"). Titles ("Mr."), days, months
// and the like, which Spanish writes its own way, are left out.
namespace NameCandidates {

// `texts` are cue texts as a document gives them (tags and placeholders are looked through);
// `speakers` the names an ASS script gives its dialogue lines, any number, empty ones ignored.
// The most frequent first; ties in alphabetical order.
QStringList find(const QStringList& texts, const QStringList& speakers = {});

} // namespace NameCandidates
} // namespace velto
