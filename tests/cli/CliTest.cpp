#include <csignal>
#include <sys/stat.h>

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include "support/MediaFixtures.h"
#include "support/QStringPrinter.h"

using namespace Qt::StringLiterals;
using namespace velto;

namespace {

struct Outcome {
    int status = -1;
    QString out;
    QString err;
};

// veltomkv-cli as a user runs it: its own process, its own temporary and data folders.
class CliTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(m_root.isValid());
        QDir(m_root.path()).mkpath(u"tmp"_s);
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"TMPDIR"_s, path(u"tmp"_s));
        environment.insert(u"XDG_DATA_HOME"_s, path(u"data"_s));
        // The engine a user chose in the app: here the offline one.
        environment.insert(u"XDG_CONFIG_HOME"_s, path(u"config"_s));
        QDir(m_root.path()).mkpath(u"config/VeltoMKV"_s);
        MediaFixtures::writeFile(path(u"config/VeltoMKV/VeltoMKV.conf"_s),
                                 "[General]\nproviderID=echo\n");
        m_process.setProcessEnvironment(environment);
    }

    QString path(const QString& name) const { return QDir(m_root.path()).filePath(name); }

    void start(const QStringList& arguments) {
        m_process.start(QStringLiteral(VELTO_CLI_PATH), arguments);
        ASSERT_TRUE(m_process.waitForStarted());
    }

    Outcome finish() {
        m_process.waitForFinished(-1);
        return {m_process.exitCode(), QString::fromUtf8(m_process.readAllStandardOutput()),
                QString::fromUtf8(m_process.readAllStandardError())};
    }

    Outcome run(const QStringList& arguments) {
        start(arguments);
        return finish();
    }

    QString englishVideo(const QString& name) const {
        MediaFixtures::VideoRecipe recipe;
        MediaFixtures::SubtitleRecipe english;
        english.language = u"eng"_s;
        recipe.subtitles = {english};
        MediaFixtures::writeVideo(path(name), recipe);
        return path(name);
    }

    static QList<QJsonObject> events(const QString& out) {
        QList<QJsonObject> objects;
        for (const QString& line : out.split(u'\n', Qt::SkipEmptyParts))
            objects.append(QJsonDocument::fromJson(line.toUtf8()).object());
        return objects;
    }

    QTemporaryDir m_root;
    QProcess m_process;
};

} // namespace

TEST_F(CliTest, BadUsageIsStatusTwoWithASpanishReason) {
    const Outcome unknown = run({u"--bogus"_s, u"a.mkv"_s});
    EXPECT_EQ(unknown.status, 2);
    EXPECT_EQ(unknown.err, u"No conozco la opción «--bogus». Probá «veltomkv-cli --help».\n"_s);
    EXPECT_EQ(run({}).status, 2);
    EXPECT_EQ(run({u"--batch-size"_s, u"cero"_s, u"a.mkv"_s}).err,
              u"«--batch-size» espera un número entero desde 1, no «cero».\n"_s);
    EXPECT_EQ(run({u"--output=x.mkv"_s, u"a.mkv"_s, u"b.mkv"_s}).err,
              u"«--output» sirve para un solo video y llegaron 2.\n"_s);
    const Outcome help = run({u"a.mkv"_s, u"--help"_s});
    EXPECT_EQ(help.status, 0);
    EXPECT_TRUE(help.out.startsWith(u"Uso: veltomkv-cli [opciones] VIDEO..."_s));
    EXPECT_EQ(run({u"--version"_s}).out, u"veltomkv-cli " VELTO_VERSION "\n"_s);
}

TEST_F(CliTest, RunsEveryVideoAndAFailureDoesNotStopTheRest) {
    const QString good = englishVideo(u"Good.mkv"_s);
    const Outcome outcome =
        run({u"--json"_s, u"--title"_s, u"Prueba"_s, path(u"Missing.mkv"_s), good});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err, u"No encuentro el video «"_s + path(u"Missing.mkv"_s) + u"».\n"_s);

    const QList<QJsonObject> objects = events(outcome.out);
    ASSERT_GE(objects.size(), 3);
    EXPECT_EQ(objects[1][u"type"].toString(), u"error"_s);
    EXPECT_EQ(objects[2][u"stage"].toString(), u"analyzing"_s);
    EXPECT_EQ(objects[2][u"video"].toString(), good);
    const QJsonObject result = objects.last();
    EXPECT_EQ(result[u"type"].toString(), u"result"_s);
    EXPECT_EQ(result[u"output"].toString(), path(u"Good.es.mkv"_s));
    EXPECT_EQ(result[u"translated"].toInt(), 3);
    EXPECT_EQ(result[u"tracks"][1][u"title"].toString(), u"Prueba"_s);
    EXPECT_TRUE(QFile::exists(path(u"Good.es.mkv"_s)));

    // People get one line per change and the tracks of the result; --list-tracks only probes.
    const Outcome again = run({u"--force"_s, u"--no-cache"_s, good});
    EXPECT_EQ(again.status, 0) << again.err.toStdString();
    EXPECT_TRUE(again.out.contains(u"\nTraduciendo  3 de 3\n"_s)) << again.out.toStdString();
    EXPECT_TRUE(again.out.contains(u"#3  español  «Español (traducido)»"_s));
    const Outcome listing = run({u"--list-tracks"_s, path(u"Good.es.mkv"_s)});
    EXPECT_EQ(listing.out,
              path(u"Good.es.mkv"_s) + u"\n  #2  inglés\n  #3  español  «Español (traducido)»\n"_s);
}

TEST_F(CliTest, CtrlCCancelsCleanlyWithStatus130) {
    // ffprobe waits for a writer that never comes, so the job is surely still running.
    const QString fifo = path(u"Stuck.mkv"_s);
    ASSERT_EQ(mkfifo(QFile::encodeName(fifo).constData(), 0600), 0);
    start({u"--json"_s, fifo, englishVideo(u"Next.mkv"_s)});
    while (!m_process.canReadLine())
        ASSERT_TRUE(m_process.waitForReadyRead(60000));
    ::kill(static_cast<pid_t>(m_process.processId()), SIGINT);

    const Outcome outcome = finish();
    EXPECT_EQ(outcome.status, 130);
    EXPECT_EQ(events(outcome.out).last()[u"type"].toString(), u"cancelled"_s);
    EXPECT_EQ(QDir(path(u"tmp"_s)).entryList(QDir::NoDotAndDotDot | QDir::AllEntries),
              QStringList());
    EXPECT_FALSE(QFile::exists(path(u"Next.es.mkv"_s))) << "a cancel stops the whole batch";
}
