#pragma once

#include <variant>

#include <QString>
#include <QStringList>

#include "VeltoKit/job/JobOptions.h"

namespace velto::cli {

enum class OutputMode { automatic, json };

// Everything the command line asked for.
struct CliOptions {
    JobOptions job;
    QString engine = QStringLiteral("echo");
    QStringList videos;
    bool listTracks = false;
    OutputMode outputMode = OutputMode::automatic;
};

// What to do instead of running: print help or version, or refuse with a usage message.
struct ShowHelp {};
struct ShowVersion {};
struct UsageError {
    QString message;
};

using ParsedCommandLine = std::variant<CliOptions, ShowHelp, ShowVersion, UsageError>;

// Parses the arguments after the program name.
ParsedCommandLine parseCommandLine(const QStringList& arguments);

QString helpText();

} // namespace velto::cli
