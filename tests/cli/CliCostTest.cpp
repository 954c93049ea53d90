#include <QFile>
#include <QJsonObject>

#include <gtest/gtest.h>

#include "CliHome.h"
#include "support/ChatCompletionsServer.h"
#include "support/SecretService.h"

using namespace Qt::StringLiterals;
using namespace velto;
using namespace velto::test;

namespace {

// veltomkv-cli with a local server that bills like a hosted one, at a price given for the run.
class CliCostTest : public CliHome {
protected:
    void SetUp() override {
        if (!usePrivateSecretService())
            GTEST_SKIP() << "no private Secret Service: run through ctest";
        CliHome::SetUp();
    }

    QStringList engine(const QStringList& more) const {
        return QStringList{u"--provider"_s, u"local"_s,     u"--base-url"_s, m_server.baseUrl(),
                           u"--model"_s,    u"m"_s,         u"--price"_s,    u"3,15"_s,
                           u"--json"_s,     u"--no-cache"_s} +
               more;
    }

    ChatCompletionsServer m_server{{.key = {}, .reportUsage = true}};
};

} // namespace

TEST_F(CliCostTest, EstimateSendsNothingAndARunReportsWhatItTook) {
    const QString video = englishVideo(u"Película.mkv"_s);
    const CliOutcome estimated = run(engine({u"--estimate"_s, video}));
    ASSERT_EQ(estimated.status, 0) << estimated.err.toStdString();
    EXPECT_EQ(m_server.completions(), 0);
    const QList<QJsonObject> alone = events(estimated.out, u"estimate"_s);
    ASSERT_EQ(alone.size(), 1) << estimated.out.toStdString();
    EXPECT_GT(alone[0][u"inputTokens"_s].toInteger(), 0);
    EXPECT_TRUE(events(estimated.out, u"result"_s).isEmpty());

    const CliOutcome translated = run(engine({video}));
    ASSERT_EQ(translated.status, 0) << translated.err.toStdString();
    const QList<QJsonObject> before = events(translated.out, u"estimate"_s);
    const QList<QJsonObject> usage = events(translated.out, u"usage"_s);
    ASSERT_EQ(before.size(), 1);
    ASSERT_EQ(usage.size(), 1);
    EXPECT_EQ(before[0][u"inputTokens"_s], alone[0][u"inputTokens"_s]);
    EXPECT_LT(translated.out.indexOf(u"\"estimate\""_s), translated.out.indexOf(u"\"usage\""_s));
    EXPECT_NEAR(before[0][u"inputTokens"_s].toDouble() / usage[0][u"inputTokens"_s].toDouble(), 1.0,
                0.25);
    const double cost = usage[0][u"cost"_s].toDouble();
    EXPECT_DOUBLE_EQ(cost, (usage[0][u"inputTokens"_s].toDouble() * 3 +
                            usage[0][u"outputTokens"_s].toDouble() * 15) /
                               1e6);
}

TEST_F(CliCostTest, ACapTooSmallForOneRequestStopsBeforeSendingIt) {
    const CliOutcome capped = run(engine({u"--max-cost"_s, u"0.01"_s, englishVideo(u"a.mkv"_s)}));
    EXPECT_EQ(capped.status, 1);
    // Only the self-check reached the server.
    EXPECT_EQ(m_server.completions(), 1);
    EXPECT_TRUE(capped.err.startsWith(u"Paré para no pasar el tope de gasto: van US$ 0,00 "
                                      u"gastados, el tope es US$ 0,01"_s))
        << capped.err.toStdString();
    EXPECT_FALSE(QFile::exists(path(u"a.es.mkv"_s)));
}
