#include <thread>

#include "VeltoKit/engines/AnthropicBackend.h"
#include "VeltoKit/engines/GeminiBackend.h"
#include "VeltoKit/engines/JsonReader.h"
#include "VeltoKit/engines/OpenAICompatibleBackend.h"
#include "support/EngineTesting.h"
#include "support/Eventually.h"

using namespace velto;
using namespace velto::test;
using namespace Qt::StringLiterals;
using Effort = AnthropicBackend::Effort;

namespace {

// The three engines, each against the scripted server with its retry waits recorded.
class HttpEngines : public EngineTest {
protected:
    // A client deaf to a stop would wait out the hour: the cancel test would hang, not pass.
    AnthropicBackend anthropic(const QString& key = u"clave"_s) const {
        return {{key, u"claude-haiku-4-5"_s, server.baseUrl() + u"/v1"_s, 3600, http, wait},
                Effort::xhigh,
                16000};
    }
    OpenAICompatibleBackend openAI(const QString& base, const QString& key = {},
                                   const QString& model = u"qwen3:8b"_s,
                                   double timeout = 30) const {
        return {{key, model, base, timeout, http, wait}, u"Ollama"_s, 0.3};
    }
    GeminiBackend gemini(const QString& key = u"AIza"_s,
                         const QString& model = u"gemini-2.5-flash"_s) const {
        return {{key, model, server.baseUrl() + u"/v1beta/"_s, 30, http, wait}, 0.3, 16000};
    }
    QString v1() const { return server.baseUrl() + u"/v1"_s; }
};

class AnthropicEngine : public HttpEngines {};
class OpenAICompatibleEngine : public HttpEngines {};
class GeminiEngine : public HttpEngines {};

} // namespace

TEST_F(AnthropicEngine, PostsOneMessageAndJoinsTheTextBlocksUntrimmed) {
    server.script({200, R"({"content":[{"type":"thinking","thinking":"mmm"},
        {"type":"text","text":"\nHola"},{"type":"text"},{"type":"text","text":" mundo\n"}],
        "usage":{"input_tokens":9,"output_tokens":3},"stop_reason":"end_turn"})"});
    EXPECT_EQ(ask(anthropic()), u"\nHola mundo\n"_s);
    const ReceivedRequest request = server.requests().at(0);
    EXPECT_EQ(request.method + ' ' + request.target, "POST /v1/messages");
    EXPECT_EQ(request.headers.value("content-type"), "application/json");
    EXPECT_EQ(request.headers.value("x-api-key"), "clave");
    EXPECT_EQ(request.headers.value("anthropic-version"), "2023-06-01");
    EXPECT_EQ(json(request.body), json(R"({"model":"claude-haiku-4-5","max_tokens":16000,
        "system":"Sos traductor.","output_config":{"effort":"xhigh"},
        "messages":[{"role":"user","content":"Traducí: Hi"}]})"));
}

TEST_F(AnthropicEngine, MapsEveryFailureToItsMessageAndRetriesOnlyTransientOnes) {
    const QString empty = u"La API devolvió una respuesta vacía."_s;
    // One row per way a failure is told: the service's own message, the raw body cut short,
    // an answer that is no translation.
    const std::vector<FailureRow> rows{
        {"401", apiError("bad key"), u"La API key fue rechazada (401): bad key"_s, true},
        {"429 500 502 503 529", apiError("Overloaded"),
         u"El servicio está saturado (%1): Overloaded"_s, false},
        {"500", QByteArray(1000, 'x'), u"El servicio está saturado (500): "_s + QString(300, u'x'),
         false},
        {"200", R"({"content":[{"type":"text","text":"No."}],"stop_reason":"refusal"})",
         u"El modelo declinó traducir este fragmento. Probá con otro modelo."_s, false},
        {"200", R"({"content":[{"type":"text","text":"\n\n"}]})", empty, false},
    };
    expectFailures(4, rows, [&] { ask(anthropic()); });

    server.reset();
    server.script({200, "<html>proxy</html>"}, 4);
    EXPECT_THROW(ask(anthropic()), JsonError);
    EXPECT_EQ(server.hits(), 4);
}

TEST_F(AnthropicEngine, ACancelDuringASlowAnswerEndsTheCallAtOnce) {
    server.script(ScriptedReply::silence());
    std::stop_source stop;
    std::jthread call([&] { EXPECT_THROW(ask(anthropic(), stop.get_token()), Cancelled); });
    ASSERT_TRUE(eventually([&] { return server.hits() == 1; }));
    stop.request_stop();
    call.join();
    EXPECT_EQ(server.hits(), 1); // the retries of a cancelled call send nothing
}

TEST_F(OpenAICompatibleEngine, PostsTheChatAndStripsThinkingButNotTheAnswer) {
    server.script({200, R"({"choices":[{"message":{"content":)"
                        R"("<think>a</think>Hola\n<think>\nb\n</think> mundo\n"}}]})"},
                  2);
    EXPECT_EQ(ask(openAI(u" "_s + v1() + u"// \n"_s)), u"Hola\n mundo\n"_s);
    EXPECT_EQ(ask(openAI(v1(), u"sk-1"_s)), u"Hola\n mundo\n"_s);
    const QList<ReceivedRequest> requests = server.requests();
    EXPECT_EQ(requests.at(0).method + ' ' + requests.at(0).target, "POST /v1/chat/completions");
    EXPECT_EQ(requests.at(0).headers.value("content-type"), "application/json");
    EXPECT_FALSE(requests.at(0).headers.contains("authorization"));
    EXPECT_EQ(requests.at(1).headers.value("authorization"), "Bearer sk-1");
    EXPECT_EQ(json(requests.at(0).body), json(R"({"model":"qwen3:8b","temperature":0.3,
        "stream":false,"messages":[{"role":"system","content":"Sos traductor."},
        {"role":"user","content":"Traducí: Hi"}]})"));
}

TEST_F(OpenAICompatibleEngine, MapsEveryFailureToItsMessageAndRetriesOnlyTransientOnes) {
    const QString empty = u"El modelo local devolvió una respuesta vacía."_s;
    const std::vector<FailureRow> rows{
        {"401 403", "no", u"La API key fue rechazada (%1): no"_s, true},
        {"404", R"({"error":"x"})",
         uR"(El servidor no reconoce el modelo «qwen3:8b» (404). {"error":"x"})"_s, true},
        {"429 502 503", "ocupado", u"El servicio está saturado (%1): ocupado"_s, false},
        {"500", QByteArray(1000, 'x'), u"El servicio está saturado (500): "_s + QString(300, u'x'),
         false},
        {"201 501 504 529", "raro", u"El servidor devolvió %1: raro"_s, false},
        {"200", R"({"choices":[{"message":{"content":"<think>solo pienso</think>\n\n"}}]})", empty,
         false},
        {"200", R"({"choices":[{"message":{"content":null}}]})", empty, false},
    };
    expectFailures(3, rows, [&] { ask(openAI(v1())); });
}

TEST_F(OpenAICompatibleEngine, AServerThatCannotBeReachedFailsOnceWithoutWaiting) {
    const QString local = u". ¿Está corriendo el servidor local?"_s;
    const int closedPort = ScriptedHttpServer().port();
    for (const QString& host : {u"127.0.0.1"_s, u"localhost"_s, u"127.0.0.2"_s}) {
        const QString base = u"http://%1:%2/v1"_s.arg(host).arg(closedPort);
        const QString advice =
            host == u"127.0.0.2" ? u". Revisá la dirección y tu conexión."_s : local;
        EXPECT_EQ(fatalMessageOf([&] { ask(openAI(base)); }),
                  u"No pude conectarme a "_s + base + advice);
    }
    server.script(ScriptedReply::silence());
    EXPECT_EQ(fatalMessageOf([&] { ask(openAI(v1(), {}, u"m"_s, 0.2)); }),
              u"No pude conectarme a "_s + v1() + local);
    EXPECT_EQ(server.hits(), 1);
    EXPECT_TRUE(waits.empty());
}

TEST_F(GeminiEngine, PostsGenerateContentAndKeepsAnAnswerCutByTheTokenLimit) {
    server.script({200, R"({"candidates":[{"content":{"parts":[{"text":"Hola"},{},{"text":" mun"}]},
        "finishReason":"MAX_TOKENS"},{"content":{"parts":[{"text":"otra"}]}}]})"});
    EXPECT_EQ(ask(gemini()), u"Hola mun"_s);
    const ReceivedRequest request = server.requests().at(0);
    EXPECT_EQ(request.method + ' ' + request.target,
              "POST /v1beta/models/gemini-2.5-flash:generateContent");
    EXPECT_EQ(request.headers.value("x-goog-api-key"), "AIza");
    EXPECT_EQ(request.headers.value("content-type"), "application/json");
    EXPECT_EQ(json(request.body),
              json(R"({"systemInstruction":{"parts":[{"text":"Sos traductor."}]},
        "contents":[{"role":"user","parts":[{"text":"Traducí: Hi"}]}],
        "generationConfig":{"temperature":0.3,"maxOutputTokens":16000},
        "safetySettings":[{"category":"HARM_CATEGORY_HARASSMENT","threshold":"BLOCK_NONE"},
          {"category":"HARM_CATEGORY_HATE_SPEECH","threshold":"BLOCK_NONE"},
          {"category":"HARM_CATEGORY_SEXUALLY_EXPLICIT","threshold":"BLOCK_NONE"},
          {"category":"HARM_CATEGORY_DANGEROUS_CONTENT","threshold":"BLOCK_NONE"}]})"));
}

TEST_F(GeminiEngine, MapsEveryFailureToItsMessageAndRetriesOnlyTransientOnes) {
    const QString rejected = u"La API key de Gemini fue rechazada: "_s;
    const std::vector<FailureRow> rows{
        {"400", apiError("API key not valid."), rejected + u"API key not valid."_s, true},
        {"400", apiError("Invalid JSON"), u"Gemini rechazó el pedido (400): Invalid JSON"_s, true},
        {"401 403", apiError("nope"), u"La API key de Gemini no tiene permiso (%1): nope"_s, true},
        {"429 500 503", apiError("busy"), u"Gemini está saturado (%1): busy"_s, false},
        {"502", QByteArray(1000, 'x'), u"Error 502 de Gemini: "_s + QString(300, u'x'), false},
        {"200", R"({"promptFeedback":{"blockReason":"OTHER"}})",
         u"Gemini bloqueó este fragmento (OTHER). Probá con otro modelo o motor."_s, false},
        {"200", R"({"candidates":[]})", u"Gemini no devolvió ninguna respuesta."_s, false},
        {"200", R"({"candidates":[{"content":{"parts":[{"text":"Ho"}]},"finishReason":"SAFETY"}]})",
         u"Gemini cortó la respuesta (SAFETY)."_s, false},
        {"200", R"({"candidates":[{"finishReason":"STOP"}]})",
         u"Gemini devolvió una respuesta vacía."_s, false},
    };
    expectFailures(4, rows, [&] { ask(gemini()); });
}

TEST_F(HttpEngines, RefuseWhatTheyCannotAskWithoutSendingAnything) {
    const QString badAddress = u"La dirección del servidor no es válida."_s;
    const std::pair<std::function<void()>, QString> refusals[] = {
        {[&] { ask(anthropic({})); }, AnthropicBackend::missingKeyMessage()},
        {[&] { ask(openAI(v1(), {}, {})); }, u"Elegí un modelo en Ajustes."_s},
        {[&] { ask(openAI(u"localhost:11434/v1"_s)); }, badAddress},
        {[&] { ask(gemini({})); },
         u"Falta la API key de Gemini. Sacala de https://aistudio.google.com/apikey y cargala en "
         u"Ajustes."_s},
        {[&] { ask(gemini(u"k"_s, {})); }, u"Elegí un modelo de Gemini en Ajustes."_s},
        {[&] { ask(gemini(u"k"_s, u"gemini pro"_s)); }, u"La dirección de Gemini no es válida."_s},
    };
    for (const auto& [call, message] : refusals)
        EXPECT_EQ(fatalMessageOf(call), message);
    EXPECT_EQ(server.hits(), 0);
}
