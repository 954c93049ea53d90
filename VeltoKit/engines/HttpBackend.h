#pragma once

#include <memory>
#include <optional>
#include <stop_token>
#include <utility>

#include <QByteArray>
#include <QJsonObject>
#include <QList>
#include <QString>
#include <QStringList>
#include <QUrl>

#include "VeltoKit/engines/FailureWording.h"
#include "VeltoKit/engines/HttpClient.h"
#include "VeltoKit/engines/Retry.h"
#include "VeltoKit/translation/TranslationBackend.h"

namespace velto {

class JsonReader;

// The engines that reach a web service: what the user chose, what the service is, and one
// complete() as a JSON POST retried by the service's own rules.
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

    // What one engine's service differs in: how it takes the key, how many times a request is
    // tried, and the words for its failures. Each engine describes its service once; its
    // requests, its model listing and their errors are made from that description.
    struct Service {
        using Header = std::pair<QByteArray, QByteArray>;

        int attempts;
        // The header that carries the key, after a prefix ("Bearer "); no key, no header.
        QByteArray keyHeader;
        QByteArray keyPrefix = {};
        QList<Header> fixedHeaders = {};
        QString invalidAddress;
        // A 200 answer whose text is only white space.
        QString emptyAnswer;
        FailureWording answerFailures;
        double listingTimeout;
        FailureWording listingFailures;
        // Where a 200 answer says what it billed: the record, its input member and the members
        // that add up to the output (thinking is billed as output).
        struct UsageFields {
            QStringView record;
            QStringView input;
            QList<QStringView> outputs;
        } usage;

        // The usage a 200 answer reports; absent when it reports none.
        std::optional<TokenUsage> usageOf(const JsonReader& reply) const;

        QList<Header> headers(const QString& apiKey) const;
        // The base address, trimmed, followed by `path`; the fatal invalidAddress when that is
        // no web address.
        QUrl address(const QString& baseUrl, const QString& path) const;
        // GETs a model listing. A status other than 200 is a listing failure; a transport error
        // passes as it stands.
        HttpResponse fetchListing(const QString& baseUrl, const QString& path,
                                  const QString& apiKey, HttpClient& http,
                                  std::stop_token stop) const;
    };

    QString apiKey() const { return m_settings.apiKey; }
    QString model() const { return m_settings.model; }
    QString baseUrl() const { return m_settings.baseUrl; }
    double timeout() const { return m_settings.timeout; }

    QString complete(const QString& system, const QString& prompt,
                     std::stop_token stop) const final;

protected:
    HttpBackend(Settings settings, const Service& service);

    // POSTs `body` to the base address followed by `path`, up to the service's attempts. A status
    // other than 200 becomes the service's error for it; a 200 answer is read by answerOf(), and
    // one of white space only is the service's empty answer.
    EngineAnswer post(const QString& path, const QJsonObject& body, std::stop_token stop) const;
    // The `id` of every entry of a listing's `data`, sorted.
    static QStringList sortedIds(const HttpResponse& listing);
    // One exchange; a transport error passes as it stands, so it is retried.
    virtual HttpResponse send(const HttpRequest& request, std::stop_token stop) const;

private:
    // The text of a 200 answer, or the engine's own error for an answer it cannot use.
    virtual QString answerOf(const JsonReader& reply) const = 0;

    Settings m_settings;
    const Service& m_service;
};

} // namespace velto
