#pragma once

#include <chrono>
#include <functional>
#include <future>
#include <mutex>

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QSet>
#include <QString>

#include "support/LocalListener.h"

namespace velto::test {

struct ScriptedReply {
    int status = 200;
    QByteArray body;
    bool hang = false;
    QByteArray contentType = "application/json";
    QMap<QByteArray, QByteArray> headers{};
    // When set, the body is `body` repeated this many times, made as it is sent.
    qint64 repeat = 0;

    // Never answers: the request is held until the server goes away.
    static ScriptedReply silence() { return {0, {}, true}; }
};

struct ReceivedRequest {
    QByteArray method;
    QByteArray target; // path and query
    QByteArray body;
    QMap<QByteArray, QByteArray> headers; // names in lower case
    std::chrono::steady_clock::time_point arrival;
};

// A real HTTP server on 127.0.0.1 that answers every GET and POST from a script, in order, and
// records what it received and over how many connections. Past the script it answers 418, so an
// unexpected call shows up in the test, unless answerWith() says how to answer from the request.
class ScriptedHttpServer {
public:
    ScriptedHttpServer();
    ~ScriptedHttpServer();

    QString baseUrl() const { return QStringLiteral("http://127.0.0.1:%1").arg(port()); }
    int port() const { return m_listener.port(); }
    void script(const ScriptedReply& reply, int times = 1);
    void answerWith(std::function<ScriptedReply(const ReceivedRequest&)> answer);
    // Forgets the requests and connections seen and the rest of the script.
    void reset();
    QList<ReceivedRequest> requests() const;
    int hits() const { return int(requests().size()); }
    int connections() const {
        std::lock_guard lock(m_mutex);
        return int(m_clientPorts.size());
    }

private:
    std::promise<void> m_release;
    std::shared_future<void> m_released = m_release.get_future().share();
    mutable std::mutex m_mutex;
    QList<ScriptedReply> m_script;
    std::function<ScriptedReply(const ReceivedRequest&)> m_answer;
    QList<ReceivedRequest> m_requests;
    QSet<int> m_clientPorts;
    LocalListener m_listener;
};

} // namespace velto::test
