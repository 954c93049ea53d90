#include "VeltoKit/media/Shell.h"

#include <signal.h>
#include <thread>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include "VeltoKit/core/VeltoError.h"
#include "VeltoKit/media/ShellError.h"
#include "support/Eventually.h"
#include "support/QStringPrinter.h"
#include "support/ShellScripts.h"

using namespace velto;

namespace {

const QString sh = QStringLiteral("/bin/sh");

ProcessResult runSh(const QString& script, const ShellRunOptions& options = {},
                    std::stop_token stop = {}) {
    return Shell::run(sh, {QStringLiteral("-c"), script}, options, std::move(stop));
}

// Restores an environment variable when the test ends.
class ScopedEnvironment {
public:
    ScopedEnvironment(const char* name, const QByteArray& value)
        : m_name(name)
        , m_old(qgetenv(name)) {
        qputenv(name, value);
    }
    ~ScopedEnvironment() { qputenv(m_name, m_old); }

private:
    const char* m_name;
    QByteArray m_old;
};

qint64 readPid(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll().trimmed().toLongLong() : 0;
}

bool processExists(qint64 pid) {
    return ::kill(static_cast<pid_t>(pid), 0) == 0;
}

} // namespace

TEST(Shell, WhichTakesTheFirstExecutableAndSkipsEmptyEntries) {
    QTemporaryDir dir;
    for (const char* name : {"plain", "first", "second"})
        QDir(dir.path()).mkdir(QString::fromLatin1(name));
    const QString plain = dir.filePath(QStringLiteral("plain"));
    const QString first = dir.filePath(QStringLiteral("first"));
    const QString second = dir.filePath(QStringLiteral("second"));
    QFile notExecutable(plain + QStringLiteral("/tool"));
    ASSERT_TRUE(notExecutable.open(QIODevice::WriteOnly));
    QDir(first).mkdir(QStringLiteral("tool")); // a directory is not a program
    writeShellScript(second + QStringLiteral("/tool"), QStringLiteral("exit 0"));
    writeShellScript(dir.filePath(QStringLiteral("tool")), QStringLiteral("exit 0"));

    EXPECT_EQ(Shell::which(QStringLiteral("tool"),
                           {QString(), plain, first, QString(), second, dir.path()}),
              second + QStringLiteral("/tool"));
    EXPECT_EQ(Shell::which(QStringLiteral("tool"), {plain, first}), std::nullopt);
    EXPECT_EQ(Shell::which(QString(), {second}), std::nullopt);
}

TEST(Shell, WhichLooksInInstallFoldersBeforeThePath) {
    const QString home = QDir::homePath();
    EXPECT_EQ(Shell::searchPaths(),
              (QStringList{QStringLiteral("/opt/homebrew/bin"), QStringLiteral("/usr/local/bin"),
                           QStringLiteral("/opt/local/bin"), home + QStringLiteral("/.local/bin"),
                           home + QStringLiteral("/.hermes/node/bin"),
                           home + QStringLiteral("/.bun/bin"), home + QStringLiteral("/.cargo/bin"),
                           home + QStringLiteral("/.npm-global/bin"), home + QStringLiteral("/bin"),
                           QStringLiteral("/usr/bin"), QStringLiteral("/bin"),
                           QStringLiteral("/usr/sbin"), QStringLiteral("/sbin")}));

    // A copy of sh early in PATH loses to the one in the install folders; a tool found only
    // in PATH is found there, past empty entries.
    QTemporaryDir dir;
    writeShellScript(dir.filePath(QStringLiteral("sh")), QStringLiteral("exit 0"));
    const QString onlyHere = QStringLiteral("velto-only-in-path-tool");
    writeShellScript(dir.filePath(onlyHere), QStringLiteral("exit 0"));
    const ScopedEnvironment path("PATH", "::" + QFile::encodeName(dir.path()) + "::");
    const auto found = Shell::which(QStringLiteral("sh"));
    ASSERT_TRUE(found);
    EXPECT_EQ(found, Shell::which(QStringLiteral("sh"), Shell::searchPaths()));
    EXPECT_EQ(Shell::which(onlyHere), dir.filePath(onlyHere));
}

TEST(Shell, ReadsTheLoginShellPath) {
    QTemporaryDir dir;
    const QString shell =
        writeShellScript(dir.filePath(QStringLiteral("fake-shell")),
                         QStringLiteral("[ \"$1\" = -lc ] && [ \"$2\" = 'echo $PATH' ] || exit 2\n"
                                        "echo 'Welcome back'; printf ' /x/bin:/y bin::/z \\n\\n'"));
    EXPECT_EQ(
        Shell::readLoginShellPaths(shell),
        (QStringList{QStringLiteral("/x/bin"), QStringLiteral("/y bin"), QStringLiteral("/z")}));
    EXPECT_EQ(Shell::readLoginShellPaths(dir.filePath(QStringLiteral("missing"))), QStringList());
}

TEST(Shell, RunsInTheGivenFolderWithTheWidenedPathAndReportsTheStatus) {
    QTemporaryDir dir;
    ShellRunOptions options;
    options.workingDirectory = dir.path();
    const ProcessResult result =
        runSh(QStringLiteral("pwd; echo \"$PATH\"; echo oops >&2; exit 3"), options);
    EXPECT_EQ(result.status, 3);
    EXPECT_EQ(result.standardError, QStringLiteral("oops\n"));
    const QStringList lines = result.standardOutput.split(u'\n');
    ASSERT_GE(lines.size(), 2);
    EXPECT_EQ(QDir(lines[0]).canonicalPath(), QDir(dir.path()).canonicalPath());

    const QStringList childPath = lines[1].split(u':');
    QStringList expected = qEnvironmentVariable("PATH").split(u':', Qt::SkipEmptyParts);
    expected << Shell::loginShellPaths() << Shell::searchPaths();
    expected.removeDuplicates();
    EXPECT_EQ(childPath, expected);
}

TEST(Shell, PipesCarryMegabytesBothWaysWithoutDeadlock) {
    const ProcessResult noisy =
        runSh(QStringLiteral("head -c 6000000 /dev/zero | tr '\\000' e >&2; printf done"));
    EXPECT_EQ(noisy.status, 0);
    EXPECT_EQ(noisy.standardOutput, QStringLiteral("done"));
    EXPECT_EQ(noisy.standardError.size(), 6000000);
    EXPECT_EQ(noisy.standardError.count(u'e'), 6000000);

    ShellRunOptions options;
    options.standardInput = QByteArray(3000000, 'x') + "\xc3\xb1";
    const ProcessResult echoed = Shell::run(QStringLiteral("/bin/cat"), {}, options);
    EXPECT_EQ(echoed.standardOutput, QString(3000000, u'x') + u'ñ');

    // Without input the child reads an empty stream instead of waiting forever.
    EXPECT_EQ(Shell::run(QStringLiteral("/bin/cat"), {}).standardOutput, QString());
}

TEST(Shell, TimeLimitKillsTheChildAndFailsWithMinusOne) {
    QTemporaryDir dir;
    const QString pidFile = dir.filePath(QStringLiteral("pid"));
    ShellRunOptions options;
    options.timeoutSeconds = 1;
    try {
        runSh(QStringLiteral("echo $$ > '%1'; exec sleep 30").arg(pidFile), options);
        FAIL() << "expected a time-out";
    } catch (const ShellError& error) {
        EXPECT_EQ(error.kind(), ShellError::Kind::failed);
        EXPECT_EQ(error.status(), -1);
        EXPECT_EQ(error.description(),
                  QStringLiteral("sh falló (código -1):\nSin respuesta tras 1s"));
    }
    const qint64 pid = readPid(pidFile);
    ASSERT_GT(pid, 0);
    EXPECT_FALSE(processExists(pid));
}

TEST(Shell, CancellingKillsTheChildAndThrowsCancelled) {
    QTemporaryDir dir;
    const QString pidFile = dir.filePath(QStringLiteral("pid"));
    std::stop_source stop;
    bool cancelled = false;
    std::jthread runner([&] {
        try {
            runSh(
                QStringLiteral("echo $$ > '%1.tmp'; mv '%1.tmp' '%1'; exec sleep 100").arg(pidFile),
                {}, stop.get_token());
        } catch (const Cancelled&) {
            cancelled = true;
        }
    });
    ASSERT_TRUE(eventually([&] { return readPid(pidFile) > 0; }));
    stop.request_stop();
    runner.join();
    EXPECT_TRUE(cancelled);
    EXPECT_FALSE(processExists(readPid(pidFile)));

    // Already stopped: nothing is started.
    EXPECT_THROW(runSh(QStringLiteral("touch '%1'").arg(dir.filePath(QStringLiteral("ran"))), {},
                       stop.get_token()),
                 Cancelled);
    EXPECT_FALSE(QFile::exists(dir.filePath(QStringLiteral("ran"))));
}

TEST(Shell, RunsFromSeveralThreadsAtOnce) {
    constexpr int threads = 4;
    constexpr int runsEach = 5;
    QStringList results[threads];
    {
        std::vector<std::jthread> workers;
        for (int t = 0; t < threads; ++t)
            workers.emplace_back([t, &results] {
                for (int i = 0; i < runsEach; ++i)
                    results[t]
                        << runSh(QStringLiteral("printf %s-%s %1 %2").arg(t).arg(i)).standardOutput;
            });
    }
    for (int t = 0; t < threads; ++t)
        for (int i = 0; i < runsEach; ++i)
            EXPECT_EQ(results[t].value(i), QStringLiteral("%1-%2").arg(t).arg(i));
}

TEST(Shell, LaunchFailuresAreSpanishShellErrors) {
    QTemporaryDir dir;
    try {
        Shell::run(dir.filePath(QStringLiteral("ffmpeg")), {});
        FAIL() << "expected notFound";
    } catch (const ShellError& error) {
        EXPECT_EQ(error.kind(), ShellError::Kind::notFound);
        EXPECT_TRUE(error.description().startsWith(QStringLiteral("No encuentro «ffmpeg».")));
    }
    const QString data = dir.filePath(QStringLiteral("notes.txt"));
    QFile file(data);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.close();
    try {
        Shell::run(data, {});
        FAIL() << "expected failed";
    } catch (const ShellError& error) {
        EXPECT_EQ(error.kind(), ShellError::Kind::failed);
        EXPECT_EQ(error.status(), -1);
        EXPECT_EQ(error.description(),
                  QStringLiteral("notes.txt falló (código -1):\nNo pude iniciarlo. Revisá que sea "
                                 "un programa y que tengas permiso para ejecutarlo."));
    }
}

TEST(Shell, LastLinesKeepsTheEndOfTheText) {
    EXPECT_EQ(Shell::lastLines(QStringLiteral("a\nb\nc\n"), 2), QStringLiteral("b\nc"));
    EXPECT_EQ(Shell::lastLines(QStringLiteral("a\n\nc"), 2), QStringLiteral("\nc"));
    EXPECT_EQ(Shell::lastLines(QStringLiteral("a\nb"), 12), QStringLiteral("a\nb"));
    EXPECT_EQ(Shell::lastLines(QStringLiteral("a\nb"), 0), QString());
    EXPECT_EQ(Shell::lastLines(QString(), 3), QString());
}
