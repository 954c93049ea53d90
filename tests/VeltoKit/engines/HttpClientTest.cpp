#include "VeltoKit/engines/HttpClient.h"

#include "support/EngineTesting.h"

using namespace velto;
using namespace velto::test;
using namespace Qt::StringLiterals;

namespace {

HttpRequest get(const QString& url, double timeout = 30) {
    return {HttpMethod::get, QUrl(url), {}, {}, timeout};
}

} // namespace

TEST(HttpClient, SendsALargeBodyAtOnceAndNamesItself) {
    ScriptedHttpServer server;
    server.script({200, {}});
    const QByteArray body(64 * 1024, 'x');
    HttpClient().send(
        {HttpMethod::post, QUrl(server.baseUrl()), {{"Content-Type", "text/plain"}}, body, 30}, {});
    const ReceivedRequest received = server.requests().at(0);
    EXPECT_EQ(received.headers.value("user-agent"), "VeltoMKV/" VELTO_VERSION);
    EXPECT_FALSE(received.headers.contains("expect")); // no 100-continue round trip
    EXPECT_EQ(received.body, body);
}

TEST(HttpClient, TellsARefusedConnectionFromAServerThatNeverAnswers) {
    HttpClient client;
    const int closedPort = ScriptedHttpServer().port();
    const auto refused = errorOf<HttpError>(
        [&] { client.send(get(u"http://127.0.0.1:%1/"_s.arg(closedPort)), {}); });
    EXPECT_EQ(refused.value().kind(), HttpError::Kind::cannotConnect);
    EXPECT_EQ(
        refused.value().description(),
        u"No se pudo conectar con el servidor 127.0.0.1:%1. Revisá la dirección y tu conexión."_s
            .arg(closedPort));
    ScriptedHttpServer server;
    server.script(ScriptedReply::silence());
    const auto silent = errorOf<HttpError>([&] { client.send(get(server.baseUrl(), 0.2), {}); });
    EXPECT_EQ(silent.value().kind(), HttpError::Kind::timedOut);
    EXPECT_EQ(silent.value().description(),
              u"El servidor 127.0.0.1:%1 no respondió dentro del límite de 0,2 segundos."_s.arg(
                  server.port()));
}
