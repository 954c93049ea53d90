#include "VeltoKit/media/Shell.h"

#include <signal.h>
#include <thread>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/Eventually.h"
#include "support/FailureText.h"
#include "support/MediaFixtures.h"
#include "support/ShellScripts.h"

using namespace velto;
using namespace Qt::StringLiterals;

namespace {

ProcessResult runSh(const QString& script, const ShellRunOptions& options = {},
                    std::stop_token stop = {}) {
    return Shell::run(u"/bin/sh"_s, {u"-c"_s, script}, options, std::move(stop));
}

// Whether the process whose pid a script wrote into `pidFile` still runs. A missing file
// reads as 0, which names our own process group: alive.
bool stillRuns(const QString& pidFile) {
    return ::kill(MediaFixtures::readFile(pidFile).trimmed().toInt(), 0) == 0;
}

} // namespace

TEST(Shell, FindsTheFirstExecutableInOrderAndExplainsWhatCannotRun) {
    QTemporaryDir dir;
    const QString first = dir.filePath(u"first"_s), second = dir.filePath(u"second"_s);
    QDir().mkpath(first + u"/velto-tool"_s); // a directory is not a program
    QDir().mkpath(second);
    MediaFixtures::writeFile(dir.filePath(u"velto-tool"_s), {}); // not executable
    const QString tool = writeShellScript(second + u"/velto-tool"_s, {});
    EXPECT_EQ(Shell::which(u"velto-tool"_s, {{}, dir.path(), first, {}, second}), tool);

    // The install folders come before PATH: a copy of sh early in PATH loses.
    writeShellScript(second + u"/sh"_s, {});
    const QByteArray path = qgetenv("PATH");
    qputenv("PATH", "::" + QFile::encodeName(second) + "::");
    const auto sh = Shell::which(u"sh"_s);
    const auto onlyInPath = Shell::which(u"velto-tool"_s);
    qputenv("PATH", path);
    EXPECT_EQ(sh, Shell::which(u"sh"_s, Shell::searchPaths()));
    EXPECT_EQ(onlyInPath, tool);

    // Launching what is not there, or not a program, fails in Spanish.
    EXPECT_THAT(failureText([&] { Shell::run(dir.filePath(u"ffmpeg"_s), {}); }),
                testing::StartsWith("No encuentro «ffmpeg»."));
    EXPECT_EQ(failureText([&] { Shell::run(dir.filePath(u"velto-tool"_s), {}); }),
              "velto-tool falló (código -1):\nNo pude iniciarlo. Revisá que sea un programa y que "
              "tengas permiso para ejecutarlo.");
}

TEST(Shell, RunsInTheGivenFolderWithThePathWidenedByTheLoginShellsAndReportsTheStatus) {
    QTemporaryDir dir;
    // A chatty profile prints before the answer.
    const QString shell = writeShellScript(
        dir.filePath(u"fake-shell"_s), u"[ \"$1\" = -lc ] && [ \"$2\" = 'echo $PATH' ] || exit 2\n"
                                       "echo 'Welcome back'; printf ' /x/bin:/y bin::/z \\n\\n'"_s);
    EXPECT_EQ(Shell::readLoginShellPaths(shell), (QStringList{u"/x/bin"_s, u"/y bin"_s, u"/z"_s}));
    EXPECT_EQ(Shell::readLoginShellPaths(dir.filePath(u"missing"_s)), QStringList());
    ShellRunOptions options;
    options.workingDirectory = dir.path();
    options.loginShellPath = true;
    const ProcessResult result = runSh(u"pwd; echo \"$PATH\"; echo oops >&2; exit 3"_s, options);
    EXPECT_EQ(result.status, 3);
    EXPECT_EQ(result.standardError, u"oops\n"_s);
    const QStringList lines = result.standardOutput.split(u'\n');
    EXPECT_EQ(QDir(lines.value(0)).canonicalPath(), QDir(dir.path()).canonicalPath());
    QStringList path = qEnvironmentVariable("PATH").split(u':', Qt::SkipEmptyParts);
    path << Shell::loginShellPaths() << Shell::searchPaths();
    path.removeDuplicates();
    EXPECT_EQ(lines.value(1).split(u':'), path);
}

TEST(Shell, PipesCarryMegabytesBothWaysFromSeveralThreadsAtOnce) {
    QString errors[3];
    {
        std::jthread threads[3];
        for (int t = 0; t < 3; ++t)
            threads[t] = std::jthread([t, &errors] {
                errors[t] =
                    runSh(u"head -c 6000000 /dev/zero | tr '\\000' %1 >&2"_s.arg(t)).standardError;
            });
    }
    for (int t = 0; t < 3; ++t) {
        EXPECT_EQ(errors[t].size(), 6000000);
        EXPECT_EQ(errors[t].count(QString::number(t)), 6000000);
    }
    ShellRunOptions options;
    options.standardInput = QByteArray(3000000, 'x') + "\xc3\xb1";
    EXPECT_EQ(Shell::run(u"/bin/cat"_s, {}, options).standardOutput, QString(3000000, u'x') + u'ñ');
    // Without input the child reads an empty stream instead of waiting forever.
    EXPECT_EQ(Shell::run(u"/bin/cat"_s, {}).standardOutput, QString());
}

TEST(Shell, TimeLimitAndCancellingKillTheChild) {
    QTemporaryDir dir;
    const QString timed = dir.filePath(u"timed"_s), cancelled = dir.filePath(u"cancelled"_s);
    ShellRunOptions options;
    options.timeoutSeconds = 1;
    EXPECT_EQ(failureText([&] { runSh(u"echo $$ > '%1'; exec sleep 30"_s.arg(timed), options); }),
              "sh falló (código -1):\nSin respuesta tras 1s");
    EXPECT_FALSE(stillRuns(timed));

    std::string outcome;
    std::jthread runner([&](std::stop_token stop) {
        outcome = failureText([&] {
            runSh(u"echo $$ > '%1.tmp'; mv '%1.tmp' '%1'; exec sleep 100"_s.arg(cancelled), {},
                  stop);
        });
    });
    ASSERT_TRUE(eventually([&] { return QFile::exists(cancelled); }));
    runner.request_stop();
    runner.join();
    EXPECT_EQ(outcome, "Operación cancelada.");
    EXPECT_FALSE(stillRuns(cancelled));
    // Already stopped: nothing starts.
    const QString ran = dir.filePath(u"ran"_s);
    EXPECT_EQ(failureText([&] { runSh(u"touch '%1'"_s.arg(ran), {}, runner.get_stop_token()); }),
              "Operación cancelada.");
    EXPECT_FALSE(QFile::exists(ran));
}
