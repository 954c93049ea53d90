#pragma once

#include <map>
#include <utility>

#include <QList>
#include <QRegularExpression>
#include <QString>

namespace velto::BlockProtocol {

// "#@#12#@#": the line that opens block 12 of a request or an answer.
QString marker(int number);
// "BLOQUES A TRADUCIR:", the line after which the blocks of a request start.
QString header();
// A marker alone on its line, optionally padded with spaces or tabs; group 1 is the number.
const QRegularExpression& markerPattern();

// Each text under its marker, in the given order, texts verbatim (inner line breaks kept).
QString build(const QList<std::pair<int, QString>>& blocks);
// Cuts an answer back into numbered bodies. Text before the first marker is ignored, a
// repeated number keeps its last body; the caller checks that every expected number came back.
// Lines may end in "\r\n", "\r" or "\n"; the bodies come back with "\n" only.
std::map<int, QString> split(const QString& response);
// How many marker lines `response` holds, a repeated number as often as it appears.
qsizetype markerCount(const QString& response);

} // namespace velto::BlockProtocol
