#pragma once

#include <QString>
#include <QStringList>

#include "VeltoKit/engines/HttpBackend.h"

namespace velto {

// The Gemini API. One complete() is one POST to <base>/models/<model>:generateContent, tried up
// to four times.
class GeminiBackend : public HttpBackend {
public:
    // The public endpoint, version path included.
    static QString publicBaseUrl();
    // Where users get a key; the missing-key message points there.
    static QString keyPageUrl();

    GeminiBackend(Settings settings, double temperature, int maxOutputTokens);

    // The models the key may use to generate text, without their "models/" prefix, sorted.
    static QStringList listModels(const QString& apiKey, const QString& baseUrl, HttpClient& http,
                                  std::stop_token stop);

    QString label() const override;
    QString cacheScope() const override;
    EngineAnswer answer(const QString& system, const QString& prompt,
                        std::stop_token stop) const override;
    std::optional<qint64> outputLimit() const override;

    double temperature() const { return m_temperature; }
    int maxOutputTokens() const { return m_maxOutputTokens; }

private:
    QString answerOf(const JsonReader& reply) const override;

    double m_temperature;
    int m_maxOutputTokens;
};

} // namespace velto
