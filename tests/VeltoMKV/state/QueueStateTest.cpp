#include "VeltoMKV/state/QueueState.h"

#include <QDir>
#include <QFileInfo>

#include <gtest/gtest.h>

#include "VeltoKit/job/JobError.h"
#include "VeltoMKV/AppTesting.h"
#include "VeltoMKV/state/FailureText.h"
#include "VeltoMKV/state/VideoScan.h"

using namespace velto;
using namespace velto::AppTesting;
using namespace Qt::StringLiterals;

namespace {

using State = QueueRow::State;

class QueueStateTest : public ::testing::Test {
protected:
    bool until(const std::function<bool()>& condition) {
        return QTest::qWaitFor(condition, patience);
    }
    bool probed() {
        return until([&] {
            return std::none_of(queue.rows().begin(), queue.rows().end(),
                                [](const QueueRow& row) {
                                    return row.state == State::waiting && !row.info;
                                }) &&
                   queue.backgroundTasks() == 0;
        });
    }
    bool runEnds() {
        return until([&] { return !queue.isRunning() && queue.backgroundTasks() == 0; });
    }
    // "name: state", one per row, with the reason of skipped and failed rows.
    QStringList rows() const {
        QStringList lines;
        for (const QueueRow& row : queue.rows()) {
            static const QStringList states = {u"waiting"_s,  u"analysing"_s, u"translating"_s,
                                               u"done"_s,     u"skipped"_s,   u"failed"_s,
                                               u"cancelled"_s};
            QString line =
                QFileInfo(row.source).fileName() + u": "_s + states.at(static_cast<int>(row.state));
            if (!row.message.isEmpty() && row.state == State::skipped)
                line += u" "_s + row.message;
            lines.append(line);
        }
        return lines;
    }

    Workspace work;
    QueueState queue;
};

TEST_F(QueueStateTest, ASeasonEndsWithEveryVideoDoneOrExplained) {
    work.video(u"E1.mkv"_s, {track(u"eng"_s)});
    work.video(u"E2.mkv"_s, {});
    work.video(u"E3.mkv"_s, {track(u"eng"_s), track(u"spa"_s)});
    MediaFixtures::writeFile(work.path(u"E4.mkv"_s), "not a video at all");
    auto image = track(u"eng"_s);
    image.format = MediaFixtures::SubtitleFormat::pgs;
    work.video(u"E5.mkv"_s, {image});
    work.video(u"E10.mkv"_s, {track(u"eng"_s), track(u"fre"_s)});
    const QString extra = work.video(u"Extra.mkv"_s, {track(u"eng"_s)});
    QStringList season = VideoScan::videos({QFileInfo(extra).path()});
    season.removeAll(extra);
    // Started at once: the videos still being probed are part of the run.
    queue.add(season, *work.preferences);
    queue.start(*work.preferences);
    ASSERT_TRUE(until([&] { return queue.rows().last().info.has_value(); }));
    queue.setTrack(queue.rows().last().id, 3);
    // A video dropped during the run joins it.
    queue.add({extra}, *work.preferences);
    ASSERT_TRUE(runEnds());
    EXPECT_EQ(
        rows(),
        (QStringList{
            u"E1.mkv: done"_s, u"E2.mkv: skipped "_s + failureText(JobError::noSubtitles()),
            u"E3.mkv: skipped "_s + failureText(JobError::alreadySpanish()), u"E4.mkv: failed"_s,
            u"E5.mkv: skipped "_s + failureText(JobError::bitmapOnly({u"hdmv_pgs_subtitle"_s})),
            u"E10.mkv: done"_s, u"Extra.mkv: done"_s}));
    EXPECT_FALSE(queue.rows().at(3).message.isEmpty());
    EXPECT_EQ(queue.rows().at(5).plan->track->index, 3);
    EXPECT_EQ(queue.summary().done, 3);
    EXPECT_EQ(work.entries(), (QStringList{u"E1.es.mkv"_s, u"E1.mkv"_s, u"E10.es.mkv"_s,
                                           u"E10.mkv"_s, u"E2.mkv"_s, u"E3.mkv"_s, u"E4.mkv"_s,
                                           u"E5.mkv"_s, u"Extra.es.mkv"_s, u"Extra.mkv"_s}));

    // «Traducir igual» takes back the skip, and a new start runs only that video.
    queue.setForce(true);
    EXPECT_EQ(queue.rows().at(2).state, State::waiting);
    queue.start(*work.preferences);
    ASSERT_TRUE(runEnds());
    EXPECT_EQ(queue.rows().at(2).state, State::done);
    EXPECT_EQ(work.entries().size(), 11);
}

TEST_F(QueueStateTest, CancelStopsTheRunAndARowCanBeRetriedAlone) {
    const QString first = work.video(u"A.mkv"_s, {track(u"eng"_s)});
    const QString second = work.video(u"B.mkv"_s, {track(u"eng"_s)});
    queue.add({first, second}, *work.preferences);
    ASSERT_TRUE(probed());
    // Once started a row keeps its place.
    queue.start(*work.preferences);
    queue.move(queue.rows().first().id, 1);
    EXPECT_EQ(queue.rows().first().source, first);
    queue.cancel();
    ASSERT_TRUE(runEnds());
    EXPECT_EQ(rows(), (QStringList{u"A.mkv: cancelled"_s, u"B.mkv: waiting"_s}));
    EXPECT_EQ(work.entries(), (QStringList{u"A.mkv"_s, u"B.mkv"_s}));

    queue.retry(queue.rows().first().id, *work.preferences);
    ASSERT_TRUE(runEnds());
    EXPECT_EQ(rows(), (QStringList{u"A.mkv: done"_s, u"B.mkv: waiting"_s}));
    EXPECT_EQ(work.entries(), (QStringList{u"A.es.mkv"_s, u"A.mkv"_s, u"B.mkv"_s}));
}

TEST(VideoScan, FindsVideosAtAnyDepthInNaturalOrder) {
    const QTemporaryDir folder;
    const QStringList files = {u"E10.mkv"_s,
                               u"E2.mkv"_s,
                               u"e3.MP4"_s,
                               u"E2.srt"_s,
                               u"notas.txt"_s,
                               u"Extras/B-roll 9.webm"_s,
                               u"Extras/B-roll 10.avi"_s,
                               u"E01.mkv"_s,
                               u"E2.es.mkv"_s,
                               u"Solo.es.mkv"_s};
    QDir(folder.path()).mkdir(u"Extras"_s);
    for (const QString& file : files)
        MediaFixtures::writeFile(folder.filePath(file), {});
    // Files chosen one by one come in the same order as a folder's.
    EXPECT_EQ(VideoScan::videos({folder.filePath(u"E10.mkv"_s), folder.filePath(u"E2.mkv"_s)}),
              (QStringList{folder.filePath(u"E2.mkv"_s), folder.filePath(u"E10.mkv"_s)}));
    QStringList found;
    for (const QString& path : VideoScan::videos({folder.path()}))
        found.append(QDir(folder.path()).relativeFilePath(path));
    EXPECT_EQ(found, (QStringList{u"E01.mkv"_s, u"E2.mkv"_s, u"e3.MP4"_s, u"E10.mkv"_s,
                                  u"Extras/B-roll 9.webm"_s, u"Extras/B-roll 10.avi"_s,
                                  u"Solo.es.mkv"_s}));
}

TEST(VideoScan, NaturalOrder) {
    const QList<std::pair<QString, QString>> ordered = {
        {u"E2"_s, u"E10"_s},      {u"s01e09"_s, u"S01E10"_s},
        {u"E007"_s, u"E8"_s},     {u"Temporada 2/E9"_s, u"Temporada 10/E1"_s},
        {u"Show"_s, u"Show 1"_s}, {u"99999999999999999999"_s, u"100000000000000000000"_s},
        {u"a1b2"_s, u"a1b10"_s}};
    for (const auto& [before, after] : ordered) {
        EXPECT_TRUE(VideoScan::naturalLess(before, after)) << before.toStdString();
        EXPECT_FALSE(VideoScan::naturalLess(after, before)) << after.toStdString();
    }
}

} // namespace
