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

TEST_F(ModelDiscoveryTest, ListsAnthropicModelsSortedFromTheFirstPage) {
    server.script({200, R"({"data":[{"id":"claude-b","display_name":"B"},
                                     {"id":"claude-a","display_name":"A"}],"has_more":true})"});
    EXPECT_EQ(list(Provider::claude(), u"sk"_s, server.baseUrl() + u"/v1/"_s),
              QStringList({u"claude-a"_s, u"claude-b"_s}));
    const ReceivedRequest request = server.requests().first();
    EXPECT_EQ(request.target, "/v1/models?limit=100");
    EXPECT_EQ(request.headers.value("x-api-key"), "sk");
    EXPECT_EQ(request.headers.value("anthropic-version"), "2023-06-01");

    server.script({200, "{}"});
    EXPECT_EQ(list(Provider::claude(), u"sk"_s, server.baseUrl()), QStringList());
}

TEST_F(ModelDiscoveryTest, SaysWhyAnthropicGaveNoList) {
    server.script({401, R"({"error":{"message":"invalid x-api-key"}})"});
    EXPECT_EQ(fatalMessageOf([&] { list(Provider::claude(), u"bad"_s, server.baseUrl()); }),
              u"Anthropic no devolvió los modelos (401): {\"error\":{\"message\":\"invalid "
              "x-api-key\"}}"_s);
    EXPECT_EQ(fatalMessageOf([&] { list(Provider::claude(), {}, server.baseUrl()); }),
              u"Cargá primero la API key de Anthropic."_s);
    EXPECT_EQ(fatalMessageOf([&] { list(Provider::claude(), u"k"_s, u"no es una url"_s); }),
              u"La dirección de Anthropic no es válida."_s);
    server.script({200, "[1]"});
    EXPECT_TRUE(errorOf<JsonError>([&] { list(Provider::claude(), u"k"_s, server.baseUrl()); }));
    EXPECT_EQ(server.hits(), 2);
}

TEST_F(ModelDiscoveryTest, DispatchesToEachFlavorsOwnListing) {
    server.script({200, R"({"data":[{"id":"qwen3:8b"},{"id":"llama3"}]})"});
    EXPECT_EQ(list(Provider::local(), {}, server.baseUrl() + u"/v1"_s),
              QStringList({u"llama3"_s, u"qwen3:8b"_s}));
    EXPECT_EQ(server.requests().last().target, "/v1/models");

    server.script({200, R"({"models":[{"name":"models/gemini-x",
                                       "supportedGenerationMethods":["generateContent"]}]})"});
    EXPECT_EQ(list(Provider::gemini(), u"k"_s, server.baseUrl() + u"/v1beta"_s),
              QStringList({u"gemini-x"_s}));

    EXPECT_EQ(list(Provider::echo(), {}, server.baseUrl()), QStringList());
    EXPECT_EQ(list(Provider::claudeCLI(), {}, server.baseUrl()), QStringList());
    EXPECT_EQ(server.hits(), 2);
}
