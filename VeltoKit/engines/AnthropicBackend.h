#pragma once

#include <optional>

#include <QList>
#include <QString>
#include <QStringList>
#include <QStringView>

#include "VeltoKit/engines/HttpBackend.h"
#include "VeltoKit/platform/PlatformText.h"

namespace velto {

// The Anthropic Messages API. One complete() is one POST to /v1/messages, tried up to four
// times.
class AnthropicBackend : public HttpBackend {
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

    // The base address is the public endpoint except in tests.
    AnthropicBackend(Settings settings, Effort effort, int maxTokens);

    // The identifiers of the first page of models the key may use, sorted.
    static QStringList listModels(const QString& apiKey, const QString& baseUrl, HttpClient& http,
                                  std::stop_token stop);

    QString label() const override;
    QString cacheScope() const override;
    EngineAnswer answer(const QString& system, const QString& prompt,
                        std::stop_token stop) const override;
    std::optional<qint64> outputLimit() const override;

private:
    QString answerOf(const JsonReader& reply) const override;

    Effort m_effort;
    int m_maxTokens;
};

size_t qHash(const AnthropicBackend::Model& model, size_t seed = 0);

} // namespace velto
