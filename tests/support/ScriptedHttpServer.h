#pragma once

#include <atomic>
#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <set>
#include <thread>
#include <vector>

#include <QByteArray>
#include <QJsonObject>
#include <QMap>
#include <QString>

namespace httplib {
class Server;
struct Request;
struct Response;
} // namespace httplib

namespace velto::test {

struct ScriptedReply {
    int status = 200;
    QByteArray body;
    QByteArray contentType = "application/json";
    // Never answers; the request is held until the server is destroyed.
    bool hang = false;

    static ScriptedReply silence();
};

struct ReceivedRequest {
    QByteArray method;
    QByteArray target;                    // path and query
    QMap<QByteArray, QByteArray> headers; // names in lower case
    QByteArray body;

    QJsonObject json() const;
};

// A real HTTP server on 127.0.0.1 that answers every GET and POST from a script, in order, and
// records what it received and over how many connections.
class ScriptedHttpServer {
public:
    ScriptedHttpServer();
    ~ScriptedHttpServer();
    ScriptedHttpServer(const ScriptedHttpServer&) = delete;
    ScriptedHttpServer& operator=(const ScriptedHttpServer&) = delete;

    // "http://127.0.0.1:<port>"
    QString baseUrl() const;
    int port() const { return m_port; }

    // Queues `reply` for the next `times` requests. Without a script every request gets a 418,
    // so an unexpected call shows up in the test.
    void script(const ScriptedReply& reply, int times = 1);
    // Forgets the recorded requests and the rest of the script.
    void reset();

    std::vector<ReceivedRequest> requests() const;
    int hits() const;
    // Distinct client connections seen since the last reset.
    int connections() const;
    // Blocks until `count` requests have arrived (false after a minute).
    bool waitForRequests(int count) const;

private:
    void handle(const httplib::Request& request, httplib::Response& response);

    std::unique_ptr<httplib::Server> m_server;
    int m_port = 0;
    std::atomic<bool> m_listenerReturned = false;
    std::thread m_listener;
    mutable std::mutex m_mutex;
    mutable std::condition_variable m_changed;
    std::deque<ScriptedReply> m_script;
    std::vector<ReceivedRequest> m_requests;
    std::set<int> m_clientPorts;
    bool m_stopping = false;
};

} // namespace velto::test
