#include "support/ScriptedHttpServer.h"

#include <memory>
#include <string>

#include <httplib.h>

namespace velto::test {

ScriptedHttpServer::ScriptedHttpServer() {
    httplib::Server& server = m_listener.server();
    server.set_keep_alive_max_count(100000).set_keep_alive_timeout(60).set_tcp_nodelay(true);
    const auto handler = [this](const httplib::Request& request, httplib::Response& response) {
        ReceivedRequest received{request.method.c_str(),
                                 request.target.c_str(),
                                 QByteArray::fromStdString(request.body),
                                 {},
                                 std::chrono::steady_clock::now()};
        for (const auto& [name, value] : request.headers)
            received.headers.insert(QByteArray(name.c_str()).toLower(), value.c_str());
        std::unique_lock lock(m_mutex);
        m_requests.push_back(received);
        m_clientPorts.insert(request.remote_port);
        const ScriptedReply reply = !m_script.isEmpty() ? m_script.takeFirst()
                                    : m_answer          ? m_answer(received)
                                                        : ScriptedReply{418, "sin guion"};
        lock.unlock();
        if (reply.hang)
            return m_released.wait();
        response.status = reply.status;
        for (auto it = reply.headers.begin(); it != reply.headers.end(); ++it)
            response.set_header(it.key().toStdString(), it.value().toStdString());
        if (reply.repeat == 0)
            return response.set_content(reply.body.toStdString(), reply.contentType.toStdString());
        const auto piece = std::make_shared<std::string>(reply.body.toStdString());
        response.set_content_provider(
            piece->size() * std::size_t(reply.repeat), reply.contentType.toStdString(),
            [piece](std::size_t offset, std::size_t length, httplib::DataSink& sink) {
                const std::size_t start = offset % piece->size();
                return sink.write(piece->data() + start, std::min(length, piece->size() - start));
            });
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

void ScriptedHttpServer::answerWith(std::function<ScriptedReply(const ReceivedRequest&)> answer) {
    std::lock_guard lock(m_mutex);
    m_answer = std::move(answer);
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
