#pragma once

#include <stop_token>
#include <utility>

#include <QByteArray>
#include <QList>
#include <QString>
#include <QUrl>

#include "VeltoKit/engines/FailureWording.h"

namespace velto {

class HttpClient;
struct HttpRequest;
struct HttpResponse;

// What one engine's web service differs in: how it takes the key, how many times a request is
// tried, and the words for its failures. Each engine describes its service once; its requests,
// its model listing and their errors are all made from that description.
struct HttpService {
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

    QList<Header> headers(const QString& apiKey) const;
    // The base address, trimmed, followed by `path`; the fatal invalidAddress when that is no web
    // address.
    QUrl address(const QString& baseUrl, const QString& path) const;
    // GETs a model listing. A status other than 200 is a listing failure; a transport error
    // passes as it stands.
    HttpResponse fetchListing(const QUrl& url, const QString& apiKey, HttpClient& http,
                              std::stop_token stop) const;
};

} // namespace velto
