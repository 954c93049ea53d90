#include <csignal>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>

#include <gtest/gtest.h>

#include "CliHome.h"
#include "VeltoKit/media/Shell.h"
#include "support/Eventually.h"
#include "support/MediaFixtures.h"
#include "support/QStringPrinter.h"
#include "support/ShellScripts.h"

using namespace Qt::StringLiterals;
using namespace velto;

namespace {

using Outcome = test::CliOutcome;

// With the engine a user chose in the app: here the offline one.
class CliTest : public test::CliHome {
protected:
    void SetUp() override {
        CliHome::SetUp();
        MediaFixtures::writeFile(path(u"config/VeltoMKV/VeltoMKV.conf"_s),
                                 "[General]\nproviderID=echo\n");
    }

    // Everything in the temporary folder and beside the videos that the test did not put there.
    QStringList leftovers(const QStringList& expected) const {
        QStringList found =
            QDir(path(u"tmp"_s)).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
        for (const QString& name :
             QDir(m_root.path())
                 .entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot)) {
            if (!expected.contains(name) && name != u"tmp" && name != u"data" && name != u"config")
                found.append(name);
        }
        return found;
    }
};

} // namespace

TEST_F(CliTest, BadUsageIsStatusTwoWithASpanishReason) {
    const Outcome unknown = run({u"--bogus"_s, u"a.mkv"_s});
    EXPECT_EQ(unknown.status, 2);
    EXPECT_EQ(unknown.err, u"No conozco la opción «--bogus». Probá «veltomkv-cli --help».\n"_s);
    EXPECT_EQ(run({}).status, 2);
    EXPECT_EQ(run({u"a.mkv"_s, QString()}).err,
              u"Uno de los videos llegó sin nombre («»). Revisá las comillas del comando.\n"_s);
    EXPECT_EQ(run({u"--batch-size"_s, u"cero"_s, u"a.mkv"_s}).err,
              u"«--batch-size» espera un número entero desde 1, no «cero».\n"_s);
    EXPECT_EQ(run({u"--output=x.mkv"_s, u"a.mkv"_s, u"b.mkv"_s}).err,
              u"«--output» sirve para un solo video y llegaron 2.\n"_s);
    const Outcome help = run({u"a.mkv"_s, u"--help"_s});
    EXPECT_EQ(help.status, 0);
    EXPECT_TRUE(help.out.startsWith(u"Uso: veltomkv-cli [opciones] VIDEO..."_s));
    EXPECT_EQ(run({u"--version"_s}).out, u"veltomkv-cli " VELTO_VERSION "\n"_s);
}

TEST_F(CliTest, RefusesWhatItCannotDoInItsOwnWordsAndLeavesNothing) {
    const QString english = englishVideo(u"Movie.mkv"_s);
    MediaFixtures::SubtitleRecipe spanish;
    spanish.language = u"spa"_s;
    MediaFixtures::writeVideo(path(u"Spanish.mkv"_s), {.subtitles = {spanish}});
    MediaFixtures::writeFile(path(u"empty.mkv"_s), {});
    MediaFixtures::writeFile(path(u"file"_s), {});
    const QString root = m_root.path();
    const QString movie = u"No se pudo traducir Movie.mkv:\n"_s;
    // One row per check; a missing video is said in RunsEveryVideoAndAFailureDoesNotStopTheRest.
    struct Case {
        QStringList arguments;
        QString err;
        std::pair<QString, QString> environment = {};
    };
    QList<Case> cases = {
        {{u"--list-tracks"_s, root},
         u"No pude leer las pistas de %2:\n«%1» es una carpeta. Elegí un archivo de video.\n"_s},
        {{path(u"empty.mkv"_s)},
         u"No se pudo traducir empty.mkv:\n«%1/empty.mkv» está vacío (0 bytes): no es un video. "
         "Elegí otro archivo.\n"_s},
        {{u"--output"_s, root, english},
         movie + u"«%1» es una carpeta. Indicá también el nombre del "
                 "archivo a escribir en ella, terminado en .mkv, .mp4, .m4v o .mov.\n"_s},
        {{u"--output"_s, path(u"Movie.es.txt"_s), english},
         movie + u"No puedo escribir un video «.txt»: terminá el nombre "
                 "en .mkv, .mp4, .m4v o .mov.\n"_s},
        {{u"--output"_s, path(u"Movie.es.mp4"_s), english},
         movie + u"Un «.mp4» solo guarda subtítulos mov_text y este video "
                 "trae pistas subrip. Guardá el resultado como .mkv.\n"_s},
        {{path(u"Spanish.mkv"_s)},
         u"No se pudo traducir Spanish.mkv:\nEl archivo ya tiene subtítulos en español.\nAgregá "
         "--force si querés traducirlo de todos modos.\n"_s},
        {{english},
         movie +
             u"No puedo guardar el caché de traducciones en "
             "«%1/file/VeltoMKV/Cache». Revisá los permisos de esa carpeta o desactivá el caché.\n"
             "Desde la terminal, agregá --no-cache para traducir sin caché.\n"_s,
         {u"XDG_DATA_HOME"_s, path(u"file"_s)}},
        {{english},
         movie + u"La carpeta temporal «%1/gone» no existe o no es una "
                 "carpeta. Revisá la variable TMPDIR.\n"_s,
         {u"TMPDIR"_s, path(u"gone"_s)}},
    };
    // Root writes everywhere, so only others can meet a read-only folder.
    QDir(root).mkdir(u"read-only"_s);
    QFile::copy(english, path(u"read-only/Movie.mkv"_s));
    QFile::setPermissions(path(u"read-only"_s), QFile::ReadOwner | QFile::ExeOwner);
    if (::geteuid() != 0)
        cases.append({{path(u"read-only/Movie.mkv"_s)},
                      movie +
                          u"No tengo permiso para escribir en la "
                          "carpeta «%1/read-only». Elegí otra carpeta para guardar el resultado.\n"
                          "Desde la terminal, elegí dónde guardarlo con --output ARCHIVO.\n"_s});
    const QProcessEnvironment usual = m_environment;
    for (const Case& refusal : cases) {
        SCOPED_TRACE(refusal.arguments.join(u' ').toStdString());
        m_environment = usual;
        if (!refusal.environment.first.isEmpty())
            m_environment.insert(refusal.environment.first, refusal.environment.second);
        const Outcome outcome = run(refusal.arguments);
        EXPECT_EQ(outcome.status, 1);
        EXPECT_EQ(outcome.err, QString(refusal.err)
                                   .replace(u"%1"_s, root)
                                   .replace(u"%2"_s, QFileInfo(root).fileName()));
        EXPECT_EQ(leftovers({u"Movie.mkv"_s, u"Spanish.mkv"_s, u"empty.mkv"_s, u"file"_s,
                             u"read-only"_s}),
                  QStringList());
    }
    EXPECT_EQ(QDir(path(u"read-only"_s)).entryList(QDir::Files | QDir::Hidden),
              QStringList{u"Movie.mkv"_s});
    QFile::setPermissions(path(u"read-only"_s),
                          QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);

    // A name that looks like an option is a file after "--"; an output already there is replaced
    // and the user is told so.
    m_environment = usual;
    m_process.setWorkingDirectory(root);
    QFile::rename(english, path(u"-trailer.mkv"_s));
    MediaFixtures::writeFile(path(u"-trailer.es.mkv"_s), "old");
    EXPECT_EQ(run({u"-trailer.mkv"_s}).err, u"«-trailer.mkv» parece un archivo. Para que no se "
                                            "lea como opción, poné «--» antes: veltomkv-cli -- "
                                            "-trailer.mkv\n"_s);
    const Outcome dashed = run({u"--no-cache"_s, u"--"_s, u"-trailer.mkv"_s});
    EXPECT_EQ(dashed.status, 0) << dashed.err.toStdString();
    EXPECT_TRUE(dashed.out.contains(
        u"Advertencias:\n    Ya existía «-trailer.es.mkv»: lo reemplacé por el nuevo.\n"_s))
        << dashed.out.toStdString();
    EXPECT_EQ(MediaFixtures::probeStreams(path(u"-trailer.es.mkv"_s)).size(), 4);
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

TEST_F(CliTest, NothingIsLeftBehindHoweverTheMuxEnds) {
    // ffmpeg as found in ~/.local/bin: the real one, except that the mux writes the start of its
    // output and then waits for an end that the case brings, fails as on a full disk, or shrugs
    // off SIGTERM (noting it got it) so that a cancel takes its time to wind down.
    if (Shell::which(u"ffmpeg"_s, Shell::searchPaths().mid(0, 3)))
        GTEST_SKIP() << "an ffmpeg installed before ~/.local/bin would be used instead";
    QDir(m_root.path()).mkpath(u"home/.local/bin"_s);
    writeShellScript(path(u"home/.local/bin/ffmpeg"_s),
                     u"for last; do :; done\n"
                     "case \"$last\" in *.partial-*)\n"
                     "  echo $$ > \"$VELTO_TEST_ROOT/mux.pid\"; echo started > \"$last\"\n"
                     "  [ \"$VELTO_TEST_MUX\" = full ] && echo 'av_interleaved_write_frame(): No "
                     "space left on device' >&2 && exit 1\n"
                     "  [ \"$VELTO_TEST_MUX\" = stubborn ] && trap ': > \"$VELTO_TEST_ROOT/term\"' "
                     "TERM && while :; do sleep 1 & wait $!; done\n"
                     "  exec tail -f /dev/null;;\n"
                     "esac\n"
                     "exec '%1' \"$@\""_s.arg(MediaFixtures::tools().ffmpeg));
    const QString source = englishVideo(u"Movie.mkv"_s);
    const QByteArray before = MediaFixtures::readFile(source);
    const QString next = englishVideo(u"Next.mkv"_s);
    const QString cancelled =
        u"Cancelado: Movie.mkv. No quedó ningún archivo a medio escribir.\n"_s;
    struct Case {
        QString name;
        // The command line; a pipeline when it starts with "|".
        QStringList arguments;
        // Brings the waiting mux to its end; none: the mux fails on its own, or the reader quits.
        std::function<void(pid_t cli, pid_t mux)> end;
        int status;
        QString err;
    };
    const QList<Case> cases = {
        {u"Ctrl-C stops the whole batch"_s,
         {u"--no-cache"_s, source, next},
         [](pid_t cli, pid_t) { ::kill(cli, SIGINT); },
         130,
         cancelled},
        // The second signal comes while the first cancel waits for the tool to wind down; the
        // process ends on whichever thread gets there first, with or without the cancel's line.
        // A SIGTERM that went unheard would end it by the signal instead, not with status 130.
        {u"Ctrl-C, then SIGTERM before the tools wound down"_s,
         {u"--no-cache"_s, source},
         [this](pid_t cli, pid_t) {
             ::kill(cli, SIGINT);
             ASSERT_TRUE(eventually([&] { return QFile::exists(path(u"term"_s)); }));
             ::kill(cli, SIGTERM);
         },
         130,
         cancelled},
        {u"ffmpeg killed"_s,
         {u"--no-cache"_s, source},
         [](pid_t, pid_t mux) { ::kill(mux, SIGKILL); },
         1,
         u"No se pudo traducir Movie.mkv:\nffmpeg se cortó antes de terminar: lo detuvo la señal "
         "9. Si no lo cortaste vos, probá de nuevo; suele pasar cuando el sistema se queda sin "
         "memoria.\n"_s},
        {u"a full disk"_s,
         {u"--no-cache"_s, source},
         {},
         1,
         u"No se pudo traducir Movie.mkv:\nSe llenó el disco de la carpeta «"_s + m_root.path() +
             u"» mientras ffmpeg escribía. Liberá espacio y probá de nuevo.\n"_s},
        // The reader quits at the mux's line, before or while the mux runs: the same either way.
        {u"the reader of the output quits"_s,
         {u"|"_s, u"\"$0\" --json --no-cache \"$1\" | sed '/muxing/q' > /dev/null; "
                  "exit ${PIPESTATUS[0]}"_s},
         {},
         141,
         QString()},
    };
    m_environment.insert(u"HOME"_s, path(u"home"_s));
    m_environment.insert(u"VELTO_TEST_ROOT"_s, m_root.path());
    const QStringList videos = {u"Movie.mkv"_s, u"Next.mkv"_s, u"home"_s};
    for (const Case& ending : cases) {
        SCOPED_TRACE(ending.name.toStdString());
        QFile::remove(path(u"mux.pid"_s));
        QFile::remove(path(u"term"_s));
        for (const QString& name : leftovers(videos)) {
            QDir(path(u"tmp/"_s + name)).removeRecursively();
            QFile::remove(path(name)); // a failed case must not fail the next
        }
        const bool piped = ending.arguments.first() == u"|";
        m_environment.insert(u"VELTO_TEST_MUX"_s,
                             ending.name.contains(u"SIGTERM before")
                                 ? u"stubborn"_s
                                 : (ending.end || piped ? u"wait"_s : u"full"_s));
        m_process.setProcessEnvironment(m_environment);
        if (piped)
            m_process.start(u"/bin/bash"_s,
                            {u"-c"_s, ending.arguments[1], QStringLiteral(VELTO_CLI_PATH), source});
        else
            start(ending.arguments);
        ASSERT_TRUE(m_process.waitForStarted());
        const auto muxPid = [&] {
            return static_cast<pid_t>(
                MediaFixtures::readFile(path(u"mux.pid"_s)).trimmed().toInt());
        };
        if (ending.end) {
            ASSERT_TRUE(eventually([&] { return muxPid() > 0; }));
            ending.end(static_cast<pid_t>(m_process.processId()), muxPid());
        }
        const Outcome outcome = finish();
        EXPECT_EQ(outcome.status, ending.status);
        const bool eitherThread = ending.name.contains(u"SIGTERM before");
        if (!eitherThread || !outcome.err.isEmpty()) {
            EXPECT_EQ(outcome.err, ending.err);
        }
        EXPECT_EQ(leftovers(videos + QStringList{u"mux.pid"_s, u"term"_s}), QStringList());
        const pid_t mux = muxPid();
        EXPECT_TRUE(eventually([&] {
            return mux == 0 || ::kill(mux, 0) != 0 ||
                   MediaFixtures::readFile(u"/proc/%1/stat"_s.arg(mux)).contains(") Z ");
        })) << "the tool is not left running";
    }
    EXPECT_EQ(MediaFixtures::readFile(source), before);
}
