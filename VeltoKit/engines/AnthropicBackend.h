#pragma once

#include <memory>
#include <optional>

#include <QList>
#include <QString>
#include <QStringView>

#include "VeltoKit/engines/HttpClient.h"
#include "VeltoKit/engines/Retry.h"
#include "VeltoKit/platform/PlatformText.h"
#include "VeltoKit/translation/TranslationBackend.h"

namespace velto {

// The Anthropic Messages API. One complete() is one POST to /v1/messages, tried up to four
// times.
class AnthropicBackend : public TranslationBackend {
public:
    enum class Effort { low, medium, high, xhigh, max };

    struct Model {
        QString id;
        QString name;
        QString note;

        friend bool operator==(const Model&, const Model&) = default;
    };

    // The models offered in the settings, best first.
    static const QList<Model>& models();
    static QString defaultModel();
    static QString publicBaseUrl();

    // Every effort, from the cheapest to the most thorough.
    static const QList<Effort>& efforts();
    // The value sent and stored: "low", "medium", "high", "xhigh", "max".
    static QString rawValue(Effort effort);
    static std::optional<Effort> effortFromRawValue(QStringView raw);
    // The Spanish name shown in the settings.
    static QString effortLabel(Effort effort);

    static QString missingKeyMessage(PlatformText::System system = PlatformText::current());

    // `baseUrl` is the public endpoint except in tests.
    AnthropicBackend(QString apiKey, QString model, Effort effort, int maxTokens, double timeout,
                     std::shared_ptr<HttpClient> http, Retry::Wait wait = Retry::cancellableWait,
                     QString baseUrl = publicBaseUrl());

    QString label() const override;
    QString cacheScope() const override;
    QString complete(const QString& system, const QString& prompt,
                     std::stop_token stop) const override;

    QString apiKey() const { return m_apiKey; }
    QString model() const { return m_model; }
    Effort effort() const { return m_effort; }
    int maxTokens() const { return m_maxTokens; }
    double timeout() const { return m_timeout; }

private:
    HttpRequest request(const QString& system, const QString& prompt) const;

    QString m_apiKey;
    QString m_model;
    Effort m_effort;
    int m_maxTokens;
    double m_timeout;
    std::shared_ptr<HttpClient> m_http;
    Retry::Wait m_wait;
    QString m_baseUrl;
};

size_t qHash(const AnthropicBackend::Model& model, size_t seed = 0);

} // namespace velto
