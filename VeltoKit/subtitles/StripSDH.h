#pragma once

#include <memory>
#include <optional>

#include <QString>

namespace velto {

class SubtitleDocument;

// Removes what a hearing viewer of a translated track does not want: sound descriptions in
// brackets (and, when asked, in parentheses), speaker labels in capitals, music-only lines.
namespace StripSDH {

struct Result {
    std::shared_ptr<SubtitleDocument> document;
    // Cues or events that lost something that was not blank: removed whole, or shortened by a
    // description, a label or a music line. A cue that was already empty is removed uncounted.
    qint64 removed = 0;
};

// One cue's text stripped, or std::nullopt when nothing is left to show.
std::optional<QString> text(const QString& text, bool stripParens);

// A new, stripped copy; the input stays as it was. SRT cues that strip to nothing are dropped and
// the others keep their numbers as read (never renumbered: the player ignores them, and a person
// comparing with the original can still follow them). ASS: only dialogue events are stripped,
// with their override blocks kept aside; an event left with nothing but styling is dropped.
// Throws SubtitleError::empty when nothing is left.
Result apply(const SubtitleDocument& document, bool stripParens);

// Returns when every start and end pair of stripped exists in full; otherwise throws
// SubtitleError::timingChanged naming the invented one.
void verifySubset(const SubtitleDocument& full, const SubtitleDocument& stripped);

} // namespace StripSDH
} // namespace velto
