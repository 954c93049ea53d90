#pragma once

#include <QString>
#include <QStringList>
#include <QStringView>

namespace velto::AssPlaceholders {

// An event text with its override blocks ({...}) and the escapes \N, \n and \h taken out and
// replaced by ⟪1⟫, ⟪2⟫... in order. Numbering restarts with every event, so a model sees small
// numbers and a lost placeholder can only ever affect its own event.
struct Protected {
    QString text;
    QStringList tokens; // tokens[k - 1] is what ⟪k⟫ stands for
};

// A text that already holds something shaped like ⟪7⟫ gets it protected too, so that it comes
// back as written rather than as some other event's styling.
Protected protect(QStringView text);

// Puts the tokens back. A placeholder that was lost stays lost, one that was duplicated is
// restored twice, and one whose number is unknown is dropped rather than shown on screen.
QString restore(QStringView text, const QStringList& tokens);

// "⟪number⟫"
QString placeholder(qsizetype number);
// The length of the placeholder that starts at `at`, also padded with blanks as models sometimes
// write it; 0 when none does.
qsizetype placeholderLength(QStringView text, qsizetype at);

} // namespace velto::AssPlaceholders
