#include "VeltoKit/engines/AnthropicBackend.h"

#include <thread>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <gtest/gtest.h>

#include "VeltoKit/engines/JsonReader.h"
#include "support/EngineTesting.h"

using namespace velto;
using namespace velto::test;
using Effort = AnthropicBackend::Effort;

namespace {

class AnthropicEngine : public ::testing::Test {
protected:
    AnthropicBackend backend(const QString& key = QStringLiteral("clave-secreta"),
                             Retry::Wait wait = {}) const {
        return AnthropicBackend(key, QStringLiteral("claude-haiku-4-5"), Effort::xhigh, 16000, 30,
                                http, wait ? wait : waits.wait(), server.baseUrl());
    }
    QString complete(const AnthropicBackend& engine) const {
        return engine.complete(QStringLiteral("Sos traductor."), QStringLiteral("Traducí: Hi"), {});
    }

    ScriptedHttpServer server;
    std::shared_ptr<HttpClient> http = std::make_shared<HttpClient>();
    mutable RecordedWaits waits;
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
    EXPECT_EQ(request.method, "POST");
    EXPECT_EQ(request.target, "/v1/messages");
    EXPECT_EQ(request.headers.value("content-type"), "application/json");
    EXPECT_EQ(request.headers.value("x-api-key"), "clave-secreta");
    EXPECT_EQ(request.headers.value("anthropic-version"), "2023-06-01");
    const QJsonObject expected{
        {QStringLiteral("model"), QStringLiteral("claude-haiku-4-5")},
        {QStringLiteral("max_tokens"), 16000},
        {QStringLiteral("system"), QStringLiteral("Sos traductor.")},
        {QStringLiteral("output_config"),
         QJsonObject{{QStringLiteral("effort"), QStringLiteral("xhigh")}}},
        {QStringLiteral("messages"),
         QJsonArray{QJsonObject{{QStringLiteral("role"), QStringLiteral("user")},
                                {QStringLiteral("content"), QStringLiteral("Traducí: Hi")}}}}};
    EXPECT_EQ(request.json(), expected);
}

TEST_F(AnthropicEngine, MapsEveryFailureToItsMessageAndRetriesOnlyTransientOnes) {
    const QString saturated = QStringLiteral("El servicio está saturado (%1): Overloaded");
    std::vector<FailureRow> rows{
        {400, apiError("max_tokens: too big"),
         QStringLiteral("Pedido inválido (400): max_tokens: too big"), true},
        {401, apiError("bad key"), QStringLiteral("La API key fue rechazada (401): bad key"), true},
        {403, "prohibido", QStringLiteral("La API key fue rechazada (403): prohibido"), true},
        {404, apiError("model: x"), QStringLiteral("Modelo no encontrado (404): model: x"), true},
        {201, "{}", QStringLiteral("Error 201: {}"), false},
        {500, QByteArray(1000, 'x'),
         QStringLiteral("El servicio está saturado (500): ") + QString(300, u'x'), false},
        {200, R"({"content":[{"type":"text","text":"No."}],"stop_reason":"refusal"})",
         QStringLiteral("El modelo declinó traducir este fragmento. Probá con otro modelo."),
         false},
        {200, R"({"content":[{"type":"text","text":"\n\n"}]})",
         QStringLiteral("La API devolvió una respuesta vacía."), false},
        {200, R"({"stop_reason":"end_turn"})",
         QStringLiteral("La API devolvió una respuesta vacía."), false},
    };
    for (int status : {429, 500, 502, 503, 529})
        rows.push_back({status, apiError("Overloaded"), saturated.arg(status), false});
    const AnthropicBackend engine = backend();
    for (const FailureRow& row : rows)
        expectFailure(server, waits, 4, row, [&] { complete(engine); });
}

TEST_F(AnthropicEngine, RetriesAnUnreadableAnswerAndReportsTheDecodingFailure) {
    server.script({200, "<html>proxy</html>"}, 4);
    EXPECT_THROW(complete(backend()), JsonError);
    EXPECT_EQ(server.hits(), 4);
}

TEST_F(AnthropicEngine, AMissingKeyFailsWithoutTrafficNamingTheSystemKeychain) {
    const std::optional<TranslationError> error = errorOf([&] { complete(backend({})); });
    ASSERT_TRUE(error);
    EXPECT_TRUE(error->fatal());
    EXPECT_EQ(error->message(), AnthropicBackend::missingKeyMessage());
    EXPECT_EQ(server.hits(), 0);
    EXPECT_EQ(
        AnthropicBackend::missingKeyMessage(PlatformText::System::macOS),
        QStringLiteral("Falta la API key de Anthropic. Cargala en Ajustes: la clave se guarda "
                       "en el Llavero de macOS."));
    EXPECT_EQ(
        AnthropicBackend::missingKeyMessage(PlatformText::System::gnuLinux),
        QStringLiteral("Falta la API key de Anthropic. Cargala en Ajustes: la clave se guarda "
                       "en el llavero del sistema."));
}

TEST_F(AnthropicEngine, ACancelDuringASlowAnswerEndsTheCallAtOnce) {
    server.script(ScriptedReply::silence());
    std::stop_source stop;
    std::exception_ptr thrown;
    std::jthread call([&] {
        try {
            backend(QStringLiteral("clave"), Retry::cancellableWait)
                .complete(QStringLiteral("s"), QStringLiteral("p"), stop.get_token());
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
