#pragma once

#include <memory>

#include <QString>
#include <QStringList>

#include "VeltoKit/engines/HttpClient.h"
#include "VeltoKit/engines/Retry.h"
#include "VeltoKit/translation/TranslationBackend.h"

namespace velto {

// The Gemini API. One complete() is one POST to <base>/models/<model>:generateContent, tried up
// to four times.
class GeminiBackend : public TranslationBackend {
public:
    // The public endpoint, version path included.
    static QString publicBaseUrl();
    // Where users get a key; the missing-key message points there.
    static QString keyPageUrl();

    GeminiBackend(QString apiKey, QString model, QString baseUrl, double temperature,
                  int maxOutputTokens, double timeout, std::shared_ptr<HttpClient> http,
                  Retry::Wait wait = Retry::cancellableWait);

    // The models the key may use to generate text, without their "models/" prefix, sorted.
    static QStringList listModels(const QString& apiKey, const QString& baseUrl, HttpClient& http,
                                  std::stop_token stop);

    QString label() const override;
    QString cacheScope() const override;
    QString complete(const QString& system, const QString& prompt,
                     std::stop_token stop) const override;

    QString apiKey() const { return m_apiKey; }
    QString model() const { return m_model; }
    QString baseUrl() const { return m_baseUrl; }
    double temperature() const { return m_temperature; }
    int maxOutputTokens() const { return m_maxOutputTokens; }
    double timeout() const { return m_timeout; }

private:
    HttpRequest request(const QUrl& address, const QString& system, const QString& prompt) const;

    QString m_apiKey;
    QString m_model;
    QString m_baseUrl;
    double m_temperature;
    int m_maxOutputTokens;
    double m_timeout;
    std::shared_ptr<HttpClient> m_http;
    Retry::Wait m_wait;
};

} // namespace velto
