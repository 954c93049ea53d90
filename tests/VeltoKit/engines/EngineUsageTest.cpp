#include <memory>

#include <gtest/gtest.h>

#include "VeltoKit/engines/AnthropicBackend.h"
#include "VeltoKit/engines/GeminiBackend.h"
#include "VeltoKit/engines/HttpClient.h"
#include "VeltoKit/engines/OpenAICompatibleBackend.h"
#include "support/ScriptedHttpServer.h"

using namespace Qt::StringLiterals;
using namespace velto;
using namespace velto::test;

// Each hosted service's own report of what an answer took, thinking billed as output; an answer
// without one reports nothing rather than zero.
TEST(EngineUsage, ReadsWhatEachServiceBillsThinkingIncluded) {
    enum class Engine { anthropic, openAI, gemini };
    struct Row {
        Engine engine;
        QByteArray body;
        std::optional<TokenUsage> usage;
    };
    const QList<Row> rows{
        {Engine::anthropic,
         R"({"content":[{"type":"text","text":"hola"}],
             "usage":{"input_tokens":120,"output_tokens":45}})",
         TokenUsage{120, 45}},
        {Engine::openAI,
         R"({"choices":[{"message":{"content":"hola"}}],
             "usage":{"prompt_tokens":90,"completion_tokens":70,
                      "completion_tokens_details":{"reasoning_tokens":60}}})",
         TokenUsage{90, 70}},
        {Engine::openAI, R"({"choices":[{"message":{"content":"hola"}}]})", std::nullopt},
        {Engine::gemini,
         R"({"candidates":[{"content":{"parts":[{"text":"hola"}]},"finishReason":"STOP"}],
             "usageMetadata":{"promptTokenCount":80,"candidatesTokenCount":10,
                              "thoughtsTokenCount":300}})",
         TokenUsage{80, 310}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.body.toStdString());
        ScriptedHttpServer server;
        server.script({200, row.body});
        const HttpBackend::Settings settings{u"clave-de-prueba"_s, u"m"_s,
                                             server.baseUrl() + u"/v1"_s, 30,
                                             std::make_shared<HttpClient>()};
        std::unique_ptr<TranslationBackend> engine;
        if (row.engine == Engine::anthropic)
            engine =
                std::make_unique<AnthropicBackend>(settings, AnthropicBackend::Effort::low, 100);
        else if (row.engine == Engine::openAI)
            engine = std::make_unique<OpenAICompatibleBackend>(settings, u"Local"_s, 0.3);
        else
            engine = std::make_unique<GeminiBackend>(settings, 0.3, 100);
        const EngineAnswer answer = engine->answer(u"Sos traductor."_s, u"Traducí: Hi"_s, {});
        EXPECT_EQ(answer.text, u"hola"_s);
        EXPECT_EQ(answer.usage, row.usage);
    }
}
