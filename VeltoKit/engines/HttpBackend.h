#pragma once

#include <memory>
#include <stop_token>

#include <QJsonObject>
#include <QString>
#include <QStringList>

#include "VeltoKit/engines/HttpClient.h"
#include "VeltoKit/engines/Retry.h"
#include "VeltoKit/translation/TranslationBackend.h"

namespace velto {

class JsonReader;
struct HttpService;

// The engines that reach a web service: their common settings, and one complete() as a JSON POST
// retried by the service's own rules.
class HttpBackend : public TranslationBackend {
public:
    struct Settings {
        QString apiKey;
        QString model;
        // Spaces and slashes at either end are dropped, so a path never doubles a slash.
        QString baseUrl;
        // Seconds one exchange may take.
        double timeout;
        std::shared_ptr<HttpClient> http;
        Retry::Wait wait = Retry::cancellableWait;
    };

    QString apiKey() const { return m_settings.apiKey; }
    QString model() const { return m_settings.model; }
    QString baseUrl() const { return m_settings.baseUrl; }
    double timeout() const { return m_settings.timeout; }

protected:
    HttpBackend(Settings settings, const HttpService& service);

    // POSTs `body` to the base address followed by `path`, up to the service's attempts. A status
    // other than 200 becomes the service's error for it; a 200 answer is read by answerOf(), and
    // one of white space only is the service's empty answer.
    QString post(const QString& path, const QJsonObject& body, std::stop_token stop) const;
    // The `id` of every entry of a listing's `data`, sorted.
    static QStringList sortedIds(const HttpResponse& listing);
    // One exchange; a transport error passes as it stands, so it is retried.
    virtual HttpResponse send(const HttpRequest& request, std::stop_token stop) const;

private:
    // The text of a 200 answer, or the engine's own error for an answer it cannot use.
    virtual QString answerOf(const JsonReader& reply) const = 0;

    Settings m_settings;
    const HttpService& m_service;
};

} // namespace velto
