#include "VeltoKit/engines/HttpClient.h"

#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "support/EngineTesting.h"
#include "support/ScriptedHttpServer.h"

using namespace velto;
using namespace velto::test;

namespace {

int closedPort() {
    ScriptedHttpServer gone;
    return gone.port();
}

HttpRequest get(const QString& url, double timeout = 30) {
    return {HttpMethod::get, QUrl(url), {}, {}, timeout};
}

} // namespace

TEST(HttpClient, SendsTheRequestAsGivenAndReturnsAnyStatusWithItsBody) {
    ScriptedHttpServer server;
    server.script({201, R"({"hecho":true})"});
    HttpClient client;
    const QByteArray body(64 * 1024, 'x');
    const HttpResponse response =
        client.send({HttpMethod::post,
                     QUrl(server.baseUrl() + QStringLiteral("/v1/cosa?n=1")),
                     {{"Content-Type", "application/json"}, {"X-Prueba", "sí"}},
                     body,
                     30},
                    {});

    EXPECT_EQ(response.status, 201);
    EXPECT_EQ(response.body, R"({"hecho":true})");
    const ReceivedRequest received = server.requests().at(0);
    EXPECT_EQ(received.method, "POST");
    EXPECT_EQ(received.target, "/v1/cosa?n=1");
    EXPECT_EQ(received.headers.value("x-prueba"), "sí");
    EXPECT_EQ(received.headers.value("user-agent"), "VeltoMKV/" VELTO_VERSION);
    EXPECT_FALSE(received.headers.contains("expect")); // no 100-continue round trip
    EXPECT_EQ(received.body, body);
}

TEST(HttpClient, ReusesOneConnectionPerConcurrentRequest) {
    ScriptedHttpServer server;
    HttpClient client;
    server.script({200, "{}"}, 20);
    for (int i = 0; i < 20; ++i)
        EXPECT_EQ(client.send(get(server.baseUrl()), {}).status, 200);
    EXPECT_EQ(server.connections(), 1);

    server.reset();
    server.script({200, "{}"}, 40);
    std::vector<std::jthread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&] {
            for (int i = 0; i < 10; ++i)
                EXPECT_EQ(client.send(get(server.baseUrl()), {}).status, 200);
        });
    }
    threads.clear();
    EXPECT_EQ(server.hits(), 40);
    EXPECT_LE(server.connections(), 4);
}

TEST(HttpClient, TellsARefusedConnectionFromAServerThatNeverAnswers) {
    HttpClient client;
    const int port = closedPort();
    const auto refused = errorOf<HttpError>(
        [&] { client.send(get(QStringLiteral("http://127.0.0.1:%1/").arg(port)), {}); });
    ASSERT_TRUE(refused);
    EXPECT_EQ(refused->kind(), HttpError::Kind::cannotConnect);
    EXPECT_EQ(refused->description(),
              QStringLiteral("No se pudo conectar con el servidor 127.0.0.1:%1. Revisá la "
                             "dirección y tu conexión.")
                  .arg(port));

    ScriptedHttpServer server;
    server.script(ScriptedReply::silence());
    const auto silent = errorOf<HttpError>([&] { client.send(get(server.baseUrl(), 0.2), {}); });
    ASSERT_TRUE(silent);
    EXPECT_EQ(silent->kind(), HttpError::Kind::timedOut);
    EXPECT_EQ(silent->description(),
              QStringLiteral("El servidor 127.0.0.1:%1 no respondió dentro del límite de 0,2 "
                             "segundos.")
                  .arg(server.port()));
}

TEST(HttpClient, AStoppedTokenSendsNothing) {
    ScriptedHttpServer server;
    std::stop_source stop;
    stop.request_stop();
    EXPECT_THROW(HttpClient().send(get(server.baseUrl()), stop.get_token()), Cancelled);
    EXPECT_EQ(server.hits(), 0);
}

TEST(HttpAddress, AcceptsOnlyHttpAddressesAndTrimsBlanksAndSlashes) {
    EXPECT_TRUE(isHttpAddress(QUrl(QStringLiteral("https://api.example.com/v1"))));
    EXPECT_FALSE(isHttpAddress(QUrl(QStringLiteral("localhost:11434/v1"))));
    EXPECT_FALSE(isHttpAddress(QUrl(QStringLiteral("ftp://example.com"))));
    EXPECT_FALSE(isHttpAddress(QUrl(QStringLiteral("http:///v1"))));
    EXPECT_EQ(trimBaseAddress(u" http://127.0.0.1:1234/v1// \n"),
              QStringLiteral("http://127.0.0.1:1234/v1"));
}
