#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <gtest/gtest.h>

#include "CliHome.h"
#include "support/ChatCompletionsServer.h"
#include "support/MediaFixtures.h"

using namespace Qt::StringLiterals;
using namespace velto;
using namespace velto::test;

namespace {

// veltomkv-cli as a new user runs it against a model on this machine: no key.
class CliQualityTest : public CliHome {
protected:
    // 3: written, with cues left in the source language.
    QString output(const QStringList& arguments, int status = 0) {
        const CliOutcome outcome = run(arguments + QStringList{u"--no-cache"_s});
        EXPECT_EQ(outcome.status, status) << outcome.err.toStdString();
        return outcome.out;
    }

    static QStringList local(const ChatCompletionsServer& server) {
        return {u"--provider"_s,  u"local"_s,   u"--base-url"_s,
                server.baseUrl(), u"--model"_s, u"m"_s};
    }
};

} // namespace

TEST_F(CliQualityTest, SaysWhichCuesToLookAtByNumberAndTimeAndStaysQuietWhenAllIsWell) {
    const QStringList lines = {u"Hello there."_s, u"Where is he?"_s, u"Fine, thanks."_s,
                               u"Come with me."_s, u"See you."_s};
    const QString movie = englishVideo(u"Película.mkv"_s, lines);
    ChatCompletionsServer server({.key = {}, .translate = [&](int, const QString& text) -> QString {
                                      if (text == lines[1])
                                          return text;
                                      return text == lines[3] ? QString() : u"es: "_s + text;
                                  }});

    const QString human = output(local(server) + QStringList{movie}, 3);
    const qsizetype done = human.indexOf(u"Escrito con subtítulos sin traducir: Película.mkv"_s);
    ASSERT_GE(done, 0) << human.toStdString();
    EXPECT_TRUE(human.indexOf(u"  Advertencias:\n"
                              u"    1 subtítulo quedó sin traducir: #2 (0:01).\n"
                              u"    1 subtítulo quedó vacío o incompleto: #4 (0:03).\n"_s) > done)
        << human.toStdString();

    QJsonArray findings;
    for (const QJsonObject& event :
         events(output(local(server) + QStringList{u"--json"_s, movie}, 3))) {
        if (event[u"type"] == u"quality"_s)
            findings = event[u"findings"].toArray();
    }
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
    EXPECT_FALSE(
        output(local(wellBehaved) + QStringList{u"--output"_s, path(u"Limpia.mkv"_s), movie})
            .contains(u"Advertencias"_s));
    EXPECT_FALSE(output({u"--provider"_s, u"echo"_s,
                         englishVideo(u"Eco.mkv"_s,
                                      {u"Hello there."_s, u"How are you?"_s, u"Fine, thanks."_s})})
                     .contains(u"Advertencias"_s));
}
