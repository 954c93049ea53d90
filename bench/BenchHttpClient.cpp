// The client's cost per request against a local server that answers at once. CPU time is the
// calling thread's (curl and our wrapper, not the server's threads); real time is the whole
// loopback exchange. "connections" is how many the server saw opened. The baseline sends the
// same request with cpp-httplib's own keep-alive client, so the difference is our overhead.
#include <memory>

#include <benchmark/benchmark.h>
#include <httplib.h>

#include "VeltoKit/engines/HttpClient.h"
#include "support/ScriptedHttpServer.h"

using namespace velto;

namespace {

constexpr int totalRequests = 1000;

std::unique_ptr<test::ScriptedHttpServer> server;
std::unique_ptr<HttpClient> client;

void start(const benchmark::State&) {
    server = std::make_unique<test::ScriptedHttpServer>();
    server->script({200, R"({"content":[{"type":"text","text":"#@#1#@#\nHola"}]})"}, totalRequests);
    client = std::make_unique<HttpClient>();
}

void stop(const benchmark::State&) {
    client.reset();
    server.reset();
}

void exchange(benchmark::State& state) {
    const HttpRequest request{HttpMethod::post,
                              QUrl(server->baseUrl() + QStringLiteral("/v1/messages")),
                              {{"Content-Type", "application/json"}},
                              QByteArray(2048, 'x'),
                              30};
    for (auto _ : state) {
        if (client->send(request, {}).status != 200)
            state.SkipWithError("unexpected status");
    }
    if (state.thread_index() == 0)
        state.counters["connections"] = server->connections();
}

void baseline(benchmark::State& state) {
    httplib::Client direct("127.0.0.1", server->port());
    direct.set_keep_alive(true);
    direct.set_tcp_nodelay(true);
    const std::string body(2048, 'x');
    for (auto _ : state) {
        const httplib::Result result = direct.Post("/v1/messages", body, "application/json");
        if (!result || result->status != 200)
            state.SkipWithError("unexpected status");
    }
    state.counters["connections"] = server->connections();
}

} // namespace

BENCHMARK(baseline)
    ->Name("httplib-client/sequential")
    ->Setup(start)
    ->Teardown(stop)
    ->Iterations(totalRequests)
    ->UseRealTime();
BENCHMARK(exchange)
    ->Name("HttpClient/sequential")
    ->Setup(start)
    ->Teardown(stop)
    ->Iterations(totalRequests)
    ->UseRealTime();
BENCHMARK(exchange)
    ->Name("HttpClient/8threads")
    ->Setup(start)
    ->Teardown(stop)
    ->Threads(8)
    ->Iterations(totalRequests / 8)
    ->UseRealTime();

BENCHMARK_MAIN();
