#include "VeltoMKV/state/EngineQueries.h"

#include "VeltoKit/core/VeltoError.h"
#include "VeltoKit/engines/ClaudeCLIBackend.h"
#include "VeltoKit/engines/HttpClient.h"
#include "VeltoKit/providers/ModelDiscovery.h"
#include "VeltoKit/translation/TranslationBackend.h"

namespace velto {

namespace {

// A failure of any kind, as the program's sentence.
template <typename Call>
std::optional<QString> failureOf(Call&& call) {
    try {
        call();
    } catch (const Cancelled&) {
        throw;
    } catch (const std::exception& error) {
        return describeFailure(error);
    }
    return std::nullopt;
}

} // namespace

EngineQueries::EngineQueries(std::shared_ptr<HttpClient> http, QObject* parent)
    : QObject(parent)
    , m_http(std::move(http)) {}

// No signals from here: the receivers may be half gone.
EngineQueries::~EngineQueries() {
    drop(m_listing);
    drop(m_testing);
    drop(m_locating);
}

bool EngineQueries::drop(Ticket& ticket) {
    if (!ticket)
        return false;
    m_tasks.stop(ticket->task);
    ticket.reset();
    return true;
}

bool EngineQueries::answers(Ticket& ticket, quint64 serial) {
    if (!ticket || ticket->serial != serial)
        return false;
    ticket.reset();
    return true;
}

void EngineQueries::abandon() {
    if (drop(m_listing))
        emit listingChanged(false);
    if (drop(m_testing))
        emit testingChanged(false);
    drop(m_locating);
}

void EngineQueries::listModels(const Provider& provider, const QString& apiKey,
                               const QString& baseURL) {
    drop(m_listing);
    std::shared_ptr<HttpClient> http = m_http;
    const quint64 serial = ++m_serial;
    const BackgroundTasks::Id task = m_tasks.launch(
        [this, provider, apiKey, baseURL, http, serial](std::stop_token stop, const auto& post) {
            QStringList models;
            std::optional<QString> failure;
            try {
                failure = failureOf(
                    [&] { models = ModelDiscovery::list(provider, apiKey, baseURL, *http, stop); });
            } catch (const Cancelled&) {
                return;
            }
            post([this, models, failure, serial] {
                if (!answers(m_listing, serial))
                    return;
                emit listingChanged(false);
                if (failure)
                    emit listingFailed(*failure);
                else
                    emit modelsListed(models);
            });
        });
    m_listing = Query{task, serial};
    emit listingChanged(true);
}

void EngineQueries::testConnection(const EngineConfiguration& configuration) {
    drop(m_testing);
    std::shared_ptr<HttpClient> http = m_http;
    const quint64 serial = ++m_serial;
    const BackgroundTasks::Id task =
        m_tasks.launch([this, configuration, http, serial](std::stop_token stop, const auto& post) {
            QString label;
            std::optional<QString> failure;
            try {
                failure = failureOf([&] {
                    const std::shared_ptr<const TranslationBackend> backend =
                        configuration.makeBackend(http);
                    label = backend->label();
                    backend->preflight(stop);
                });
            } catch (const Cancelled&) {
                return;
            }
            const QString message =
                failure.value_or(label + QStringLiteral(" respondió correctamente. Todo listo."));
            post([this, message, succeeded = !failure, serial] {
                if (!answers(m_testing, serial))
                    return;
                emit testingChanged(false);
                emit connectionTested(succeeded, message);
            });
        });
    m_testing = Query{task, serial};
    emit testingChanged(true);
}

void EngineQueries::locateClaude(const QString& preferredPath) {
    drop(m_locating);
    const quint64 serial = ++m_serial;
    const BackgroundTasks::Id task =
        m_tasks.launch([this, preferredPath, serial](std::stop_token, const auto& post) {
            const bool found = ClaudeCLIBackend::locate(preferredPath).has_value();
            post([this, found, serial] {
                if (answers(m_locating, serial))
                    emit claudeLocated(found);
            });
        });
    m_locating = Query{task, serial};
}

} // namespace velto
