#include <QCoreApplication>
#include <QDir>
#include <QStandardPaths>

#include "VeltoKit/engines/EchoBackend.h"
#include "VeltoKit/media/Shell.h"
#include "VeltoKit/media/ShellError.h"
#include "cli/CliOptions.h"
#include "cli/CliRunner.h"
#include "cli/HumanReporter.h"
#include "cli/InterruptWatcher.h"
#include "cli/JsonReporter.h"
#include "cli/TerminalText.h"

using namespace velto;
using namespace velto::cli;

namespace {

// The translation cache outlives runs on purpose: a cancelled job resumes without paying twice.
QString cacheDirectory() {
    return QDir(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation))
        .filePath(QStringLiteral("VeltoMKV/Cache"));
}

std::unique_ptr<Reporter> makeReporter(OutputMode mode) {
    if (mode == OutputMode::json)
        return std::make_unique<JsonReporter>();
    return std::make_unique<HumanReporter>(isTerminal(stdout));
}

int translate(const CliOptions& options) {
    const std::optional<FFmpeg> ffmpeg = FFmpeg::locate();
    if (!ffmpeg) {
        const QString missing = Shell::which(QStringLiteral("ffmpeg")) ? QStringLiteral("ffprobe")
                                                                       : QStringLiteral("ffmpeg");
        writeText(stderr, ShellError::notFound(missing).description() + u'\n');
        return jobFailed;
    }
    std::stop_source stop;
    const InterruptWatcher watcher([&stop] { stop.request_stop(); });
    const std::unique_ptr<Reporter> reporter = makeReporter(options.outputMode);
    CliRunner runner(options, *ffmpeg, std::make_shared<EchoBackend>(), cacheDirectory(),
                     *reporter);
    return runner.run(stop.get_token(), [&watcher] { return watcher.interrupted(); });
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("veltomkv-cli"));
    QCoreApplication::setApplicationVersion(QStringLiteral(VELTO_VERSION));

    const ParsedCommandLine parsed = parseCommandLine(QCoreApplication::arguments().mid(1));
    if (std::holds_alternative<ShowHelp>(parsed)) {
        writeText(stdout, helpText());
        return success;
    }
    if (std::holds_alternative<ShowVersion>(parsed)) {
        writeText(stdout, QStringLiteral("veltomkv-cli " VELTO_VERSION "\n"));
        return success;
    }
    if (const auto* error = std::get_if<UsageError>(&parsed)) {
        writeText(stderr, error->message + u'\n');
        return badUsage;
    }
    return translate(std::get<CliOptions>(parsed));
}
