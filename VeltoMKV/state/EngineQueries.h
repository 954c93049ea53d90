#pragma once

#include <memory>
#include <optional>

#include <QObject>
#include <QString>
#include <QStringList>

#include "VeltoKit/providers/EngineConfiguration.h"
#include "VeltoKit/providers/Provider.h"
#include "VeltoMKV/state/BackgroundTasks.h"

namespace velto {

class HttpClient;

// What the settings ask of an engine while the user waits: its models, a connection test, and
// where the `claude` program is. Each runs on a background task; starting another of the same
// kind, or abandon(), drops the earlier one, so a late answer never lands on the wrong provider.
class EngineQueries : public QObject {
    Q_OBJECT

public:
    explicit EngineQueries(std::shared_ptr<HttpClient> http, QObject* parent = nullptr);
    ~EngineQueries() override;

    bool isListing() const { return m_listing.has_value(); }
    bool isTesting() const { return m_testing.has_value(); }

    void listModels(const Provider& provider, const QString& apiKey, const QString& baseURL);
    // Builds the engine and asks it for its short self-check.
    void testConnection(const EngineConfiguration& configuration);
    void locateClaude(const QString& preferredPath);
    // Stops every query; nothing more is reported of them.
    void abandon();

signals:
    void listingChanged(bool listing);
    void testingChanged(bool testing);
    void modelsListed(const QStringList& models);
    void listingFailed(const QString& message);
    // "<label> respondió correctamente. Todo listo." or the error's description.
    void connectionTested(bool succeeded, const QString& message);
    void claudeLocated(bool found);

private:
    // A running query: its task, and the serial number its answer must still carry.
    struct Query {
        BackgroundTasks::Id task;
        quint64 serial;
    };
    using Ticket = std::optional<Query>;
    // Stops the task of `ticket` and forgets it; false when there was none.
    bool drop(Ticket& ticket);
    // Whether `ticket` is still the query numbered `serial`, and forgets it if so.
    static bool answers(Ticket& ticket, quint64 serial);

    std::shared_ptr<HttpClient> m_http;
    Ticket m_listing;
    Ticket m_testing;
    Ticket m_locating;
    quint64 m_serial = 0;
    BackgroundTasks m_tasks{this};
};

} // namespace velto
