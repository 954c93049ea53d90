#include "support/ScriptedHttpServer.h"

#include <chrono>
#include <csignal>
#include <stdexcept>

#include <QJsonDocument>

#include <httplib.h>

namespace velto::test {

ScriptedReply ScriptedReply::silence() {
    ScriptedReply reply;
    reply.hang = true;
    return reply;
}

QJsonObject ReceivedRequest::json() const {
    return QJsonDocument::fromJson(body).object();
}

ScriptedHttpServer::ScriptedHttpServer()
    : m_server(std::make_unique<httplib::Server>()) {
    // A client that gave up must not kill the test process when the server answers it.
    std::signal(SIGPIPE, SIG_IGN);
    m_server->set_keep_alive_max_count(100000);
    m_server->set_keep_alive_timeout(60);
    m_server->set_tcp_nodelay(true);
    const auto handler = [this](const httplib::Request& request, httplib::Response& response) {
        handle(request, response);
    };
    m_server->Get(".*", handler);
    m_server->Post(".*", handler);
    m_port = m_server->bind_to_any_port("127.0.0.1");
    if (m_port <= 0)
        throw std::runtime_error("the test server found no free port");
    m_listener = std::thread([this] {
        m_server->listen_after_bind();
        m_listenerReturned = true;
    });
    // stop() is ignored until the accept loop runs; the loop starts within microseconds.
    while (!m_server->is_running() && !m_listenerReturned)
        std::this_thread::yield();
}

ScriptedHttpServer::~ScriptedHttpServer() {
    {
        std::lock_guard lock(m_mutex);
        m_stopping = true;
    }
    m_changed.notify_all();
    m_server->stop();
    m_listener.join();
}

QString ScriptedHttpServer::baseUrl() const {
    return QStringLiteral("http://127.0.0.1:") + QString::number(m_port);
}

void ScriptedHttpServer::script(const ScriptedReply& reply, int times) {
    std::lock_guard lock(m_mutex);
    m_script.insert(m_script.end(), times, reply);
}

void ScriptedHttpServer::reset() {
    std::lock_guard lock(m_mutex);
    m_script.clear();
    m_requests.clear();
    m_clientPorts.clear();
}

std::vector<ReceivedRequest> ScriptedHttpServer::requests() const {
    std::lock_guard lock(m_mutex);
    return m_requests;
}

int ScriptedHttpServer::hits() const {
    std::lock_guard lock(m_mutex);
    return int(m_requests.size());
}

int ScriptedHttpServer::connections() const {
    std::lock_guard lock(m_mutex);
    return int(m_clientPorts.size());
}

bool ScriptedHttpServer::waitForRequests(int count) const {
    std::unique_lock lock(m_mutex);
    return m_changed.wait_for(lock, std::chrono::minutes(1),
                              [&] { return int(m_requests.size()) >= count; });
}

void ScriptedHttpServer::handle(const httplib::Request& request, httplib::Response& response) {
    ReceivedRequest received{QByteArray::fromStdString(request.method),
                             QByteArray::fromStdString(request.target),
                             {},
                             QByteArray::fromStdString(request.body)};
    for (const auto& [name, value] : request.headers)
        received.headers.insert(QByteArray::fromStdString(name).toLower(),
                                QByteArray::fromStdString(value));

    std::unique_lock lock(m_mutex);
    m_requests.push_back(std::move(received));
    m_clientPorts.insert(request.remote_port);
    ScriptedReply reply{418, "sin guion", "text/plain", false};
    if (!m_script.empty()) {
        reply = m_script.front();
        m_script.pop_front();
    }
    m_changed.notify_all();
    if (reply.hang) {
        m_changed.wait(lock, [this] { return m_stopping; });
        response.status = 503;
        return;
    }
    lock.unlock();
    response.status = reply.status;
    response.set_content(reply.body.toStdString(), reply.contentType.toStdString());
}

} // namespace velto::test
