#include "VeltoKit/engines/GeminiBackend.h"

#include <gtest/gtest.h>

#include "support/EngineTesting.h"

using namespace velto;
using namespace velto::test;

namespace {

class GeminiEngine : public ::testing::Test {
protected:
    GeminiBackend backend(const QString& key = QStringLiteral("AIza"),
                          const QString& model = QStringLiteral("gemini-2.5-flash")) {
        return GeminiBackend(key, model, base() + QStringLiteral("/"), 0.3, 16000, 30, http,
                             waits.wait());
    }
    static QString complete(const GeminiBackend& engine) {
        return engine.complete(QStringLiteral("Sos traductor."), QStringLiteral("Traducí: Hi"), {});
    }
    QString base() const { return server.baseUrl() + QStringLiteral("/v1beta"); }
    QStringList listModels(const QString& key, const QString& suffix = {}) {
        return GeminiBackend::listModels(key, base() + suffix, *http, {});
    }

    ScriptedHttpServer server;
    std::shared_ptr<HttpClient> http = std::make_shared<HttpClient>();
    RecordedWaits waits;
};

QByteArray apiError(const char* message) {
    return QByteArray(R"({"error":{"code":400,"message":")") + message + R"(","status":"X"}})";
}

} // namespace

TEST_F(GeminiEngine, PostsGenerateContentAndKeepsAnAnswerCutByTheTokenLimit) {
    server.script({200, R"({"candidates":[{"content":{"parts":[{"text":"Hola"},{},{"text":" mun"}]},
        "finishReason":"MAX_TOKENS"},{"content":{"parts":[{"text":"otra"}]}}]})"});
    EXPECT_EQ(complete(backend()), QStringLiteral("Hola mun"));

    const ReceivedRequest request = server.requests().at(0);
    EXPECT_EQ(request.method + ' ' + request.target,
              "POST /v1beta/models/gemini-2.5-flash:generateContent");
    EXPECT_EQ(request.headers.value("x-goog-api-key"), "AIza");
    EXPECT_EQ(request.headers.value("content-type"), "application/json");
    EXPECT_EQ(request.json(),
              jsonObject(R"({"systemInstruction":{"parts":[{"text":"Sos traductor."}]},
        "contents":[{"role":"user","parts":[{"text":"Traducí: Hi"}]}],
        "generationConfig":{"temperature":0.3,"maxOutputTokens":16000},
        "safetySettings":[{"category":"HARM_CATEGORY_HARASSMENT","threshold":"BLOCK_NONE"},
          {"category":"HARM_CATEGORY_HATE_SPEECH","threshold":"BLOCK_NONE"},
          {"category":"HARM_CATEGORY_SEXUALLY_EXPLICIT","threshold":"BLOCK_NONE"},
          {"category":"HARM_CATEGORY_DANGEROUS_CONTENT","threshold":"BLOCK_NONE"}]})"));
}

TEST_F(GeminiEngine, MapsEveryFailureToItsMessageAndRetriesOnlyTransientOnes) {
    std::vector<FailureRow> rows{
        {400, apiError("API key not valid."),
         QStringLiteral("La API key de Gemini fue rechazada: API key not valid."), true},
        {400, apiError("Expired API Key"),
         QStringLiteral("La API key de Gemini fue rechazada: Expired API Key"), true},
        {400, apiError("Invalid JSON"),
         QStringLiteral("Gemini rechazó el pedido (400): Invalid JSON"), true},
        {404, "no existe", QStringLiteral("Gemini rechazó el pedido (404): no existe"), true},
        {401, apiError("nope"), QStringLiteral("La API key de Gemini no tiene permiso (401): nope"),
         true},
        {403, apiError("nope"), QStringLiteral("La API key de Gemini no tiene permiso (403): nope"),
         true},
        {502, QByteArray(1000, 'x'), QStringLiteral("Error 502 de Gemini: ") + QString(300, u'x'),
         false},
        {200, R"({"promptFeedback":{"blockReason":"PROHIBITED_CONTENT"}})",
         QStringLiteral(
             "Gemini bloqueó este fragmento (PROHIBITED_CONTENT). Probá con otro modelo o motor."),
         false},
        {200, R"({"candidates":[]})", QStringLiteral("Gemini no devolvió ninguna respuesta."),
         false},
        {200,
         R"({"candidates":[{"content":{"parts":[{"text":"Ho"}]},"finishReason":"RECITATION"}]})",
         QStringLiteral("Gemini cortó la respuesta (RECITATION)."), false},
        {200, R"({"candidates":[{"finishReason":"STOP"}]})",
         QStringLiteral("Gemini devolvió una respuesta vacía."), false},
    };
    for (int status : {429, 500, 503})
        rows.push_back({status, apiError("busy"),
                        QStringLiteral("Gemini está saturado (%1): busy").arg(status), false});
    const GeminiBackend engine = backend();
    for (const FailureRow& row : rows)
        expectFailure(server, waits, 4, row, [&] { complete(engine); });
}

TEST_F(GeminiEngine, RefusesAMissingKeyModelOrAddressBeforeSending) {
    EXPECT_EQ(fatalMessageOf([&] { complete(backend({})); }),
              QStringLiteral("Falta la API key de Gemini. Sacala de "
                             "https://aistudio.google.com/apikey y cargala en Ajustes."));
    EXPECT_EQ(fatalMessageOf([&] { complete(backend(QStringLiteral("k"), {})); }),
              QStringLiteral("Elegí un modelo de Gemini en Ajustes."));
    EXPECT_EQ(fatalMessageOf(
                  [&] { complete(backend(QStringLiteral("k"), QStringLiteral("gemini pro"))); }),
              QStringLiteral("La dirección de Gemini no es válida."));
    EXPECT_EQ(server.hits(), 0);
}

TEST_F(GeminiEngine, ListsOnlyGenerativeModelsWithoutTheirPrefix) {
    server.script({200, R"({"models":[
        {"name":"models/gemini-2.5-pro","supportedGenerationMethods":["generateContent","countTokens"]},
        {"name":"models/text-embedding-004","supportedGenerationMethods":["embedContent"]},
        {"name":"models/gemini-2.0-flash","supportedGenerationMethods":["generateContent"]},
        {"name":"models/aqa"}]})"});
    EXPECT_EQ(listModels(QStringLiteral("k"), QStringLiteral(" /")),
              QStringList({QStringLiteral("gemini-2.0-flash"), QStringLiteral("gemini-2.5-pro")}));
    EXPECT_EQ(server.requests().at(0).target, "/v1beta/models?pageSize=200");
    EXPECT_EQ(server.requests().at(0).headers.value("x-goog-api-key"), "k");

    EXPECT_EQ(fatalMessageOf([&] { listModels({}); }),
              QStringLiteral("Cargá primero la API key de Gemini."));
    server.script({403, apiError("Permission denied")});
    EXPECT_EQ(fatalMessageOf([&] { listModels(QStringLiteral("k")); }),
              QStringLiteral("Gemini no devolvió los modelos: Permission denied"));
    server.script({200, "[]"});
    EXPECT_EQ(fatalMessageOf([&] { listModels(QStringLiteral("k")); }),
              QStringLiteral("Gemini no devolvió los modelos: no pude leer la lista"));
}
