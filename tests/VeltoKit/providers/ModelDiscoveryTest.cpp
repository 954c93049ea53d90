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

TEST_F(ModelDiscoveryTest, ListsEachServicesModelsSortedFromOneRequestForItsFirstPage) {
    using Headers = QList<std::pair<QByteArray, QByteArray>>;
    const struct {
        Provider provider;
        QString path; // typed after the server's address
        QByteArray reply;
        QByteArray target;
        Headers headers;
        QStringList models;
    } rows[] = {
        {Provider::claude(),
         u"/v1/"_s,
         R"({"data":[{"id":"claude-b","display_name":"B"},
                     {"id":"claude-a","display_name":"A"}],"has_more":true})",
         "/v1/models?limit=100",
         Headers{{"x-api-key", "k"}, {"anthropic-version", "2023-06-01"}},
         {u"claude-a"_s, u"claude-b"_s}},
        {Provider::claude(), {}, "{}", "/models?limit=100", {}, {}},
        {Provider::local(),
         u"/v1/ "_s,
         R"({"object":"list","data":[{"id":"zeta"},{"id":"Alfa"},{"id":"beta"}]})",
         "/v1/models",
         Headers{{"authorization", "Bearer k"}},
         {u"Alfa"_s, u"beta"_s, u"zeta"_s}},
        // Only the models that generate text, without their prefix.
        {Provider::gemini(),
         u"/v1beta /"_s,
         R"({"models":[{"name":"models/gemini-2.5-pro",
            "supportedGenerationMethods":["generateContent","countTokens"]},{"name":"models/aqa"},
            {"name":"models/embedding","supportedGenerationMethods":["embedContent"]},
            {"name":"models/gemini-2.0-flash","supportedGenerationMethods":["generateContent"]}]})",
         "/v1beta/models?pageSize=200",
         Headers{{"x-goog-api-key", "k"}},
         {u"gemini-2.0-flash"_s, u"gemini-2.5-pro"_s}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.target.data());
        server.reset();
        server.script({200, row.reply});
        EXPECT_EQ(list(row.provider, u"k"_s, server.baseUrl() + row.path), row.models);
        ASSERT_EQ(server.hits(), 1);
        EXPECT_EQ(server.requests().at(0).target, row.target);
        for (const auto& [name, value] : row.headers)
            EXPECT_EQ(server.requests().at(0).headers.value(name), value);
    }
    server.reset();
    EXPECT_EQ(list(Provider::echo(), {}, server.baseUrl()), QStringList());
    EXPECT_EQ(list(Provider::claudeCLI(), {}, server.baseUrl()), QStringList());
    EXPECT_EQ(server.hits(), 0);
}

TEST_F(ModelDiscoveryTest, SaysWhyAServiceGaveNoList) {
    const struct {
        Provider provider;
        QString key;
        ScriptedReply reply; // status 0: nothing may be asked
        QString message;
    } rows[] = {
        {Provider::claude(),
         u"bad"_s,
         {401, R"({"error":{"message":"invalid x-api-key"}})"},
         uR"(Anthropic no devolvió los modelos (401): {"error":{"message":"invalid x-api-key"}})"_s},
        {Provider::claude(), {}, {0, {}}, u"Cargá primero la API key de Anthropic."_s},
        {Provider::local(),
         u"k"_s,
         {500, "roto"},
         u"El servidor respondió con un error al listar modelos."_s},
        {Provider::gemini(),
         u"k"_s,
         {403, R"({"error":{"message":"Permission denied"}})"},
         u"Gemini no devolvió los modelos: Permission denied"_s},
        {Provider::gemini(),
         u"k"_s,
         {200, "[]"},
         u"Gemini no devolvió los modelos: no pude leer la lista"_s},
        {Provider::gemini(), {}, {0, {}}, u"Cargá primero la API key de Gemini."_s},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.message.toStdString());
        server.reset();
        if (row.reply.status != 0)
            server.script(row.reply);
        EXPECT_EQ(fatalMessageOf([&] { list(row.provider, row.key, server.baseUrl()); }),
                  row.message);
        EXPECT_EQ(server.hits(), row.reply.status != 0 ? 1 : 0);
    }
    EXPECT_EQ(fatalMessageOf([&] { list(Provider::claude(), u"k"_s, u"no es una url"_s); }),
              u"La dirección de Anthropic no es válida."_s);
    server.script({200, "[1]"});
    EXPECT_TRUE(errorOf<JsonError>([&] { list(Provider::claude(), u"k"_s, server.baseUrl()); }));
}
