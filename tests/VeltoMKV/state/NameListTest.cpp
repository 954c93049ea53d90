#include "VeltoMKV/state/NameList.h"

#include <gtest/gtest.h>

#include "VeltoMKV/AppTesting.h"
#include "VeltoMKV/state/AppState.h"

using namespace velto;
using namespace velto::AppTesting;
using namespace Qt::StringLiterals;

TEST(NameList, TheFoldersListThenTheTracksNamesAndEveryEditRewritesTheFile) {
    Workspace work;
    Glossary({{u"Heisenberg"_s, {}}}).save(work.path(Glossary::fileName()));
    MediaFixtures::SubtitleRecipe english = track(u"eng"_s);
    english.lines = {u"Where is White?"_s, u"Tell White I called."_s, u"Heisenberg knows."_s};
    const QString video = work.video(u"E01.mkv"_s, {english});
    AppState state;
    NameList names(state);
    state.load(video, *work.preferences);
    ASSERT_TRUE(QTest::qWaitFor(
        [&] { return state.info() && names.filePath() && !names.isSearching(); }, patience));
    using Entries = QList<Glossary::Entry>;
    EXPECT_EQ(names.entries(), (Entries{{u"Heisenberg"_s, {}}, {u"White"_s, {}}}));

    // A second term of the same name is refused; the others land in the file at once.
    EXPECT_FALSE(names.add(u"White"_s));
    EXPECT_TRUE(names.add(u"the Shire"_s, u"la Comarca"_s));
    names.setRendering(u"Heisenberg"_s, u"el profe"_s);
    names.remove(u"White"_s);
    const Entries edited{{u"Heisenberg"_s, u"el profe"_s}, {u"the Shire"_s, u"la Comarca"_s}};
    EXPECT_EQ(names.entries(), edited);
    EXPECT_EQ(Glossary::load(*names.filePath()).entries(), edited);

    // The next episode of the folder does not bring back what the user took out.
    const QString next = work.video(u"E02.mkv"_s, {english});
    state.load(next, *work.preferences);
    ASSERT_TRUE(QTest::qWaitFor(
        [&] { return state.sourceURL() == next && state.info() && !names.isSearching(); },
        patience));
    EXPECT_EQ(names.entries(), edited);
}
