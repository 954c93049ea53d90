#include "VeltoKit/providers/EngineConfiguration.h"

#include "support/EngineTesting.h"

using namespace velto;
using namespace velto::test;
using namespace Qt::StringLiterals;
using Effort = AnthropicBackend::Effort;

namespace {

EngineConfiguration setup(const Provider& provider, const QString& key, const QString& model,
                          const QString& baseURL = {}) {
    return EngineConfiguration(provider, key, baseURL, model, Effort::medium, u"opus"_s, {});
}

} // namespace

TEST(EngineConfiguration, SaysWhatIsMissingAndNamesItself) {
    struct Row {
        EngineConfiguration configuration;
        std::optional<QString> missing;
        QString summary;
    };
    // A missing model is said in the settings window (tests/VeltoMKV/window).
    const std::vector<Row> rows = {
        {setup(Provider::custom(), {}, u"m"_s),
         u"Falta la API key de Otro servicio. Cargala en Ajustes; la sacás de el panel del "
         "servicio que uses."_s,
         u"Motor: Otro servicio · m"_s},
        {setup(Provider::gemini(), u"k"_s, {}),
         u"Elegí un modelo en Ajustes: apretá «Buscar» para ver los que ofrece Google Gemini."_s,
         u"Motor: Google Gemini · sin modelo elegido"_s},
        {setup(Provider::claude(), u"k"_s, {}), std::nullopt,
         u"Motor: Claude · sin modelo elegido"_s},
        {setup(Provider::openAI(), u"k"_s, u"gpt-x"_s), std::nullopt,
         u"Motor: ChatGPT (OpenAI) · gpt-x"_s},
        {setup(Provider::claudeCLI(), {}, {}), std::nullopt, u"Motor: Claude Code (opus)"_s},
        {setup(Provider::echo(), {}, {}), std::nullopt, u"Modo prueba: no se traduce nada"_s},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.configuration.provider.id.toStdString());
        EXPECT_EQ(row.configuration.missingRequirement(), row.missing);
        EXPECT_EQ(row.configuration.isReady(), !row.missing);
        EXPECT_EQ(row.configuration.summary(), row.summary);
        if (row.missing) {
            EXPECT_EQ(fatalMessageOf([&] { row.configuration.makeBackend(); }), *row.missing);
        }
    }
}

TEST(EngineConfiguration, CachedTranslationsNeverCrossModelsOrEfforts) {
    const auto scope = [](EngineConfiguration configuration) {
        return configuration.makeBackend()->cacheScope();
    };
    const EngineConfiguration local = setup(Provider::local(), {}, u"a"_s);
    EXPECT_EQ(scope(local), scope(setup(Provider::local(), u"k"_s, u"a"_s)));
    EXPECT_NE(scope(local), scope(setup(Provider::local(), {}, u"b"_s)));
    EXPECT_NE(scope(local), scope(setup(Provider::local(), {}, u"a"_s, u"http://other:1/v1"_s)));
    EXPECT_NE(scope(setup(Provider::gemini(), u"k"_s, u"a"_s)),
              scope(setup(Provider::gemini(), u"k"_s, u"b"_s)));
    EngineConfiguration claude = setup(Provider::claude(), u"k"_s, u"a"_s);
    const QString medium = scope(claude);
    claude.effort = Effort::high;
    EXPECT_NE(scope(claude), medium);
}
