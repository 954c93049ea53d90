#pragma once

#include <exception>

#include <QString>

namespace velto {

// A failure as the window says it: the error's own sentence, followed, for a refusal that a
// control of the window undoes, by which control that is.
QString failureText(const std::exception& error);

// What the window says while ffmpeg cannot be found.
QString missingFfmpegText();

} // namespace velto
