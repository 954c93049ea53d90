#include "VeltoKit/providers/ModelPrices.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace velto;

// Which price a job goes by: the echo engine and the claude program never cost, the user's price
// beats a local address (a proxy to a paid service) and the table, a dated model id takes its
// family's price but a longer family name keeps its own, and another service's model is unknown.
TEST(ModelPrices, ResolvesTheUsersPriceTheTablesOrNone) {
    const TokenPrice mine{2, 4};
    struct Row {
        const Provider& provider;
        QString model;
        QString baseURL;
        std::optional<TokenPrice> user;
        ModelPrices::Source source;
    };
    const QList<Row> rows{
        {Provider::echo(), u""_s, u""_s, mine, ModelPrices::Source::free},
        {Provider::claudeCLI(), u""_s, u""_s, std::nullopt, ModelPrices::Source::free},
        {Provider::local(), u"qwen3:8b"_s, u"http://localhost:11434/v1"_s, std::nullopt,
         ModelPrices::Source::free},
        {Provider::custom(), u"m"_s, u"http://127.0.0.1:4000/v1"_s, mine,
         ModelPrices::Source::user},
        {Provider::openAI(), u"gpt-4o"_s, Provider::openAI().defaultBaseURL, mine,
         ModelPrices::Source::user},
        {Provider::custom(), u"gpt-4o"_s, Provider::custom().defaultBaseURL, std::nullopt,
         ModelPrices::Source::unknown},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.provider.id.toStdString() + " " + row.model.toStdString());
        const ModelPrices::Lookup found =
            ModelPrices::resolve(row.provider, row.model, row.baseURL, row.user);
        EXPECT_EQ(found.source, row.source);
        if (row.source == ModelPrices::Source::free) {
            EXPECT_EQ(found.price, TokenPrice{});
        }
        if (row.source == ModelPrices::Source::user) {
            EXPECT_EQ(found.price, mine);
        }
    }
    const auto known = [](const QString& model) {
        return ModelPrices::known(Provider::openAI(), model);
    };
    EXPECT_EQ(known(u"gpt-4o-2024-08-06"_s), known(u"gpt-4o"_s));
    EXPECT_EQ(known(u"gpt-4o-mini-2024-07-18"_s), known(u"gpt-4o-mini"_s));
    EXPECT_NE(known(u"gpt-4o-mini"_s), known(u"gpt-4o"_s));
    EXPECT_EQ(known(u"gpt-4o2"_s), std::nullopt);
}
