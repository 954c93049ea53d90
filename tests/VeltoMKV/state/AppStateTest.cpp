#include "VeltoMKV/state/AppState.h"

#include <QDir>
#include <QFileInfo>
#include <QSignalSpy>

#include <gtest/gtest.h>

#include "VeltoKit/job/JobError.h"
#include "VeltoKit/providers/Preferences.h"
#include "VeltoMKV/AppTesting.h"
#include "support/Eventually.h"

using namespace velto;
using namespace velto::AppTesting;
using namespace Qt::StringLiterals;

namespace {

using Kind = Phase::Kind;

class AppStateTest : public ::testing::Test {
protected:
    // Every phase the state passes through, in order.
    AppStateTest() {
        QObject::connect(&state, &AppState::phaseChanged, &state,
                         [this] { phases.append(state.phase().kind()); });
    }

    bool reaches(Kind kind) {
        return QTest::qWaitFor([&] { return state.phase().kind() == kind; }, patience);
    }
    // Waits for the state's background tasks to end, the cancelled ones included.
    bool settles() {
        return QTest::qWaitFor([&] { return state.backgroundTasks() == 0; }, patience);
    }
    void open(const QString& path) {
        state.load(path, *work.preferences);
        ASSERT_TRUE(
            QTest::qWaitFor([&] { return state.phase().kind() != Kind::inspecting; }, patience));
    }

    Workspace work;
    AppState state;
    QList<Kind> phases;
};

TEST_F(AppStateTest, LoadingChoosesTheTrackOrFailsWithTheProgramsSentence) {
    const struct {
        QString name;
        QList<MediaFixtures::SubtitleRecipe> tracks;
        Kind phase;
        std::optional<qint64> chosen;
        QString message;
    } cases[] = {
        {u"Película.mkv"_s,
         {track(u"eng"_s, u"SDH"_s, false, true), track(u"eng"_s, u"English"_s),
          track(u"spa"_s, u"Carteles"_s, true)},
         Kind::ready,
         3,
         {}},
        {u"untagged.mkv"_s, {track({})}, Kind::ready, 2, {}},
        {u"silent.mkv"_s, {}, Kind::failed, std::nullopt, JobError::noSubtitles().description()},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name.toStdString());
        phases.clear();
        open(work.video(c.name, c.tracks));
        EXPECT_EQ(phases, (QList<Kind>{Kind::inspecting, c.phase}));
        EXPECT_EQ(state.selectedTrack(), c.chosen);
        EXPECT_EQ(state.phase().message(), c.message);
        EXPECT_EQ(state.sourceURL(), work.path(c.name));
        ASSERT_TRUE(state.info());
        EXPECT_EQ(state.info()->tracks.size(), c.tracks.size());
        EXPECT_EQ(state.outputURL(),
                  work.path(QFileInfo(c.name).completeBaseName() + u".es.mkv"_s));
    }
}

TEST_F(AppStateTest, AFileFfprobeCannotReadFailsWithItsMessage) {
    MediaFixtures::writeFile(work.path(u"broken.mkv"_s), "not a video at all");
    open(work.path(u"broken.mkv"_s));
    EXPECT_EQ(state.phase().kind(), Kind::failed);
    EXPECT_TRUE(state.phase().message().endsWith(
        u"no es un video que pueda leer: su formato no se reconoce o el archivo está dañado. "
        "Elegí un archivo de video, por ejemplo un .mkv o un .mp4."_s))
        << state.phase().message().toStdString();
    EXPECT_FALSE(state.info());
}

TEST_F(AppStateTest, ARunReportsProgressAndFinishesWithTheCopyOnDisk) {
    open(work.video(u"Movie.mkv"_s, {track(u"eng"_s)}));
    QSignalSpy details(&state, &AppState::progressChanged);
    phases.clear();
    state.start(*work.preferences);
    ASSERT_TRUE(reaches(Kind::finished)) << state.phase().message().toStdString();
    EXPECT_EQ(phases, (QList<Kind>{Kind::working, Kind::finished}));
    EXPECT_GE(details.count(), 3);
    EXPECT_EQ(state.progress().stage, JobStage::done);
    ASSERT_TRUE(state.result());
    EXPECT_EQ(state.result()->outputURL, work.path(u"Movie.es.mkv"_s));
    EXPECT_EQ(state.result()->translatedCount, 3);
    EXPECT_EQ(state.warnings(), state.result()->warnings);
    EXPECT_TRUE(QFileInfo::exists(work.path(u"Movie.es.mkv"_s)));
    EXPECT_FALSE(state.hasTask());
}

TEST_F(AppStateTest, CancellingKeepsTheFileAndTrackAndLeavesNothingBehind) {
    const QString video = work.video(u"Movie.mkv"_s, {track(u"fre"_s), track(u"eng"_s)});
    open(video);
    state.setSelectedTrack(2);
    QSignalSpy stages(&state, &AppState::progressChanged);
    state.start(*work.preferences);
    ASSERT_TRUE(stages.wait(patience));
    state.cancel();
    EXPECT_EQ(state.phase().kind(), Kind::ready);
    EXPECT_EQ(state.progress(), JobUpdate{});
    ASSERT_TRUE(settles());
    // The late reports and end of the cancelled run changed nothing.
    EXPECT_EQ(state.phase().kind(), Kind::ready);
    EXPECT_EQ(state.progress(), JobUpdate{});
    EXPECT_EQ(state.sourceURL(), video);
    EXPECT_EQ(state.selectedTrack(), 2);
    EXPECT_FALSE(state.result());
    EXPECT_EQ(work.entries(), QStringList{u"Movie.mkv"_s});

    // And the same file starts again.
    state.start(*work.preferences);
    ASSERT_TRUE(reaches(Kind::finished)) << state.phase().message().toStdString();
}

TEST_F(AppStateTest, ReportsQueuedBeforeACancelAreDropped) {
    open(work.video(u"Movie.mkv"_s, {track(u"eng"_s)}));
    // The job makes its working folder right after its first report: once the folder shows,
    // that report is queued here, and this thread has not looked at it yet.
    const QTemporaryDir scratch;
    const QByteArray temporary = qgetenv("TMPDIR");
    qputenv("TMPDIR", scratch.path().toUtf8());
    state.start(*work.preferences);
    const bool working = eventually([&] {
        return !QDir(scratch.path()).entryList(QDir::Dirs | QDir::NoDotAndDotDot).isEmpty();
    });
    state.cancel();
    qputenv("TMPDIR", temporary);
    ASSERT_TRUE(working);
    ASSERT_TRUE(settles());
    EXPECT_EQ(state.phase().kind(), Kind::ready);
    EXPECT_EQ(state.progress(), JobUpdate{});
    EXPECT_EQ(work.entries(), QStringList{u"Movie.mkv"_s});
}

TEST_F(AppStateTest, ResetDuringAJobForgetsEverything) {
    open(work.video(u"Movie.mkv"_s, {track(u"eng"_s)}));
    state.setForce(true);
    state.start(*work.preferences);
    state.reset();
    EXPECT_EQ(state.phase().kind(), Kind::idle);
    EXPECT_FALSE(state.sourceURL());
    EXPECT_FALSE(state.info());
    EXPECT_FALSE(state.selectedTrack());
    EXPECT_FALSE(state.outputURL());
    EXPECT_FALSE(state.force());
    ASSERT_TRUE(settles());
    EXPECT_EQ(state.phase().kind(), Kind::idle);
    EXPECT_EQ(work.entries(), QStringList{u"Movie.mkv"_s});
}

TEST_F(AppStateTest, ASecondVideoReplacesTheFirst) {
    open(work.video(u"First.mkv"_s, {track(u"eng"_s), track(u"spa"_s)}));
    state.setForce(true);
    state.setSelectedTrack(3);
    open(work.video(u"Second.mkv"_s, {track(u"eng"_s, u"Only"_s)}));
    EXPECT_EQ(state.phase().kind(), Kind::ready);
    EXPECT_EQ(state.sourceURL(), work.path(u"Second.mkv"_s));
    EXPECT_EQ(state.info()->tracks.size(), 1);
    EXPECT_EQ(state.info()->tracks.first().title, u"Only"_s);
    EXPECT_EQ(state.selectedTrack(), 2);
    EXPECT_EQ(state.outputURL(), work.path(u"Second.es.mkv"_s));
    EXPECT_FALSE(state.force());
}

TEST_F(AppStateTest, JobRefusalsAndEngineFailuresEndInTheFailedPhase) {
    const QString spanish = work.video(u"Doble.mkv"_s, {track(u"eng"_s), track(u"spa"_s)});
    open(spanish);
    state.start(*work.preferences);
    ASSERT_TRUE(reaches(Kind::failed));
    EXPECT_EQ(
        state.phase().message(),
        u"El archivo ya tiene subtítulos en español. Activá «Traducir igual» si querés hacerlo de "
        "todos modos."_s);

    open(spanish);
    state.setForce(true);
    state.start(*work.preferences);
    ASSERT_TRUE(reaches(Kind::finished)) << state.phase().message().toStdString();

    // An engine that lacks its key fails before any work starts, with the engine's sentence.
    open(spanish);
    work.preferences->setProviderIDStorage(u"anthropic"_s);
    phases.clear();
    state.start(*work.preferences);
    EXPECT_EQ(phases, QList<Kind>{Kind::failed});
    EXPECT_EQ(state.phase().message(),
              work.preferences->engineConfiguration().missingRequirement().value_or(QString()));
    EXPECT_FALSE(state.hasTask());
}

TEST_F(AppStateTest, ToolCheckFindsFfmpegAndNamesItsVersion) {
    QSignalSpy status(&state, &AppState::ffmpegStatusChanged);
    state.checkTools(*work.preferences);
    ASSERT_TRUE(status.wait(patience));
    EXPECT_TRUE(state.ffmpegReady());
    EXPECT_TRUE(state.ffmpegStatus().value_or(QString()).startsWith(u"ffmpeg version"_s))
        << state.ffmpegStatus().value_or(QString()).toStdString();
}

TEST_F(AppStateTest, StartWithoutAFileDoesNothing) {
    state.start(*work.preferences);
    state.cancel();
    EXPECT_EQ(state.phase().kind(), Kind::idle);
    EXPECT_TRUE(phases.isEmpty());
}

} // namespace
