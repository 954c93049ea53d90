#pragma once

#include <stop_token>

#include <QString>

namespace velto {
struct FFmpeg;
class Glossary;
} // namespace velto

namespace velto::cli {

struct CliOptions;

// Prints the candidate names of every video as one list file, so that a season's list can
// start from them: «veltomkv-cli --list-names *.mkv > nombres.veltomkv.txt». A video that
// cannot be read is named on standard error and the others still count. Returns the exit
// status.
int listNames(const CliOptions& options, const FFmpeg& ffmpeg, std::stop_token stop);

// The list given with --glossary; a missing or unreadable file throws FileError.
Glossary readGlossaryFile(const QString& path);

} // namespace velto::cli
