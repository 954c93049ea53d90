#pragma once

#include <cstdio>
#include <functional>

#include <QString>

namespace velto::cli {

// Writes UTF-8 text as it is, at once. A reader that went away (`| head -1`) makes every
// later write a silent no-op and calls the handler given to onClosedOutput, once.
void writeText(FILE* stream, const QString& text);
void onClosedOutput(std::function<void()> handler);
// For a watcher that learns of the closed reader before any write does.
void markOutputClosed();
bool outputClosed();
// True when the stream is an interactive terminal.
bool isTerminal(FILE* stream);
// Cuts a status line to the terminal's width, so that redrawing it never wraps.
QString fitToTerminal(const QString& line, FILE* stream);

} // namespace velto::cli
