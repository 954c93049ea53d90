#pragma once

#include <functional>
#include <memory>
#include <stop_token>

#include <QString>

#include "VeltoKit/media/FFmpeg.h"
#include "cli/CliOptions.h"

namespace velto {
class TranslationBackend;
}

namespace velto::cli {

class Reporter;

// Exit statuses of the command line.
// A closed reader ends the run as SIGPIPE would have, after the clean-up. A video written with
// cues still in the source language is neither a success nor a failure; a failure of another
// video outweighs it.
enum ExitStatus : int {
    success = 0,
    jobFailed = 1,
    badUsage = 2,
    partlyUntranslated = 3,
    interrupted = 130,
    outputGone = 141
};

// Runs the videos one after another; a failure of one does not stop the rest, a cancel stops
// everything.
class CliRunner {
public:
    CliRunner(CliOptions options, FFmpeg ffmpeg, std::shared_ptr<const TranslationBackend> backend,
              QString cacheDirectory, Reporter& reporter);

    // `wasInterrupted` tells a cancel from a tool that died of the same Ctrl-C.
    int run(std::stop_token stop, const std::function<bool()>& wasInterrupted);

private:
    // The number of cues the written track holds untranslated.
    qint64 runOne(const QString& video, std::stop_token stop);

    CliOptions m_options;
    FFmpeg m_ffmpeg;
    std::shared_ptr<const TranslationBackend> m_backend;
    QString m_cacheDirectory;
    Reporter& m_reporter;
};

} // namespace velto::cli
