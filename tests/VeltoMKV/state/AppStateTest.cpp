#include "VeltoMKV/state/AppState.h"

#include <QDir>

#include <gtest/gtest.h>

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

} // namespace
