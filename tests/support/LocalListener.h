#pragma once

#include <memory>
#include <thread>

namespace httplib {
class Server;
} // namespace httplib

namespace velto::test {

// A cpp-httplib server on 127.0.0.1: its routes are set on server(), then listen() serves them on
// a thread of its own until the listener is destroyed. Declare it after whatever its routes use.
class LocalListener {
public:
    LocalListener();
    ~LocalListener();

    httplib::Server& server() { return *m_server; }
    // Binds `port`, or any free port when 0, and returns once connections are accepted.
    void listen(int port = 0);
    int port() const { return m_port; }

private:
    std::unique_ptr<httplib::Server> m_server;
    int m_port = 0;
    std::jthread m_thread;
};

} // namespace velto::test
