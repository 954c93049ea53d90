#include "VeltoKit/engines/HttpService.h"

#include "VeltoKit/engines/HttpClient.h"

namespace velto {

QList<HttpService::Header> HttpService::headers(const QString& apiKey) const {
    QList<Header> all = fixedHeaders;
    if (!apiKey.isEmpty())
        all.prepend({keyHeader, keyPrefix + apiKey.toUtf8()});
    return all;
}

QUrl HttpService::address(const QString& baseUrl, const QString& path) const {
    const QUrl url(trimBaseAddress(baseUrl) + path, QUrl::StrictMode);
    if (!isHttpAddress(url))
        throw TranslationError::fatal(invalidAddress);
    return url;
}

HttpResponse HttpService::fetchListing(const QUrl& url, const QString& apiKey, HttpClient& http,
                                       std::stop_token stop) const {
    HttpRequest request;
    request.url = url;
    request.timeoutSeconds = listingTimeout;
    request.headers = headers(apiKey);
    HttpResponse response = http.send(request, stop);
    if (response.status != 200)
        throw listingFailures.errorFor(response);
    return response;
}

} // namespace velto
