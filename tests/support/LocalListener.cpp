#include "support/LocalListener.h"

#include <csignal>
#include <stdexcept>
#include <string>

#include <httplib.h>

namespace velto::test {

LocalListener::LocalListener()
    : m_server(std::make_unique<httplib::Server>()) {
    // A client that gave up must not kill the test process when the server answers it.
    std::signal(SIGPIPE, SIG_IGN);
}

LocalListener::~LocalListener() {
    m_server->stop();
}

void LocalListener::listen(int port) {
    m_port = port == 0 ? m_server->bind_to_any_port("127.0.0.1")
                       : (m_server->bind_to_port("127.0.0.1", port) ? port : -1);
    if (m_port <= 0) {
        throw std::runtime_error("the test server could not listen on 127.0.0.1:" +
                                 std::to_string(port));
    }
    m_thread = std::jthread([this] { m_server->listen_after_bind(); });
    // stop() is ignored until the accept loop runs; it starts within microseconds.
    while (!m_server->is_running())
        std::this_thread::yield();
}

} // namespace velto::test
