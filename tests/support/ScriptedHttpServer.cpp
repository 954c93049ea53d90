#include "support/ScriptedHttpServer.h"

#include <httplib.h>

namespace velto::test {

ScriptedHttpServer::ScriptedHttpServer() {
    httplib::Server& server = m_listener.server();
    server.set_keep_alive_max_count(100000).set_keep_alive_timeout(60).set_tcp_nodelay(true);
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
    server.Get(".*", handler).Post(".*", handler);
    m_listener.listen();
}

// Held requests are let go first, so the listener can stop.
ScriptedHttpServer::~ScriptedHttpServer() {
    m_release.set_value();
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
