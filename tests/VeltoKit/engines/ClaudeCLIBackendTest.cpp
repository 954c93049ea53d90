#include "VeltoKit/engines/ClaudeCLIBackend.h"

#include <thread>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QUuid>

#include "VeltoKit/core/VeltoError.h"
#include "VeltoKit/media/Shell.h"
#include "VeltoKit/media/ShellError.h"
#include "support/EngineTesting.h"
#include "support/Eventually.h"
#include "support/MediaFixtures.h"
#include "support/ShellScripts.h"

using namespace velto;
using namespace velto::test;
using namespace Qt::StringLiterals;

namespace {

// A fake `claude` that records its arguments (each ended by a NUL), input and folder, leaves a
// file in that folder, then runs `tail`. TMPDIR is a folder that every call must leave empty.
class ClaudeCLIEngine : public ::testing::Test {
protected:
    void SetUp() override { qputenv("TMPDIR", QFile::encodeName(temp.path())); }
    void TearDown() override {
        m_oldTemp.isNull() ? qunsetenv("TMPDIR") : qputenv("TMPDIR", m_oldTemp);
        EXPECT_EQ(QDir(temp.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
                  QStringList());
    }
    void claude(const QString& tail) {
        writeShellScript(path(u"claude"_s),
                         u"r='%1'; printf '%s\\000' \"$@\" > \"$r/args\"\n"
                         u"cat > \"$r/stdin\"; pwd -P > \"$r/cwd\"\n"
                         u": > left-behind; : > \"$r/started\"\n"_s.arg(files.path()) +
                             tail);
    }
    void answer(const QString& out, const QString& err = {}, int status = 0) {
        claude(u"printf '%s' '%1'; printf '%s' '%2' >&2; exit %3"_s.arg(out, err).arg(status));
    }
    QString path(const QString& name) const { return files.filePath(name); }
    QByteArray read(const QString& name) const { return MediaFixtures::readFile(path(name)); }
    ClaudeCLIBackend backend(const QString& model = u"sonnet"_s, double timeout = 300) const {
        return {path(u"claude"_s), model, timeout};
    }
    QString errorOfRun(double timeout = 300) const {
        return outcomeOf([&] { backend(u"sonnet"_s, timeout).complete({}, {}, {}); });
    }

    const QByteArray m_oldTemp = qgetenv("TMPDIR");
    QTemporaryDir temp;
    QTemporaryDir files;
};

} // namespace

TEST_F(ClaudeCLIEngine, RunsTheFixedFlagsWithThePromptOnInputInAFreshFolder) {
    answer(u"\n  Hola, mundo.\n\n"_s);
    EXPECT_EQ(backend().complete(u"Sos traductor.\nDos"_s, u"Hola ñ\n"_s, {}), u"Hola, mundo."_s);
    EXPECT_EQ(read(u"args"_s).replace('\0', '|'),
              "-p|--output-format|text|--model|sonnet|--system-prompt|Sos traductor.\nDos|"
              "--permission-mode|default|--disallowed-tools|Bash Read Write Edit Glob Grep "
              "WebFetch WebSearch NotebookEdit Task TodoWrite|--disable-slash-commands|"
              "--no-session-persistence|--strict-mcp-config|");
    EXPECT_EQ(read(u"stdin"_s), "Hola \xc3\xb1\n");
    const QString folder = QString::fromUtf8(read(u"cwd"_s).trimmed());
    const QString name = QFileInfo(folder).fileName();
    EXPECT_EQ(QFileInfo(folder).path(), QDir(temp.path()).canonicalPath());
    EXPECT_EQ(name, u"veltomkv-cli-"_s +
                        QUuid::fromString(name.mid(13)).toString(QUuid::WithoutBraces).toUpper());

    // The model flag goes even when empty; every call gets its own folder.
    backend({}).complete({}, {}, {});
    EXPECT_TRUE(read(u"args"_s).startsWith("-p\0--output-format\0text\0--model\0\0"_ba));
    EXPECT_NE(QString::fromUtf8(read(u"cwd"_s).trimmed()), folder);

    answer(u"pong.\n"_s);
    EXPECT_NO_THROW(backend().preflight({}));
    EXPECT_TRUE(read(u"args"_s).contains(
        u"\0Respondé exactamente con el texto pedido, sin agregar nada más.\0"_s.toUtf8()));
    EXPECT_EQ(read(u"stdin"_s), u"Respondé exactamente: PONG"_s.toUtf8());
}

TEST_F(ClaudeCLIEngine, MapsAFailedRunToItsMessage) {
    const QString advice = u"\nAbrí la Terminal, ejecutá «claude» y hacé «/login» una vez. "
                           u"Después volvé y probá de nuevo.\n\nDetalle: "_s;
    const QString session = u"El CLI de Claude no tiene sesión iniciada."_s;
    // In table order: a login request that mentions a key is a login problem.
    const std::pair<QString, QString> known[] = {
        {u"Error: Not logged in"_s, session},
        {u"Please run /login. Invalid API key"_s, session},
        {u"Invalid API key"_s, u"La API key configurada no es válida."_s},
        {u"Credit balance"_s, u"La cuenta no tiene crédito disponible."_s},
    };
    for (const auto& [detail, message] : known) {
        answer({}, u" "_s + detail + u"\n"_s, 1);
        EXPECT_EQ(errorOfRun(), message + advice + detail + u" (fatal)"_s);
    }
    answer(u"Credit balance\n"_s, {}, 1); // the output stands in for an empty error
    EXPECT_EQ(errorOfRun(), known[3].second + advice + u"Credit balance (fatal)"_s);
    // The needle ends at character 600, then one character later, past the cut.
    const QString x587(587, u'x');
    answer({}, x587 + u"Not logged in"_s, 1);
    EXPECT_EQ(errorOfRun(), session + advice + x587 + u"Not logged in (fatal)"_s);
    answer({}, x587 + u"-not logged in"_s, 1);
    EXPECT_EQ(errorOfRun(), u"claude terminó con código 1: "_s + x587 + u"-not logged i"_s);
    answer(u"not logged in"_s, u"boom\n"_s, 2);
    EXPECT_EQ(errorOfRun(), u"claude terminó con código 2: boom"_s);
    claude(u"echo 'Not logged in' >&2; kill -9 $$"_s);
    EXPECT_EQ(errorOfRun(), u"claude se cortó antes de terminar: lo detuvo la señal 9."_s);
    answer(u"\n  \n\n"_s, u"Not logged in"_s, 0);
    EXPECT_EQ(errorOfRun(), u"El CLI de Claude devolvió una respuesta vacía."_s);
}

TEST_F(ClaudeCLIEngine, FailingToRunIsRetryableWhileACancelStaysCancelled) {
    const QString prefix = u"No pude ejecutar el CLI de Claude: "_s;
    EXPECT_EQ(errorOfRun(), prefix + ShellError::notFound(u"claude"_s).description());
    claude(u"exec sleep 30"_s);
    EXPECT_EQ(errorOfRun(0.2), prefix + u"claude falló (código -1):\nSin respuesta tras 1s"_s);

    std::stop_source stop;
    QFile::remove(path(u"started"_s));
    std::jthread caller(
        [&] { EXPECT_THROW(backend().complete({}, {}, stop.get_token()), Cancelled); });
    EXPECT_TRUE(eventually([&] { return QFile::exists(path(u"started"_s)); }));
    stop.request_stop();
    caller.join();

    qputenv("TMPDIR", QFile::encodeName(path(u"claude"_s))); // a file: no folder fits in it
    EXPECT_THROW(backend().complete({}, {}, {}), FileError);
}

TEST(ClaudeCLIBackend, LocatesThePreferredFileOrFolderElseSearches) {
    QTemporaryDir dir;
    QDir(dir.path()).mkpath(u"bin"_s);
    QDir(dir.path()).mkpath(u"other/claude"_s);
    const QString bin = dir.filePath(u"bin"_s);
    const QString claude = writeShellScript(bin + u"/claude"_s, u"exit 0"_s);
    const QString fromHome = u"~/"_s + QDir(QDir::homePath()).relativeFilePath(bin);
    for (const QString& found :
         QStringList{u" "_s + claude + u"\n"_s, bin, fromHome, fromHome + u"/claude"_s})
        EXPECT_EQ(ClaudeCLIBackend::locate(found, {}), claude) << found.toStdString();
    // A folder named claude is no program; what the preferred path misses is searched for.
    for (const QString& missed : {QString(), dir.filePath(u"other"_s), dir.path()}) {
        EXPECT_EQ(ClaudeCLIBackend::locate(missed, {}), std::nullopt) << missed.toStdString();
        EXPECT_EQ(ClaudeCLIBackend::locate(missed, {dir.path(), bin}), claude);
    }
    EXPECT_EQ(ClaudeCLIBackend::locate(dir.path()), Shell::which(u"claude"_s));
}
