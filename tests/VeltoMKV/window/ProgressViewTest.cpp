// The long wait as the user watches it: the latest translated lines arrive under the bar, the
// counts read as prose with the time left, and the window's title carries the percentage.

#include "VeltoMKV/ProgressView.h"

#include <QApplication>
#include <QDir>
#include <QLabel>
#include <QProgressBar>
#include <QSemaphore>
#include <QSettings>
#include <QTest>

#include <gtest/gtest.h>

#include "VeltoKit/providers/Provider.h"
#include "VeltoMKV/AppShell.h"
#include "VeltoMKV/AppTesting.h"
#include "VeltoMKV/LiveLines.h"
#include "VeltoMKV/MainWindow.h"
#include "VeltoMKV/state/AppState.h"
#include "support/ChatCompletionsServer.h"

using namespace velto;
using namespace velto::AppTesting;
using namespace Qt::StringLiterals;

namespace {

// Twelve cues, the ninth in italics: the live lines show it as plain text.
const QStringList film = [] {
    QStringList lines;
    for (int n = 1; n <= 12; ++n)
        lines << (n == 9 ? u"<i>Line 9.</i>"_s : u"Line %1."_s.arg(n));
    return lines;
}();

QList<TranslatedLine> translated(qsizetype from, qsizetype count) {
    QList<TranslatedLine> lines;
    for (const QString& line : film.mid(from, count))
        lines.append({line, u"es: "_s + line});
    return lines;
}

TEST(ProgressView, ShowsTheLatestLinesAndTheTimeLeftWithoutMovingTheBar) {
    // Every cue the server answers takes one permit: the test lets the batches through.
    QSemaphore permits;
    test::ChatCompletionsServer server(
        {.key = {}, .translate = [&permits](int, const QString& text) -> QString {
             permits.acquire();
             return u"es: "_s + text;
         }});
    QTemporaryDir settings;
    Workspace work;
    AppShell shell(std::make_unique<QSettings>(QDir(settings.path()).filePath(u"VeltoMKV.ini"_s),
                                               QSettings::IniFormat),
                   [](const QString&) { return QString(); });
    Preferences& preferences = shell.preferences();
    preferences.setProviderIDStorage(Provider::local().id);
    preferences.setBaseURL(server.baseUrl(), Provider::local());
    preferences.setModel(u"modelo-a"_s, Provider::local());
    preferences.setUseCache(false);
    preferences.setBatchSize(2);
    preferences.setConcurrency(1);
    MediaFixtures::SubtitleRecipe english = track(u"eng"_s);
    english.lines = film;
    const QString video = work.video(u"Película.mkv"_s, {english});
    shell.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&shell.window()));
    AppState& state = shell.state();
    MainWindow& window = shell.window();
    window.openFile(video);
    ASSERT_TRUE(
        QTest::qWaitFor([&] { return state.phase().kind() == Phase::Kind::ready; }, patience))
        << state.phase().message().toStdString();

    window.startJob();
    ProgressView* page = window.progressView();
    const auto done = [&](qint64 count) {
        return QTest::qWaitFor(
            [&] {
                const std::optional<TranslationProgress>& counted = state.progress().translation;
                return counted && counted->done == count;
            },
            patience);
    };
    ASSERT_TRUE(done(0));
    QApplication::processEvents();
    const QPoint barBefore = page->bar()->mapTo(&window, QPoint());
    EXPECT_FALSE(page->liveLines()->isVisibleTo(page));
    EXPECT_EQ(page->detailLine()->text(), u"0 de 12 subtítulos"_s);

    permits.release(2);
    ASSERT_TRUE(done(2));
    EXPECT_EQ(page->liveLines()->shown(), translated(0, 2));
    EXPECT_TRUE(page->liveLines()->isVisibleTo(page));
    // One request at a time: its first answer sets the pace.
    EXPECT_TRUE(page->detailLine()->text().startsWith(u"2 de 12 subtítulos · falta"_s))
        << page->detailLine()->text().toStdString();
    EXPECT_EQ(window.windowTitle(), u"17 % · VeltoMKV"_s);

    permits.release(8);
    ASSERT_TRUE(done(10));
    QApplication::processEvents();
    // A few at a time, the newest last, as a viewer reads them.
    QList<TranslatedLine> latest = translated(6, 4);
    latest[2] = {u"Line 9."_s, u"es: Line 9."_s};
    EXPECT_EQ(page->liveLines()->shown(), latest);
    EXPECT_EQ(page->bar()->mapTo(&window, QPoint()), barBefore);
    EXPECT_EQ(window.windowTitle(), u"83 % · VeltoMKV"_s);
    const QString folder = QStringLiteral(VELTO_BINARY_DIR "/screenshots");
    QDir().mkpath(folder);
    const QString scale = QString::number(qRound(window.devicePixelRatioF() * 100));
    EXPECT_TRUE(window.grab().save(folder + u"/main-working-lines-"_s + scale + u".png"_s));

    permits.release(int(film.size()));
    ASSERT_TRUE(
        QTest::qWaitFor([&] { return state.phase().kind() == Phase::Kind::finished; }, patience))
        << state.phase().message().toStdString();
    EXPECT_EQ(window.windowTitle(), u"VeltoMKV"_s);
}

} // namespace
