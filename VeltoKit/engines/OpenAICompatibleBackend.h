#pragma once

#include <memory>

#include <QString>
#include <QStringList>

#include "VeltoKit/engines/HttpClient.h"
#include "VeltoKit/engines/Retry.h"
#include "VeltoKit/translation/TranslationBackend.h"

namespace velto {

// Any service that speaks the OpenAI chat-completions format, hosted or on this machine. One
// complete() is one POST to <base>/chat/completions, tried up to three times; a server that
// cannot be reached is not retried.
class OpenAICompatibleBackend : public TranslationBackend {
public:
    OpenAICompatibleBackend(QString baseUrl, QString model, QString apiKey, QString label,
                            double temperature, double timeout, std::shared_ptr<HttpClient> http,
                            Retry::Wait wait = Retry::cancellableWait);

    // The model identifiers the server offers, sorted.
    static QStringList listModels(const QString& baseUrl, const QString& apiKey, HttpClient& http,
                                  std::stop_token stop);

    QString label() const override;
    QString cacheScope() const override;
    QString complete(const QString& system, const QString& prompt,
                     std::stop_token stop) const override;

    QString baseUrl() const { return m_baseUrl; }
    QString model() const { return m_model; }
    QString apiKey() const { return m_apiKey; }
    double temperature() const { return m_temperature; }
    double timeout() const { return m_timeout; }

private:
    HttpRequest request(const QUrl& address, const QString& system, const QString& prompt) const;
    QString answerOf(const HttpResponse& response) const;

    QString m_baseUrl;
    QString m_model;
    QString m_apiKey;
    QString m_label;
    double m_temperature;
    double m_timeout;
    std::shared_ptr<HttpClient> m_http;
    Retry::Wait m_wait;
};

} // namespace velto
