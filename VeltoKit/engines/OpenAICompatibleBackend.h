#pragma once

#include <QString>
#include <QStringList>

#include "VeltoKit/engines/HttpBackend.h"

namespace velto {

// Any service that speaks the OpenAI chat-completions format, hosted or on this machine. One
// complete() is one POST to <base>/chat/completions, tried up to three times; a server that
// cannot be reached is not retried.
class OpenAICompatibleBackend : public HttpBackend {
public:
    // The key may be empty, as local servers want none.
    OpenAICompatibleBackend(Settings settings, QString label, double temperature);

    // The model identifiers the server offers, sorted.
    static QStringList listModels(const QString& baseUrl, const QString& apiKey, HttpClient& http,
                                  std::stop_token stop);

    QString label() const override;
    QString cacheScope() const override;
    EngineAnswer answer(const QString& system, const QString& prompt,
                        std::stop_token stop) const override;

    double temperature() const { return m_temperature; }

private:
    QString answerOf(const JsonReader& reply) const override;
    HttpResponse send(const HttpRequest& request, std::stop_token stop) const override;

    QString m_label;
    double m_temperature;
};

} // namespace velto
