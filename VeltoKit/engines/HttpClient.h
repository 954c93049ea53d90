#pragma once

#include <memory>
#include <stop_token>
#include <utility>

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringView>
#include <QUrl>

#include "VeltoKit/core/VeltoError.h"

namespace velto {

enum class HttpMethod { get, post };

struct HttpRequest {
    HttpMethod method = HttpMethod::get;
    QUrl url;
    QList<std::pair<QByteArray, QByteArray>> headers;
    QByteArray body;
    double timeoutSeconds = 60;
    // An answer longer than this is cut off and fails: far beyond what a batch of subtitles or a
    // model listing needs, and memory stays bounded whatever a server sends.
    qsizetype maxAnswerBytes = 16 * 1024 * 1024;
};

struct HttpResponse {
    int status = 0;
    QByteArray body;
    // The Retry-After header as sent (seconds or an HTTP date); empty when absent.
    QByteArray retryAfter;

    // The body as UTF-8 (invalid bytes replaced), cut to its first `maxCharacters`.
    QString text(int maxCharacters) const;
};

// The exchange never produced a response: refused, unknown host, time-out, broken TLS...
class HttpError : public VeltoError {
public:
    enum class Kind {
        cannotConnect,
        unknownHost,
        timedOut,
        insecure,
        interrupted,
        tooLarge,
        other
    };

    HttpError(Kind kind, QString description);

    Kind kind() const { return m_kind; }

private:
    Kind m_kind;
};

// Whether `url` is an absolute http or https address with a host.
bool isHttpAddress(const QUrl& url);
// A base address as typed by the user, without blanks or slashes at either end, so that
// appending "/path" never doubles a slash.
QString trimBaseAddress(QStringView text);

// Blocking HTTP over libcurl, safe to use from several threads at once. DNS answers and TLS
// sessions are shared by every transfer; each concurrent transfer keeps its own connection,
// reused by the next request that finds it idle.
class HttpClient {
public:
    HttpClient();
    ~HttpClient();
    HttpClient(const HttpClient&) = delete;
    HttpClient& operator=(const HttpClient&) = delete;

    // The process-wide instance for front ends; deeper code receives its client.
    static std::shared_ptr<HttpClient> shared();

    // Sends the request and reads the whole body, whatever the status. Throws HttpError when
    // no response arrived within the request's time-out and Cancelled as soon as `stop` is
    // requested.
    HttpResponse send(const HttpRequest& request, std::stop_token stop) const;

private:
    class Channel;
    class ChannelPool;
    struct Share;

    std::unique_ptr<Share> m_share;
    std::unique_ptr<ChannelPool> m_channels;
};

} // namespace velto
