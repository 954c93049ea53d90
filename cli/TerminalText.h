#pragma once

#include <cstdio>

#include <QString>

namespace velto::cli {

// Writes UTF-8 text as it is.
void writeText(FILE* stream, const QString& text);
// True when the stream is an interactive terminal.
bool isTerminal(FILE* stream);
// Cuts a status line to the terminal's width, so that redrawing it never wraps.
QString fitToTerminal(const QString& line, FILE* stream);

} // namespace velto::cli
