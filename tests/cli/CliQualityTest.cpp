#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include "support/ChatCompletionsServer.h"
#include "support/MediaFixtures.h"

using namespace Qt::StringLiterals;
using namespace velto;
using namespace velto::test;

namespace {

// veltomkv-cli as a new user runs it against a model on this machine: no key, a home of its own.
class CliQualityTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(m_root.isValid());
        QDir(m_root.path()).mkpath(u"tmpdir"_s);
        m_environment = QProcessEnvironment::systemEnvironment();
        for (const QString& home : {u"TMPDIR"_s, u"XDG_DATA_HOME"_s, u"XDG_CONFIG_HOME"_s})
            m_environment.insert(home, path(home.toLower()));
    }

    QString path(const QString& name) const { return QDir(m_root.path()).filePath(name); }

    QString video(const QString& name, const QStringList& lines) const {
        MediaFixtures::writeVideo(path(name),
                                  {.subtitles = {{.language = u"eng"_s, .lines = lines}}});
        return path(name);
    }

    QString run(const QStringList& arguments) {
        QProcess process;
        process.setProcessEnvironment(m_environment);
        process.start(QStringLiteral(VELTO_CLI_PATH), arguments + QStringList{u"--no-cache"_s});
        process.waitForFinished(-1);
        EXPECT_EQ(process.exitCode(), 0) << process.readAllStandardError().toStdString();
        return QString::fromUtf8(process.readAllStandardOutput());
    }

    static QStringList local(const ChatCompletionsServer& server) {
        return {u"--provider"_s,  u"local"_s,   u"--base-url"_s,
                server.baseUrl(), u"--model"_s, u"m"_s};
    }

    QTemporaryDir m_root;
    QProcessEnvironment m_environment;
};

} // namespace

TEST_F(CliQualityTest, SaysWhichCuesToLookAtByNumberAndTimeAndStaysQuietWhenAllIsWell) {
    const QStringList lines = {u"Hello there."_s, u"Where is he?"_s, u"Fine, thanks."_s,
                               u"Come with me."_s, u"See you."_s};
    const QString movie = video(u"Película.mkv"_s, lines);
    ChatCompletionsServer server({.key = {}, .translate = [&](int, const QString& text) -> QString {
                                      if (text == lines[1])
                                          return text;
                                      return text == lines[3] ? QString() : u"es: "_s + text;
                                  }});

    const QString human = run(local(server) + QStringList{movie});
    const qsizetype done = human.indexOf(u"Listo: Película.mkv"_s);
    ASSERT_GE(done, 0) << human.toStdString();
    EXPECT_TRUE(human.indexOf(u"  Advertencias:\n"
                              u"    1 subtítulo quedó sin traducir: #2 (0:01).\n"
                              u"    1 subtítulo quedó vacío o incompleto: #4 (0:03).\n"_s) > done)
        << human.toStdString();

    QJsonArray findings;
    for (const QString& line : run(local(server) + QStringList{u"--json"_s, movie}).split(u'\n')) {
        const QJsonObject event = QJsonDocument::fromJson(line.toUtf8()).object();
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
    EXPECT_FALSE(run(local(wellBehaved) + QStringList{u"--output"_s, path(u"Limpia.mkv"_s), movie})
                     .contains(u"Advertencias"_s));
    EXPECT_FALSE(
        run({u"--provider"_s, u"echo"_s,
             video(u"Eco.mkv"_s, {u"Hello there."_s, u"How are you?"_s, u"Fine, thanks."_s})})
            .contains(u"Advertencias"_s));
}
