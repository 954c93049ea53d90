// What the window tells during a long job: counts as prose, a guess at the time left, and the
// time of the whole job when it needed a retry.

#include <future>

#include <QDir>
#include <QRegularExpression>

#include <gtest/gtest.h>

#include "VeltoKit/providers/Provider.h"
#include "VeltoKit/translation/TranslationProgress.h"
#include "VeltoMKV/AppTesting.h"
#include "VeltoMKV/state/AppState.h"
#include "VeltoMKV/state/Format.h"
#include "VeltoMKV/state/TimeLeft.h"
#include "support/ChatCompletionsServer.h"

using namespace velto;
using namespace velto::AppTesting;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

TEST(LongWait, CountsAndTimeLeftReadAsSpanishProse) {
    EXPECT_EQ(Format::counts({1, 0, 0, 0}), u"0 de 1 subtítulo"_s);
    EXPECT_EQ(Format::counts({1234567, 1000, 999, 2}),
              u"1.000 de 1.234.567 subtítulos · 999 en caché · 2 sin traducir"_s);

    const struct {
        double seconds;
        QString text;
    } left[] = {
        {29, u"falta menos de un minuto"_s}, {31, u"falta ~1 min"_s},  {3569, u"faltan ~59 min"_s},
        {4810, u"faltan ~1 h 20 min"_s},     {7190, u"faltan ~2 h"_s},
    };
    for (const auto& c : left)
        EXPECT_EQ(Format::timeLeft(c.seconds), c.text) << c.seconds;
}

TEST(LongWait, TimeLeftFollowsThePaceOfTheLatestBatches) {
    // Reports as "seconds:done/cached/total", in order.
    const struct {
        const char* name;
        qint64 concurrency;
        QString reports;
        double askedAt;
        std::optional<double> left;
    } cases[] = {
        {"one request at a time: the first answer sets the pace", 1, u"0:0/0/400 10:40/0/400"_s, 10,
         90},
        {"three at once: no guess while the first round is still coming", 3,
         u"0:0/0/400 10:40/0/400 10.5:80/0/400"_s, 10.5, std::nullopt},
        {"three at once: the whole first round is the pace", 3,
         u"0:0/0/400 10:40/0/400 10:80/0/400 10:120/0/400"_s, 10, 280.0 / 12},
        {"cache hits are no pace", 1, u"0:0/0/400 10:240/200/400"_s, 10, 40},
        {"a stalled engine makes the guess grow", 1, u"0:0/0/400 10:40/0/400"_s, 40, 360},
        {"an engine that slows down shows within a few batches", 1,
         u"0:0/0/800 10:40/0/800 20:80/0/800 30:120/0/800 40:160/0/800 60:200/0/800 "
         "80:240/0/800 100:280/0/800 120:320/0/800"_s,
         120, 240},
        {"between answers the guess counts down", 1, u"0:0/0/400 10:40/0/400"_s, 15, 85},
        {"nothing left", 1, u"0:0/0/40 5:40/0/40"_s, 6, 0},
    };
    const TimeLeft::Clock::time_point start;
    const auto at = [&](double seconds) {
        return start + std::chrono::duration_cast<TimeLeft::Clock::duration>(
                           std::chrono::duration<double>(seconds));
    };
    for (const auto& c : cases) {
        TimeLeft guess(c.concurrency);
        for (const QString& report : c.reports.split(u' ')) {
            const QStringList n = report.split(QRegularExpression(u"[:/]"_s));
            guess.observe({n[3].toLongLong(), n[1].toLongLong(), n[2].toLongLong(), 0},
                          at(n[0].toDouble()));
        }
        const std::optional<double> left = guess.secondsLeft(at(c.askedAt));
        ASSERT_EQ(left.has_value(), c.left.has_value()) << c.name;
        if (left) {
            EXPECT_NEAR(*left, *c.left, 0.01) << c.name;
        }
    }
}

// A job whose mux fails (its output folder went away) and is retried: the result counts the
// failed leg's time too.
TEST(LongWait, TheResultsElapsedTimeCoversTheLegsBeforeARetry) {
    Workspace work;
    std::promise<void> open;
    const std::shared_future<void> opened = open.get_future().share();
    test::ChatCompletionsServer server(
        {.key = {}, .translate = [opened](int, const QString& text) -> QString {
             opened.wait();
             return u"es: "_s + text;
         }});
    work.preferences->setProviderIDStorage(Provider::local().id);
    work.preferences->setBaseURL(server.baseUrl(), Provider::local());
    work.preferences->setModel(u"modelo-a"_s, Provider::local());
    const QString video = work.video(u"Movie.mkv"_s, {track(u"eng"_s)});
    const QString folder = work.path(u"out"_s);
    ASSERT_TRUE(QDir().mkpath(folder));

    AppState state;
    const auto reaches = [&](Phase::Kind kind) {
        return QTest::qWaitFor([&] { return state.phase().kind() == kind; }, patience);
    };
    const auto leg = [&] {
        state.load(video, *work.preferences);
        ASSERT_TRUE(reaches(Phase::Kind::ready)) << state.phase().message().toStdString();
        state.setOutputURL(folder + u"/Movie.es.mkv"_s);
        state.start(*work.preferences);
    };

    leg();
    // The translation waits for the server, which waits for the failed leg to have taken time.
    ASSERT_TRUE(QTest::qWaitFor([&] { return state.elapsed() >= 3; }, patience));
    ASSERT_TRUE(QDir(folder).removeRecursively());
    open.set_value();
    ASSERT_TRUE(reaches(Phase::Kind::failed));
    const double failedLeg = state.elapsed();
    EXPECT_GE(failedLeg, 3);

    ASSERT_TRUE(QDir().mkpath(folder));
    leg();
    ASSERT_TRUE(reaches(Phase::Kind::finished)) << state.phase().message().toStdString();
    ASSERT_TRUE(state.result());
    EXPECT_GT(state.result()->elapsed, failedLeg);

    // A new job starts from zero.
    leg();
    ASSERT_TRUE(reaches(Phase::Kind::finished)) << state.phase().message().toStdString();
    EXPECT_LT(state.result()->elapsed, failedLeg);
}

} // namespace
