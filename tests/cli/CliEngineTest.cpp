#include <QFile>

#include <gtest/gtest.h>

#include "CliHome.h"
#include "support/ChatCompletionsServer.h"
#include "support/MediaFixtures.h"
#include "support/SecretService.h"

using namespace Qt::StringLiterals;
using namespace velto;
using namespace velto::test;

namespace {

using Outcome = CliOutcome;

// veltomkv-cli as a new user runs it against a local OpenAI-compatible server, with the private
// credential store of the test run.
class CliEngineTest : public CliHome {
protected:
    void SetUp() override {
        if (!usePrivateSecretService())
            GTEST_SKIP() << "no private Secret Service: run through ctest";
#if !defined(Q_OS_LINUX)
        GTEST_SKIP() << "would store keys in this user's own credential store";
#endif
        CliHome::SetUp();
    }

    // Every output of the run is kept, to look for the key in it.
    Outcome run(const QStringList& arguments, const QByteArray& input = {}) {
        const Outcome outcome = CliHome::run(arguments, input);
        m_everything += outcome.out + outcome.err;
        return outcome;
    }

    QStringList engine(const ChatCompletionsServer& server, const QStringList& more) const {
        return QStringList{u"--provider"_s, u"custom"_s, u"--base-url"_s, server.baseUrl()} + more;
    }

    QString m_everything;
};

} // namespace

TEST_F(CliEngineTest, ANewUserStoresAKeyListsModelsChecksAndTranslates) {
    ChatCompletionsServer server({.loseABlockOnce = true});
    const Outcome stored = run({u"--set-key"_s, u"custom"_s}, "sk-prueba\n");
    EXPECT_EQ(stored.status, 0) << stored.err.toStdString();
    EXPECT_EQ(stored.out, u"Guardé la clave de Otro servicio en el llavero del sistema.\n"_s);

    const Outcome models = run(engine(server, {u"--list-models"_s}));
    EXPECT_EQ(models.out, u"modelo-a\nmodelo-b\n"_s) << models.err.toStdString();
    const Outcome check = run(engine(server, {u"--model"_s, u"modelo-a"_s, u"--check"_s}));
    EXPECT_EQ(check.out, u"Otro servicio respondió correctamente. Todo listo.\n"_s)
        << check.err.toStdString();

    const QString source =
        englishVideo(u"Película.mkv"_s, {u"Hello there."_s, u"How are you?"_s, u"Fine, thanks."_s,
                                         u"Good night."_s, u"See you."_s});
    const Outcome translated = run(engine(
        server, {u"--model"_s, u"modelo-a"_s, u"--batch-size"_s, u"4"_s, u"--no-cache"_s, source}));
    ASSERT_EQ(translated.status, 0) << translated.err.toStdString();
    const QString track = MediaFixtures::subtitleText(path(u"Película.es.mkv"_s), 1);
    for (const QString& line : {u"es: Hello there."_s, u"es: Fine, thanks."_s, u"es: See you."_s})
        EXPECT_TRUE(track.contains(line)) << track.toStdString();
    EXPECT_FALSE(track.contains(u"think"_s)) << track.toStdString();
    // Preflight, the batch of four that lost a block, its two halves, and the last cue.
    EXPECT_EQ(server.completions(), 6);

    for (const QByteArray& authorization : server.authorizations())
        EXPECT_EQ(authorization, "Bearer sk-prueba");
    EXPECT_FALSE(m_everything.contains(u"sk-prueba"_s));
    QFile settings(path(u"config/VeltoMKV/VeltoMKV.conf"_s));
    if (settings.open(QIODevice::ReadOnly)) {
        EXPECT_FALSE(settings.readAll().contains("sk-prueba"));
    }

    EXPECT_EQ(run({u"--set-key"_s, u"custom"_s}, "").out, u"Borré la clave de Otro servicio.\n"_s);
    EXPECT_TRUE(run(engine(server, {u"--model"_s, u"m"_s, u"--check"_s}))
                    .err.startsWith(u"Falta la API key de Otro servicio."_s));
}

TEST_F(CliEngineTest, MissingRejectedAndUnreachableSettingsAreSaidInTheProgramsWords) {
    ChatCompletionsServer server({});
    // Nobody stores a Meta key in these tests; the other test owns the "custom" one. An engine
    // without a model is refused the same way, in its own sentence (tests/VeltoMKV/window).
    const Outcome missing = run({u"--provider"_s, u"meta"_s, u"--check"_s});
    EXPECT_EQ(missing.status, 1);
    EXPECT_EQ(missing.err,
              u"Falta la API key de Meta Llama. Cargala en Ajustes; la sacás de "
              "llama.developer.meta.com.\nDesde la terminal: printf %s \"$CLAVE\" | veltomkv-cli "
              "--set-key meta, o la variable VELTOMKV_API_KEY.\n"_s);

    m_environment.insert(u"VELTOMKV_API_KEY"_s, u"sk-mala"_s);
    const Outcome rejected = run(engine(server, {u"--model"_s, u"m"_s, u"--check"_s}));
    EXPECT_EQ(rejected.status, 1);
    EXPECT_EQ(rejected.err, u"La API key fue rechazada (401): {\"error\":{\"message\":\"Incorrect "
                            "API key provided\"}}\n"_s);

    const Outcome dead = run({u"--provider"_s, u"local"_s, u"--base-url"_s,
                              u"http://127.0.0.1:9/v1"_s, u"--list-models"_s});
    EXPECT_EQ(
        dead.err,
        u"No pude conectarme a http://127.0.0.1:9/v1. ¿Está corriendo el servidor local?\n"_s);

    m_environment.insert(u"DBUS_SESSION_BUS_ADDRESS"_s, u"unix:path=/nonexistent/bus"_s);
    const Outcome noStore = run({u"--set-key"_s, u"custom"_s}, "sk-prueba");
    EXPECT_EQ(noStore.status, 1);
    EXPECT_TRUE(noStore.err.startsWith(u"No encuentro el llavero del sistema"_s))
        << noStore.err.toStdString();
}
