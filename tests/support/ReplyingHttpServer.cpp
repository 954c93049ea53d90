#include "support/ReplyingHttpServer.h"

#include <memory>
#include <string>

#include <httplib.h>

namespace velto::test {

ReplyingHttpServer::ReplyingHttpServer(std::function<Reply(const Request&)> reply)
    : m_reply(std::move(reply)) {
    const auto handler = [this](const httplib::Request& request, httplib::Response& response) {
        {
            std::lock_guard lock(m_mutex);
            m_arrivals.append(Clock::now());
        }
        Request received{request.target.c_str(), {}};
        for (const auto& [name, value] : request.headers)
            received.headers.insert(QByteArray(name.c_str()).toLower(), value.c_str());
        const Reply reply = m_reply(received);
        response.status = reply.status;
        for (auto it = reply.headers.begin(); it != reply.headers.end(); ++it)
            response.set_header(it.key().toStdString(), it.value().toStdString());
        if (reply.repeat == 0) {
            response.set_content(reply.body.toStdString(), reply.contentType.toStdString());
            return;
        }
        const auto piece = std::make_shared<std::string>(reply.body.toStdString());
        const std::size_t total = piece->size() * std::size_t(reply.repeat);
        response.set_content_provider(
            total, reply.contentType.toStdString(),
            [piece](std::size_t offset, std::size_t length, httplib::DataSink& sink) {
                const std::size_t start = offset % piece->size();
                return sink.write(piece->data() + start, std::min(length, piece->size() - start));
            });
    };
    m_listener.server().Get(".*", handler).Post(".*", handler);
    m_listener.listen();
}

QList<ReplyingHttpServer::Clock::time_point> ReplyingHttpServer::arrivals() const {
    std::lock_guard lock(m_mutex);
    return m_arrivals;
}

} // namespace velto::test
