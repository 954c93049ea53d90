#include "VeltoKit/engines/AnthropicBackend.h"

#include <thread>

#include <gtest/gtest.h>

#include "VeltoKit/engines/JsonReader.h"
#include "support/EngineTesting.h"

using namespace velto;
using namespace velto::test;
using Effort = AnthropicBackend::Effort;

namespace {

class AnthropicEngine : public ::testing::Test {
protected:
    AnthropicBackend backend(const QString& key = QStringLiteral("clave"), Retry::Wait wait = {}) {
        return AnthropicBackend(key, QStringLiteral("claude-haiku-4-5"), Effort::xhigh, 16000, 30,
                                http, wait ? wait : waits.wait(), server.baseUrl());
    }
    static QString complete(const AnthropicBackend& engine, std::stop_token stop = {}) {
        return engine.complete(QStringLiteral("Sos traductor."), QStringLiteral("Traducí: Hi"),
                               stop);
    }

    ScriptedHttpServer server;
    std::shared_ptr<HttpClient> http = std::make_shared<HttpClient>();
    RecordedWaits waits;
};

QByteArray apiError(const char* message) {
    return QByteArray(R"({"type":"error","error":{"type":"x","message":")") + message + "\"}}";
}

} // namespace

TEST_F(AnthropicEngine, PostsOneMessageAndJoinsTheTextBlocksUntrimmed) {
    server.script({200, R"({"content":[{"type":"thinking","thinking":"mmm"},
        {"type":"text","text":"\nHola"},{"type":"text"},{"type":"text","text":" mundo\n"}],
        "usage":{"input_tokens":9,"output_tokens":3},"stop_reason":"end_turn"})"});
    EXPECT_EQ(complete(backend()), QStringLiteral("\nHola mundo\n"));

    const ReceivedRequest request = server.requests().at(0);
    EXPECT_EQ(request.method + ' ' + request.target, "POST /v1/messages");
    EXPECT_EQ(request.headers.value("content-type"), "application/json");
    EXPECT_EQ(request.headers.value("x-api-key"), "clave");
    EXPECT_EQ(request.headers.value("anthropic-version"), "2023-06-01");
    EXPECT_EQ(request.json(), jsonObject(R"({"model":"claude-haiku-4-5","max_tokens":16000,
        "system":"Sos traductor.","output_config":{"effort":"xhigh"},
        "messages":[{"role":"user","content":"Traducí: Hi"}]})"));
}

TEST_F(AnthropicEngine, MapsEveryFailureToItsMessageAndRetriesOnlyTransientOnes) {
    const QString empty = QStringLiteral("La API devolvió una respuesta vacía.");
    std::vector<FailureRow> rows{
        {400, apiError("too big"), QStringLiteral("Pedido inválido (400): too big"), true},
        {401, apiError("bad key"), QStringLiteral("La API key fue rechazada (401): bad key"), true},
        {403, "no", QStringLiteral("La API key fue rechazada (403): no"), true},
        {404, apiError("model: x"), QStringLiteral("Modelo no encontrado (404): model: x"), true},
        {201, "{}", QStringLiteral("Error 201: {}"), false},
        {500, QByteArray(1000, 'x'),
         QStringLiteral("El servicio está saturado (500): ") + QString(300, u'x'), false},
        {200, R"({"content":[{"type":"text","text":"No."}],"stop_reason":"refusal"})",
         QStringLiteral("El modelo declinó traducir este fragmento. Probá con otro modelo."),
         false},
        {200, R"({"content":[{"type":"text","text":"\n\n"}]})", empty, false},
        {200, R"({"stop_reason":"end_turn"})", empty, false},
    };
    for (int status : {429, 500, 502, 503, 529})
        rows.push_back({status, apiError("Overloaded"),
                        QStringLiteral("El servicio está saturado (%1): Overloaded").arg(status),
                        false});
    const AnthropicBackend engine = backend();
    for (const FailureRow& row : rows)
        expectFailure(server, waits, 4, row, [&] { complete(engine); });

    server.reset();
    server.script({200, "<html>proxy</html>"}, 4);
    EXPECT_THROW(complete(engine), JsonError);
    EXPECT_EQ(server.hits(), 4);
}

TEST_F(AnthropicEngine, AMissingKeyFailsWithoutTrafficNamingTheSystemKeychain) {
    EXPECT_EQ(fatalMessageOf([&] { complete(backend({})); }),
              AnthropicBackend::missingKeyMessage());
    EXPECT_EQ(server.hits(), 0);
    const QString start =
        QStringLiteral("Falta la API key de Anthropic. Cargala en Ajustes: la clave se guarda en ");
    EXPECT_EQ(AnthropicBackend::missingKeyMessage(PlatformText::System::macOS),
              start + QStringLiteral("el Llavero de macOS."));
    EXPECT_EQ(AnthropicBackend::missingKeyMessage(PlatformText::System::gnuLinux),
              start + QStringLiteral("el llavero del sistema."));
}

TEST_F(AnthropicEngine, ACancelDuringASlowAnswerEndsTheCallAtOnce) {
    server.script(ScriptedReply::silence());
    std::stop_source stop;
    std::exception_ptr thrown;
    std::jthread call([&, engine = backend(QStringLiteral("clave"), Retry::cancellableWait)] {
        try {
            complete(engine, stop.get_token());
        } catch (...) {
            thrown = std::current_exception();
        }
    });
    ASSERT_TRUE(server.waitForRequests(1));
    stop.request_stop();
    call.join();
    EXPECT_THROW(std::rethrow_exception(thrown), Cancelled);
    EXPECT_EQ(server.hits(), 1);
}

TEST(AnthropicCatalogue, EffortsRoundTripThroughTheirStoredValues) {
    QStringList raw;
    for (Effort effort : AnthropicBackend::efforts()) {
        raw << AnthropicBackend::rawValue(effort);
        EXPECT_EQ(AnthropicBackend::effortFromRawValue(raw.last()), effort);
    }
    EXPECT_EQ(raw.join(u' '), QStringLiteral("low medium high xhigh max"));
    EXPECT_EQ(AnthropicBackend::effortFromRawValue(u"extreme"), std::nullopt);
    EXPECT_EQ(AnthropicBackend::models().first().id, AnthropicBackend::defaultModel());
}
