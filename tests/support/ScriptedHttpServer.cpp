#include "support/ScriptedHttpServer.h"

#include <csignal>
#include <stdexcept>

#include <httplib.h>

namespace velto::test {

ScriptedHttpServer::ScriptedHttpServer()
    : m_server(std::make_unique<httplib::Server>()) {
    // A client that gave up must not kill the test process when the server answers it.
    std::signal(SIGPIPE, SIG_IGN);
    m_server->set_keep_alive_max_count(100000).set_keep_alive_timeout(60).set_tcp_nodelay(true);
    const auto handler = [this](const httplib::Request& request, httplib::Response& response) {
        ReceivedRequest received{request.method.c_str(),
                                 request.target.c_str(),
                                 QByteArray::fromStdString(request.body),
                                 {}};
        for (const auto& [name, value] : request.headers)
            received.headers.insert(QByteArray(name.c_str()).toLower(), value.c_str());
        std::unique_lock lock(m_mutex);
        m_requests.push_back(std::move(received));
        m_clientPorts.insert(request.remote_port);
        const ScriptedReply reply =
            m_script.isEmpty() ? ScriptedReply{418, "sin guion"} : m_script.takeFirst();
        lock.unlock();
        if (reply.hang)
            return m_released.wait();
        response.status = reply.status;
        response.set_content(reply.body.toStdString(), "application/json");
    };
    m_server->Get(".*", handler).Post(".*", handler);
    m_port = m_server->bind_to_any_port("127.0.0.1");
    if (m_port <= 0)
        throw std::runtime_error("the test server found no free port");
    m_listener = std::thread([this] { m_server->listen_after_bind(); });
    // stop() is ignored until the accept loop runs; it starts within microseconds.
    while (!m_server->is_running())
        std::this_thread::yield();
}

ScriptedHttpServer::~ScriptedHttpServer() {
    m_release.set_value();
    m_server->stop();
    m_listener.join();
}

void ScriptedHttpServer::script(const ScriptedReply& reply, int times) {
    std::lock_guard lock(m_mutex);
    m_script.insert(m_script.size(), times, reply);
}

void ScriptedHttpServer::reset() {
    std::lock_guard lock(m_mutex);
    m_script.clear();
    m_requests.clear();
    m_clientPorts.clear();
}

QList<ReceivedRequest> ScriptedHttpServer::requests() const {
    std::lock_guard lock(m_mutex);
    return m_requests;
}

} // namespace velto::test
