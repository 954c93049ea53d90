#pragma once

#include <optional>
#include <variant>

#include <QString>
#include <QStringList>

#include "VeltoKit/job/JobOptions.h"

namespace velto::cli {

enum class OutputMode { automatic, json };

// Engine settings given on the command line: they replace the stored ones for this run only.
struct EngineOverrides {
    std::optional<QString> providerID;
    std::optional<QString> model;
    std::optional<QString> baseURL;
    std::optional<QString> effort;
    std::optional<QString> cliModel;
    std::optional<QString> claudePath;
};

// Everything the command line asked for.
struct CliOptions {
    JobOptions job;
    EngineOverrides engine;
    QStringList videos;
    bool listTracks = false;
    // Print the candidate names of the videos as a list file instead of translating.
    bool listNames = false;
    // The list of names and terms for this run, instead of the one beside each video.
    std::optional<QString> glossaryFile;
    // Instead of translating: store the key of this provider id, read from standard input.
    std::optional<QString> setKeyFor;
    bool listModels = false;
    bool check = false;
    // Print what each video's translation would take, and send nothing.
    bool estimate = false;
    // US$ per million input and output tokens for this run, over the stored and known prices.
    std::optional<TokenPrice> price;
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
