#include <algorithm>

#include <QCheckBox>
#include <QLabel>
#include <QPushButton>
#include <QToolButton>

#include <gtest/gtest.h>

#include "VeltoMKV/DropZone.h"
#include "VeltoMKV/MainWindow.h"
#include "VeltoMKV/QueueRowView.h"
#include "VeltoMKV/QueueView.h"
#include "VeltoMKV/state/QueueState.h"
#include "VeltoMKV/window/AppWindow.h"

using namespace velto;
using namespace velto::AppTesting;
using namespace Qt::StringLiterals;

namespace {

// What each row says: its name, then its state in a word.
QStringList shown(const QueueView& view, qsizetype rows) {
    QStringList lines;
    for (qsizetype at = 0; at < rows; ++at)
        lines << view.rowView(at)->nameLabel()->text() + u": "_s +
                     view.rowView(at)->badge()->text();
    return lines;
}

class QueueWindowTest : public AppWindowTest {};

TEST_F(QueueWindowTest, ADroppedFolderRunsAsAQueueAndEndsWithASummary) {
    work.video(u"E10.mkv"_s, {track(u"eng"_s)});
    work.video(u"E11.mkv"_s, {track(u"eng"_s)});
    MediaFixtures::writeFile(work.path(u"E3.mkv"_s), "not a video at all");
    const QString first = work.video(u"E2.mkv"_s, {track(u"eng"_s), track(u"spa"_s)});

    ASSERT_TRUE(drop(window().dropZone(), {QUrl::fromLocalFile(QFileInfo(first).path())}));
    QueueView* view = window().queueView();
    EXPECT_EQ(window().currentPage(), view);
    const QueueState& queue = window().queueState();
    const auto probed = [&] {
        return queue.backgroundTasks() == 0 &&
               std::none_of(queue.rows().begin(), queue.rows().end(), [](const QueueRow& row) {
                   return row.state == QueueRow::State::waiting && !row.info;
               });
    };
    ASSERT_TRUE(QTest::qWaitFor(probed, patience));
    EXPECT_EQ(shown(*view, 4), (QStringList{u"E2.mkv: omitido"_s, u"E3.mkv: falló"_s,
                                            u"E10.mkv: esperando"_s, u"E11.mkv: esperando"_s}));
    // Before the start a row can leave the list or change places.
    view->rowView(3)->actionButton()->click();
    view->rowView(2)->findChild<QToolButton*>()->click();
    EXPECT_EQ(shown(*view, 3),
              (QStringList{u"E2.mkv: omitido"_s, u"E10.mkv: esperando"_s, u"E3.mkv: falló"_s}));
    EXPECT_EQ(view->startButton()->text(), u"Traducir el video"_s);

    ASSERT_TRUE(view->forceToggle()->isVisible());
    view->forceToggle()->click();
    EXPECT_EQ(view->startButton()->text(), u"Traducir los 2 videos"_s);
    QTest::keyClick(&window(), Qt::Key_Return);
    EXPECT_TRUE(view->cancelButton()->isVisible());
    ASSERT_TRUE(QTest::qWaitFor([&] { return !queue.isRunning(); }, patience));
    EXPECT_EQ(shown(*view, 3),
              (QStringList{u"E2.mkv: listo"_s, u"E10.mkv: listo"_s, u"E3.mkv: falló"_s}));
    EXPECT_EQ(view->rowView(0)->actionButton()->text(), u"Mostrar"_s);
    EXPECT_TRUE(view->summaryPanel()->isVisible());
    EXPECT_TRUE(view->summaryText()->text().startsWith(u"2 videos listos"_s));
    EXPECT_EQ(work.entries(), (QStringList{u"E10.es.mkv"_s, u"E10.mkv"_s, u"E11.mkv"_s,
                                           u"E2.es.mkv"_s, u"E2.mkv"_s, u"E3.mkv"_s}));
    // A failed video can be tried again alone.
    view->rowView(2)->actionButton()->click();
    EXPECT_TRUE(queue.isRunning());
    ASSERT_TRUE(QTest::qWaitFor([&] { return !queue.isRunning(); }, patience));
    EXPECT_EQ(shown(*view, 3).last(), u"E3.mkv: falló"_s);

    // A new list: the window goes back to its start page.
    view->startButton()->click();
    EXPECT_EQ(window().currentPage(), window().dropZone());
}

} // namespace
