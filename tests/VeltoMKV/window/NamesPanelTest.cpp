#include "VeltoMKV/NamesPanel.h"

#include <QLabel>
#include <QPushButton>
#include <QTableWidget>
#include <QToolButton>

#include <gtest/gtest.h>

#include "VeltoMKV/AppTesting.h"
#include "VeltoMKV/state/AppState.h"
#include "VeltoMKV/state/NameList.h"

using namespace velto;
using namespace velto::AppTesting;
using namespace Qt::StringLiterals;

// The table is the list: what is typed in a cell, added or removed ends up in the folder's file.
TEST(NamesPanel, FoldedUntilOpenedAndEditsInTheTableReachTheFile) {
    Workspace work;
    MediaFixtures::SubtitleRecipe english = track(u"eng"_s);
    english.lines = {u"Where is White?"_s, u"Tell White I called."_s, u"Walt knows."_s};
    const QString video = work.video(u"E01.mkv"_s, {english});
    AppState state;
    NamesPanel panel(state);
    panel.show();
    state.load(video, *work.preferences);
    ASSERT_TRUE(QTest::qWaitFor(
        [&] { return state.info() && panel.list().filePath() && !panel.list().isSearching(); },
        patience));
    QTableWidget* table = panel.table();
    EXPECT_FALSE(table->isVisible());
    EXPECT_EQ(panel.summary()->text(), u"1 nombre"_s);
    panel.disclosure()->click();
    ASSERT_TRUE(table->isVisible());
    ASSERT_EQ(table->rowCount(), 1);

    table->item(0, 1)->setText(u"Blanco"_s);
    withText<QPushButton>(panel, u"Agregar"_s)->click();
    table->item(1, 1)->setText(u"la Comarca"_s);
    table->item(1, 0)->setText(u"the Shire"_s);
    table->item(0, 0)->setText(QString()); // an emptied term leaves the list
    const QList<Glossary::Entry> expected = {{u"the Shire"_s, u"la Comarca"_s}};
    EXPECT_EQ(Glossary::load(*panel.list().filePath()).entries(), expected);
    EXPECT_EQ(table->rowCount(), 1);
    EXPECT_EQ(panel.summary()->text(), u"1 nombre · 1 se traduce"_s);
}
