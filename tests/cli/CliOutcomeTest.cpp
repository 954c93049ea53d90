#include <mutex>

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMap>

#include <gtest/gtest.h>

#include "CliHome.h"
#include "support/ChatCompletionsServer.h"
#include "support/ScriptedHttpServer.h"

using namespace Qt::StringLiterals;
using namespace velto;
using namespace velto::test;

namespace {

const QStringList english = {u"Where did you put the keys?"_s,  u"I left them on the table."_s,
                             u"We should leave before dark."_s, u"Take the car, not the bike."_s,
                             u"Call me when you get there."_s,  u"See you tomorrow, then."_s};

struct CliRun : CliOutcome {
    QList<QJsonObject> events;
};

// veltomkv-cli against a model on this machine.
class CliOutcomeTest : public CliHome {
protected:
    CliRun translate(const QString& baseUrl, const QString& output, const QStringList& extra = {}) {
        if (m_video.isEmpty())
            m_video = englishVideo(u"Película.mkv"_s, english);
        CliRun run{this->run(QStringList{u"--provider"_s, u"local"_s, u"--base-url"_s, baseUrl,
                                         u"--model"_s, u"m"_s, u"--no-cache"_s, u"--json"_s,
                                         u"--output"_s, path(output)} +
                             extra + QStringList{m_video}),
                   {}};
        run.events = events(run.out);
        return run;
    }

    QString m_video;
};

// Every stage's bar only moves forward and never past its end.
void expectProgressMovesForward(const CliRun& run) {
    QString stage;
    double last = 0;
    for (const QJsonObject& event : run.events) {
        if (event[u"type"] != u"update"_s || !event.contains(u"progress"))
            continue;
        const double progress = event[u"progress"].toDouble();
        if (event[u"stage"].toString() == stage) {
            EXPECT_GE(progress, last) << stage.toStdString() << ": " << run.out.toStdString();
        }
        EXPECT_LE(progress, 1.0) << run.out.toStdString();
        stage = event[u"stage"].toString();
        last = progress;
    }
}

} // namespace

TEST_F(CliOutcomeTest, AnEngineThatFailsEveryBatchFailsTheJobSoonAndWritesNothing) {
    ScriptedHttpServer server;
    server.script({200, R"({"choices":[{"message":{"role":"assistant","content":"PONG"}}]})"});
    server.script({503, R"({"error":{"message":"Service Unavailable"}})"}, 200);

    const CliRun failed = translate(server.baseUrl() + u"/v1"_s, u"Salida.mkv"_s,
                                    {u"--batch-size"_s, u"2"_s, u"--concurrency"_s, u"1"_s});

    EXPECT_EQ(failed.status, 1) << failed.out.toStdString();
    EXPECT_TRUE(failed.err.contains(u"503"_s)) << failed.err.toStdString();
    EXPECT_FALSE(QFileInfo::exists(path(u"Salida.mkv"_s)));
    EXPECT_TRUE(events(failed.out, u"result"_s).isEmpty());
    // Three batches of two; the engine's own retries aside, it is asked a handful of times.
    EXPECT_LE(server.hits(), 1 + 3 * 3) << server.hits();
}

TEST_F(CliOutcomeTest, CountsAreTheWrittenTracksAndAPartlyUntranslatedRunSaysSo) {
    // The first time each is asked, cue 3's answer brings a block too many, cue 2's repeats its
    // block number with other text, and cue 6 comes back with the model's chatter after it.
    std::mutex mutex;
    QMap<QString, int> asked;
    ChatCompletionsServer fixable({.key = {}, .translate = [&](int, const QString& text) {
                                       const std::lock_guard lock(mutex);
                                       QString answer = u"es: "_s + text;
                                       if (asked[text]++ > 0)
                                           return answer;
                                       if (text == english[2])
                                           answer += u"\n#@#9#@#\nsobra"_s;
                                       if (text == english[1])
                                           answer += u"\n#@#1#@#\nun duplicado"_s;
                                       if (text == english[5])
                                           answer += u"\n\nEspero que te sirvan. ¡Avisame si "
                                                     u"querés cambios!"_s;
                                       return answer;
                                   }});
    const CliRun fixed =
        translate(fixable.baseUrl(), u"Arreglada.mkv"_s, {u"--batch-size"_s, u"1"_s});
    EXPECT_EQ(fixed.status, 0) << fixed.err.toStdString();
    const QJsonObject result = events(fixed.out, u"result"_s).value(0);
    EXPECT_EQ(result[u"translated"], 6) << fixed.out.toStdString();
    EXPECT_EQ(result[u"failed"], 0);
    expectProgressMovesForward(fixed);

    const QString track = MediaFixtures::subtitleText(path(u"Arreglada.mkv"_s), 1);
    for (const QString& line : english)
        EXPECT_TRUE(track.contains(u"es: "_s + line)) << track.toStdString();
    for (const QString& added : {u"Avisame"_s, u"duplicado"_s, u"sobra"_s})
        EXPECT_FALSE(track.contains(added)) << track.toStdString();
}

// Exit status 3: written, with cues left in the source language.
TEST_F(CliOutcomeTest, SaysWhichCuesToLookAtByNumberAndTimeAndStaysQuietWhenAllIsWell) {
    const auto output = [this](const ChatCompletionsServer* server, const QStringList& arguments,
                               int status = 0) {
        QStringList engine{u"--provider"_s, u"echo"_s};
        if (server)
            engine = {u"--provider"_s,   u"local"_s,   u"--base-url"_s,
                      server->baseUrl(), u"--model"_s, u"m"_s};
        const CliOutcome outcome = run(engine + arguments + QStringList{u"--no-cache"_s});
        EXPECT_EQ(outcome.status, status) << outcome.err.toStdString();
        return outcome.out;
    };
    const QStringList lines = {u"Hello there."_s, u"Where is he?"_s, u"Fine, thanks."_s,
                               u"Come with me."_s, u"See you."_s};
    const QString movie = englishVideo(u"Película.mkv"_s, lines);
    ChatCompletionsServer server({.key = {}, .translate = [&](int, const QString& text) -> QString {
                                      if (text == lines[1])
                                          return text;
                                      return text == lines[3] ? QString() : u"es: "_s + text;
                                  }});

    const QString human = output(&server, {movie}, 3);
    const qsizetype done = human.indexOf(u"Escrito con subtítulos sin traducir: Película.mkv"_s);
    ASSERT_GE(done, 0) << human.toStdString();
    EXPECT_TRUE(human.indexOf(u"  Advertencias:\n"
                              u"    1 subtítulo quedó sin traducir: #2 (0:01).\n"
                              u"    1 subtítulo quedó vacío o incompleto: #4 (0:03).\n"_s) > done)
        << human.toStdString();

    const QJsonArray findings = events(output(&server, {u"--json"_s, movie}, 3), u"quality"_s)
                                    .value(0)[u"findings"]
                                    .toArray();
    EXPECT_EQ(findings, (QJsonArray{QJsonObject{{u"category"_s, u"untranslated"_s},
                                                {u"cue"_s, 2},
                                                {u"start"_s, 1500},
                                                {u"end"_s, 2400},
                                                {u"source"_s, lines[1]},
                                                {u"translation"_s, lines[1]}},
                                    QJsonObject{{u"category"_s, u"lost"_s},
                                                {u"cue"_s, 4},
                                                {u"start"_s, 3500},
                                                {u"end"_s, 4400},
                                                {u"source"_s, lines[3]},
                                                {u"translation"_s, u""_s}}}));

    // A well-behaved engine, and the echo engine on cues it can prefix without going too fast.
    ChatCompletionsServer wellBehaved({.key = {}});
    EXPECT_FALSE(output(&wellBehaved, {u"--output"_s, path(u"Limpia.mkv"_s), movie})
                     .contains(u"Advertencias"_s));
    EXPECT_FALSE(output(nullptr, {englishVideo(u"Eco.mkv"_s, {u"Hello there."_s, u"How are you?"_s,
                                                              u"Fine, thanks."_s})})
                     .contains(u"Advertencias"_s));
}
