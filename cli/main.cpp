#include <memory>

#include <QCoreApplication>

#include "VeltoKit/core/VeltoError.h"
#include "VeltoKit/engines/HttpClient.h"
#include "VeltoKit/media/Shell.h"
#include "VeltoKit/media/ShellError.h"
#include "VeltoKit/platform/Keychain.h"
#include "VeltoKit/providers/ModelDiscovery.h"
#include "VeltoKit/providers/ModelPrices.h"
#include "VeltoKit/providers/Preferences.h"
#include "VeltoKit/translation/TranslationBackend.h"
#include "cli/CliOptions.h"
#include "cli/CliRunner.h"
#include "cli/EngineChoice.h"
#include "cli/HumanReporter.h"
#include "cli/InterruptWatcher.h"
#include "cli/JsonReporter.h"
#include "cli/KeyCommand.h"
#include "cli/NameListing.h"
#include "cli/TerminalText.h"

using namespace velto;
using namespace velto::cli;

namespace {

std::unique_ptr<Reporter> makeReporter(OutputMode mode) {
    if (mode == OutputMode::json)
        return std::make_unique<JsonReporter>();
    return std::make_unique<HumanReporter>(isTerminal(stdout));
}

int failWith(const QString& message, const QString& fix = {}) {
    writeText(stderr, message + u'\n' + (fix.isEmpty() ? QString() : fix + u'\n'));
    return jobFailed;
}

// Runs `work` with Ctrl-C as a cancel; the program's message for what it throws.
int interruptible(const std::function<int(std::stop_token)>& work) {
    const auto stop = std::make_shared<std::stop_source>();
    const InterruptWatcher watcher([stop] { stop->request_stop(); });
    try {
        return work(stop->get_token());
    } catch (const Cancelled&) {
        return interrupted;
    } catch (const VeltoError& error) {
        return watcher.interrupted() ? interrupted : failWith(error.description());
    }
}

int listModels(const EngineConfiguration& engine) {
    return interruptible([&](std::stop_token stop) {
        const QStringList models = ModelDiscovery::list(
            engine.provider, engine.apiKey, engine.baseURL, *HttpClient::shared(), stop);
        writeText(stdout, models.isEmpty() ? QString() : models.join(u'\n') + u'\n');
        return int(success);
    });
}

std::shared_ptr<const TranslationBackend> makeBackend(const EngineConfiguration& engine) {
    try {
        return engine.makeBackend();
    } catch (const VeltoError& error) {
        failWith(error.description(), EngineChoice::fixFor(engine));
        return nullptr;
    }
}

int check(const EngineConfiguration& engine) {
    const std::shared_ptr<const TranslationBackend> backend = makeBackend(engine);
    if (!backend)
        return jobFailed;
    return interruptible([&](std::stop_token stop) {
        backend->preflight(stop);
        writeText(stdout,
                  backend->label() + QStringLiteral(" respondió correctamente. Todo listo.\n"));
        return int(success);
    });
}

int translate(CliOptions options, const EngineConfiguration& engine) {
    const std::optional<FFmpeg> ffmpeg = FFmpeg::locate();
    if (!ffmpeg) {
        const QString missing = Shell::which(QStringLiteral("ffmpeg")) ? QStringLiteral("ffprobe")
                                                                       : QStringLiteral("ffmpeg");
        return failWith(ShellError::notFound(missing).description());
    }
    if (options.listNames)
        return interruptible(
            [&](std::stop_token stop) { return listNames(options, *ffmpeg, stop); });
    if (options.glossaryFile) {
        try {
            options.job.glossary = readGlossaryFile(*options.glossaryFile);
        } catch (const VeltoError& error) {
            return failWith(error.description());
        }
    }
    // Listing tracks and estimating ask no engine, so they need none configured.
    std::shared_ptr<const TranslationBackend> backend;
    if (!options.listTracks && !options.estimate) {
        backend = makeBackend(engine);
        if (!backend)
            return jobFailed;
    }
    std::stop_source stop;
    const InterruptWatcher watcher([&stop] { stop.request_stop(); });
    const std::unique_ptr<Reporter> reporter = makeReporter(options.outputMode);
    CliRunner runner(options, *ffmpeg, backend, Preferences::cacheDirectory(), *reporter);
    return runner.run(stop.get_token(), [&watcher] { return watcher.interrupted(); });
}

int execute(const CliOptions& options) {
    if (options.setKeyFor)
        return storeKeyFromInput(Provider::byID(*options.setKeyFor));
    const Preferences preferences(Preferences::platformStore(), &EngineChoice::apiKeyFor);
    std::optional<EngineConfiguration> chosen;
    try {
        chosen = EngineChoice::configuration(preferences, options.engine);
    } catch (const KeychainError& error) {
        return failWith(
            error.description(),
            QStringLiteral("Desde la terminal, la variable VELTOMKV_API_KEY no pasa por "
                           "el llavero."));
    }
    const EngineConfiguration& engine = *chosen;
    if (options.listModels)
        return listModels(engine);
    if (options.check)
        return check(engine);
    CliOptions priced = options;
    priced.job.price =
        options.price
            ? options.price
            : ModelPrices::resolve(
                  engine.provider, engine.model, engine.baseURL,
                  preferences.userPrice(engine.provider,
                                        ModelPrices::billedModel(engine.provider, engine.model)))
                  .price;
    if (!priced.job.maxCost)
        priced.job.maxCost = preferences.maxCost();
    return translate(priced, engine);
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    QCoreApplication::setOrganizationName(QStringLiteral("VeltoMKV"));
    QCoreApplication::setOrganizationDomain(QStringLiteral("veltomkv.com"));
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
    return execute(std::get<CliOptions>(parsed));
}
