#pragma once

#include <chrono>
#include <functional>
#include <mutex>

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QString>

#include "support/LocalListener.h"

namespace velto::test {

// A real HTTP server on 127.0.0.1 whose every answer is made by a function of the request, for
// services that misbehave in ways a script cannot tell ahead: echoing the request's headers,
// asking to be left alone for a while, sending far more than anyone asked for.
class ReplyingHttpServer {
public:
    struct Request {
        QByteArray target;
        QMap<QByteArray, QByteArray> headers; // names in lower case
    };
    struct Reply {
        int status = 200;
        QByteArray body{};
        QByteArray contentType = "application/json";
        QMap<QByteArray, QByteArray> headers{};
        // When set, the body is `body` repeated this many times, made as it is sent.
        qint64 repeat = 0;
    };
    using Clock = std::chrono::steady_clock;

    explicit ReplyingHttpServer(std::function<Reply(const Request&)> reply);

    QString baseUrl() const { return QStringLiteral("http://127.0.0.1:%1").arg(m_listener.port()); }
    // When each request arrived, in order.
    QList<Clock::time_point> arrivals() const;

private:
    std::function<Reply(const Request&)> m_reply;
    mutable std::mutex m_mutex;
    QList<Clock::time_point> m_arrivals;
    LocalListener m_listener;
};

} // namespace velto::test
