#include "VeltoKit/engines/OpenAICompatibleBackend.h"

#include <gtest/gtest.h>

#include "support/EngineTesting.h"

using namespace velto;
using namespace velto::test;

namespace {

class OpenAICompatibleEngine : public ::testing::Test {
protected:
    OpenAICompatibleBackend backend(const QString& base, const QString& key = {},
                                    const QString& model = QStringLiteral("qwen3:8b"),
                                    double timeout = 30) {
        return OpenAICompatibleBackend(base, model, key, QStringLiteral("Ollama"), 0.3, timeout,
                                       http, waits.wait());
    }
    static QString complete(const OpenAICompatibleBackend& engine) {
        return engine.complete(QStringLiteral("Sos traductor."), QStringLiteral("Traducí: Hi"), {});
    }
    QString v1() const { return server.baseUrl() + QStringLiteral("/v1"); }

    ScriptedHttpServer server;
    std::shared_ptr<HttpClient> http = std::make_shared<HttpClient>();
    RecordedWaits waits;
};

QByteArray answer(const char* content) {
    return QByteArray(R"({"choices":[{"message":{"role":"assistant","content":")") + content +
           "\"}}]}";
}

} // namespace

TEST_F(OpenAICompatibleEngine, PostsTheChatAndStripsThinkingButNotTheAnswer) {
    server.script({200, answer("<think>a</think>Hola\\n<think>\\nb\\n</think> mundo\\n")}, 2);
    EXPECT_EQ(complete(backend(v1() + QStringLiteral("/"))), QStringLiteral("Hola\n mundo\n"));
    EXPECT_EQ(complete(backend(v1(), QStringLiteral("sk-1"))), QStringLiteral("Hola\n mundo\n"));

    const std::vector<ReceivedRequest> requests = server.requests();
    EXPECT_EQ(requests.at(0).method + ' ' + requests.at(0).target, "POST /v1/chat/completions");
    EXPECT_EQ(requests.at(0).headers.value("content-type"), "application/json");
    EXPECT_FALSE(requests.at(0).headers.contains("authorization"));
    EXPECT_EQ(requests.at(1).headers.value("authorization"), "Bearer sk-1");
    EXPECT_EQ(requests.at(0).json(), jsonObject(R"({"model":"qwen3:8b","temperature":0.3,
        "stream":false,"messages":[{"role":"system","content":"Sos traductor."},
        {"role":"user","content":"Traducí: Hi"}]})"));
}

TEST_F(OpenAICompatibleEngine, MapsEveryFailureToItsMessageAndRetriesOnlyTransientOnes) {
    const QString empty = QStringLiteral("El modelo local devolvió una respuesta vacía.");
    std::vector<FailureRow> rows{
        {400, "bad", QStringLiteral("Pedido inválido (400): bad"), true},
        {401, "no", QStringLiteral("La API key fue rechazada (401): no"), true},
        {403, "no", QStringLiteral("La API key fue rechazada (403): no"), true},
        {404, R"({"error":{"message":"x"}})",
         QStringLiteral(
             R"(El servidor no reconoce el modelo «qwen3:8b» (404). {"error":{"message":"x"}})"),
         true},
        {500, QByteArray(1000, 'x'),
         QStringLiteral("El servicio está saturado (500): ") + QString(300, u'x'), false},
        {200, answer("<think>solo pienso</think>\\n\\n"), empty, false},
        {200, R"({"choices":[]})", empty, false},
        {200, R"({"choices":[{"message":{"content":null}}]})", empty, false},
    };
    for (int status : {429, 502, 503})
        rows.push_back({status, "ocupado",
                        QStringLiteral("El servicio está saturado (%1): ocupado").arg(status),
                        false});
    for (int status : {201, 501, 504, 529})
        rows.push_back(
            {status, "raro", QStringLiteral("El servidor devolvió %1: raro").arg(status), false});
    const OpenAICompatibleBackend engine = backend(v1());
    for (const FailureRow& row : rows)
        expectFailure(server, waits, 3, row, [&] { complete(engine); });
}

TEST_F(OpenAICompatibleEngine, AServerThatCannotBeReachedFailsOnceWithoutWaiting) {
    const int closedPort = ScriptedHttpServer().port();
    const QString local = QStringLiteral("http://127.0.0.1:%1/v1").arg(closedPort);
    EXPECT_EQ(fatalMessageOf([&] { complete(backend(local)); }),
              QStringLiteral("No pude conectarme a ") + local +
                  QStringLiteral(". ¿Está corriendo el servidor local?"));
    const QString remote = QStringLiteral("http://127.0.0.2:%1/v1").arg(closedPort);
    EXPECT_EQ(fatalMessageOf([&] { complete(backend(remote)); }),
              QStringLiteral("No pude conectarme a ") + remote +
                  QStringLiteral(". Revisá la dirección y tu conexión."));
    EXPECT_TRUE(waits.waits().empty());

    server.script(ScriptedReply::silence());
    EXPECT_TRUE(fatalMessageOf([&] {
                    complete(backend(v1(), {}, QStringLiteral("m"), 0.2));
                }).endsWith(u"¿Está corriendo el servidor local?"));
    EXPECT_EQ(server.hits(), 1);
}

TEST_F(OpenAICompatibleEngine, RefusesAMissingModelOrAnInvalidAddressBeforeSending) {
    EXPECT_EQ(fatalMessageOf([&] { complete(backend(v1(), {}, {})); }),
              QStringLiteral("Elegí un modelo en Ajustes."));
    EXPECT_EQ(fatalMessageOf([&] { complete(backend(QStringLiteral("localhost:11434/v1"))); }),
              QStringLiteral("La dirección del servidor no es válida."));
    EXPECT_EQ(server.hits(), 0);
}

TEST_F(OpenAICompatibleEngine, ListsTheServersModelsSorted) {
    server.script({200, R"({"object":"list","data":[{"id":"zeta"},{"id":"Alfa"},{"id":"beta"}]})"});
    EXPECT_EQ(
        OpenAICompatibleBackend::listModels(v1() + QStringLiteral("/ "), QStringLiteral("k"), *http,
                                            {}),
        QStringList({QStringLiteral("Alfa"), QStringLiteral("beta"), QStringLiteral("zeta")}));
    EXPECT_EQ(server.requests().at(0).target, "/v1/models");
    EXPECT_EQ(server.requests().at(0).headers.value("authorization"), "Bearer k");

    server.script({500, "roto"});
    EXPECT_EQ(fatalMessageOf([&] { OpenAICompatibleBackend::listModels(v1(), {}, *http, {}); }),
              QStringLiteral("El servidor respondió con un error al listar modelos."));
}
