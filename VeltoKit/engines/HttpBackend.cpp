#include "VeltoKit/engines/HttpBackend.h"

#include <algorithm>

#include <QJsonDocument>

#include "VeltoKit/core/Secrets.h"
#include "VeltoKit/engines/JsonReader.h"

namespace velto {

QList<HttpBackend::Service::Header> HttpBackend::Service::headers(const QString& apiKey) const {
    QList<Header> all = fixedHeaders;
    // A key that leaves in a header may come back in any answer; from now on it is hidden.
    Secrets::remember(apiKey);
    if (!apiKey.isEmpty())
        all.prepend({keyHeader, keyPrefix + apiKey.toUtf8()});
    return all;
}

QUrl HttpBackend::Service::address(const QString& baseUrl, const QString& path) const {
    const QUrl url(trimBaseAddress(baseUrl) + path, QUrl::StrictMode);
    if (!isHttpAddress(url))
        throw TranslationError::fatal(invalidAddress);
    return url;
}

HttpResponse HttpBackend::Service::fetchListing(const QString& baseUrl, const QString& path,
                                                const QString& apiKey, HttpClient& http,
                                                std::stop_token stop) const {
    HttpRequest request;
    request.url = address(baseUrl, path);
    request.timeoutSeconds = listingTimeout;
    request.headers = headers(apiKey);
    HttpResponse response = http.send(request, stop);
    if (response.status != 200)
        throw listingFailures.errorFor(response);
    return response;
}

std::optional<TokenUsage> HttpBackend::Service::usageOf(const JsonReader& reply) const {
    const std::optional<JsonReader> record = reply.object(usage.record);
    const std::optional<qint64> input = record ? record->integer(usage.input) : std::nullopt;
    if (!input)
        return std::nullopt;
    TokenUsage used{*input, 0};
    for (const QStringView output : usage.outputs)
        used.output += record->integer(output).value_or(0);
    return used;
}

HttpBackend::HttpBackend(Settings settings, const Service& service)
    : m_settings(std::move(settings))
    , m_service(service) {
    m_settings.baseUrl = trimBaseAddress(m_settings.baseUrl);
}

QString HttpBackend::complete(const QString& system, const QString& prompt,
                              std::stop_token stop) const {
    return answer(system, prompt, stop).text;
}

EngineAnswer HttpBackend::post(const QString& path, const QJsonObject& body,
                               std::stop_token stop) const {
    HttpRequest request;
    request.method = HttpMethod::post;
    request.url = m_service.address(m_settings.baseUrl, path);
    request.timeoutSeconds = m_settings.timeout;
    request.headers = {{"Content-Type", "application/json"}};
    request.headers += m_service.headers(m_settings.apiKey);
    request.body = QJsonDocument(body).toJson(QJsonDocument::Compact);
    const auto exchange = [&](int) {
        const HttpResponse response = send(request, stop);
        if (response.status != 200)
            throw m_service.answerFailures.errorFor(response, m_settings.model);
        const JsonReader reply = JsonReader::parse(response.body);
        EngineAnswer answer{answerOf(reply), m_service.usageOf(reply)};
        if (answer.text.trimmed().isEmpty())
            throw TranslationError::transient(m_service.emptyAnswer);
        return answer;
    };
    return Retry::withBackoff(m_service.attempts, exchange, stop, m_settings.wait);
}

QStringList HttpBackend::sortedIds(const HttpResponse& listing) {
    QStringList ids;
    for (const JsonReader& entry : JsonReader::parse(listing.body).objects(u"data"))
        ids.append(entry.requiredString(u"id"));
    std::sort(ids.begin(), ids.end());
    return ids;
}

HttpResponse HttpBackend::send(const HttpRequest& request, std::stop_token stop) const {
    return m_settings.http->send(request, stop);
}

} // namespace velto
