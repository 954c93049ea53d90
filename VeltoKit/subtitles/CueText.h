#pragma once

#include <QString>
#include <QStringView>

namespace velto {

// What a viewer sees of a cue's text, and what only styles it: ASS override blocks and the
// placeholders that stand for them on the way to a model (AssPlaceholders), HTML-like style tags,
// ASS vector drawings. The translator and the quality check both go by it.
namespace CueText {

// What a viewer reads: HTML-like tags, ASS override blocks, ASS drawings and placeholders left
// out, \N and \n as line breaks, \h as a space, every line trimmed and blank lines dropped.
QString visible(QStringView text);

// False for a text as a model would get it (override blocks already placeholders) with no words
// in it: empty, blank, only style marks, or an ASS vector drawing (coordinates after the
// placeholder that turns drawing on, "⟪1⟫m 0 0 l 100 0 100 100"). Sent, the first come back as
// "[ES]" or worse, and a drawing as "translated" coordinates.
bool isTranslatable(const QString& text);

// Whether `translated` still holds every placeholder and HTML-like style tag of `original`, each
// as often.
bool keepsFormatting(const QString& original, const QString& translated);
// Whether `answer` still holds every placeholder of `original`; without one it would drop the
// styling, or the line break, that the placeholder stands for.
bool keepsPlaceholders(const QString& original, const QString& answer);

} // namespace CueText
} // namespace velto
