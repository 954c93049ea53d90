#include "VeltoKit/providers/ModelDiscovery.h"

#include "VeltoKit/engines/JsonReader.h"
#include "support/EngineTesting.h"

using namespace velto;
using namespace velto::test;
using namespace Qt::StringLiterals;

namespace {

class ModelDiscoveryTest : public EngineTest {
protected:
    QStringList list(const Provider& provider, const QString& key, const QString& address) {
        return ModelDiscovery::list(provider, key, address, *http);
    }
};

} // namespace

TEST_F(ModelDiscoveryTest, AsksEachServiceOnceForItsFirstPageOrSaysWhyItGaveNoList) {
    const Provider claude = Provider::claude(), local = Provider::local(),
                   gemini = Provider::gemini();
    const QString noGeminiList = u"Gemini no devolvió los modelos: "_s;
    const struct {
        Provider provider;
        ScriptedReply reply; // status 0: asked without a key, so nothing may be sent
        QString outcome;     // the models in order, or the fatal error's message
        QByteArray target = {};
        QMap<QByteArray, QByteArray> headers = {};
    } rows[] = {
        {claude,
         {200, R"({"data":[{"id":"b","display_name":"B"},{"id":"a"}]})"},
         u"a b"_s,
         "/v1/models?limit=100",
         {{"x-api-key", "k"}, {"anthropic-version", "2023-06-01"}}},
        {claude, {200, "{}"}, {}}, // no "data": no models
        {local,
         {200, R"({"data":[{"id":"zeta"},{"id":"Alfa"},{"id":"beta"}]})"},
         u"Alfa beta zeta"_s,
         "/v1/models",
         {{"authorization", "Bearer k"}}},
        // Only the models that generate text, without their prefix.
        {gemini,
         {200, R"({"models":[{"name":"models/b","supportedGenerationMethods":["generateContent"]},
            {"name":"models/aqa"},{"name":"e","supportedGenerationMethods":["embedContent"]},
            {"name":"models/a","supportedGenerationMethods":["countTokens","generateContent"]}]})"},
         u"a b"_s,
         "/v1/models?pageSize=200",
         {{"x-goog-api-key", "k"}}},
        // Anthropic's listing quotes the whole body, not the service's own message.
        {claude,
         {401, apiError("bad")},
         uR"(Anthropic no devolvió los modelos (401): {"error":{"message":"bad"}})"_s},
        {claude, {0, {}}, u"Cargá primero la API key de Anthropic."_s},
        {local, {500, "roto"}, u"El servidor respondió con un error al listar modelos."_s},
        {gemini, {403, apiError("Permission denied")}, noGeminiList + u"Permission denied"_s},
        {gemini, {200, "[]"}, noGeminiList + u"no pude leer la lista"_s},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.outcome.toStdString());
        server.reset();
        const bool asks = row.reply.status != 0;
        if (asks)
            server.script(row.reply);
        QStringList models;
        const auto error = errorOf([&] {
            models = list(row.provider, asks ? u"k"_s : QString(), server.baseUrl() + u"/v1/ "_s);
        });
        EXPECT_EQ(error ? error->message() : models.join(u' '), row.outcome);
        EXPECT_TRUE(!error || error->isFatal());
        EXPECT_EQ(server.hits(), asks ? 1 : 0);
        const ReceivedRequest request = server.requests().value(0);
        if (!row.target.isEmpty()) {
            EXPECT_EQ(request.target, row.target);
        }
        for (const auto& [name, value] : row.headers.asKeyValueRange())
            EXPECT_EQ(request.headers.value(name), value);
    }
    EXPECT_EQ(fatalMessageOf([&] { list(claude, u"k"_s, u"no es una url"_s); }),
              u"La dirección de Anthropic no es válida."_s);
    server.script({200, "[1]"});
    EXPECT_TRUE(errorOf<JsonError>([&] { list(claude, u"k"_s, server.baseUrl()); }));
    server.reset();
    EXPECT_EQ(list(Provider::echo(), {}, server.baseUrl()), QStringList());
    EXPECT_EQ(list(Provider::claudeCLI(), {}, server.baseUrl()), QStringList());
    EXPECT_EQ(server.hits(), 0);
}
