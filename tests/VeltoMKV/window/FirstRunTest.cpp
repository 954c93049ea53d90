#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QLibraryInfo>
#include <QListWidget>
#include <QProgressBar>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QSemaphore>
#include <QSpinBox>
#include <QTest>
#include <QToolButton>
#include <QWheelEvent>

#include <gtest/gtest.h>

#include "VeltoKit/platform/Keychain.h"
#include "VeltoKit/providers/Provider.h"
#include "VeltoMKV/DropZone.h"
#include "VeltoMKV/ElidingLabel.h"
#include "VeltoMKV/EngineLine.h"
#include "VeltoMKV/FailureView.h"
#include "VeltoMKV/JobView.h"
#include "VeltoMKV/LiveLines.h"
#include "VeltoMKV/MainWindow.h"
#include "VeltoMKV/OptionsPanel.h"
#include "VeltoMKV/ProgressView.h"
#include "VeltoMKV/SettingsDialog.h"
#include "VeltoMKV/SettingsPresenter.h"
#include "VeltoMKV/state/AppState.h"
#include "VeltoMKV/window/Answer.h"
#include "VeltoMKV/window/AppWindow.h"
#include "support/ChatCompletionsServer.h"
#include "support/SecretService.h"

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

// The application as a new user meets it.
class FirstRunTest : public AppWindowTest {
protected:
    // Buttons and toggles of the page on show that lie, even partly, beyond the window's sides
    // where no scroll bar reaches them.
    QStringList controlsOutside() {
        QApplication::processEvents();
        QStringList outside;
        for (QAbstractButton* control : window().currentPage()->findChildren<QAbstractButton*>()) {
            if (!control->isVisibleTo(&window()))
                continue;
            const QRect place(control->mapTo(&window(), QPoint(0, 0)), control->size());
            bool scrolls = false;
            for (QWidget* up = control->parentWidget(); up; up = up->parentWidget()) {
                if (auto* area = qobject_cast<QAbstractScrollArea*>(up))
                    scrolls = scrolls || area->horizontalScrollBar()->isVisible();
            }
            if ((place.left() < 0 || place.right() >= window().width()) && !scrolls)
                outside << control->text();
        }
        return outside;
    }
};

TEST_F(FirstRunTest, ALongNameShortensInItsMiddleAndNoControlLeavesTheWindow) {
    const QString name =
        QString(u"Una película con un nombre larguísimo "_s).repeated(4).left(116) + u".mkv"_s;
    openReady(work.video(name, {track(u"eng"_s, u"English"_s)}));
    const QSize room = window().screen()->availableGeometry().size();
    EXPECT_LE(window().width(), room.width());
    EXPECT_LE(window().height(), room.height());

    window().resize(window().minimumSize());
    auto* title = window().jobView()->findChild<ElidingLabel*>();
    ASSERT_TRUE(title);
    EXPECT_EQ(title->text(), name);
    EXPECT_TRUE(title->shownText().contains(u'…')) << title->shownText().toStdString();
    EXPECT_TRUE(title->shownText().startsWith(u"Una"_s) && title->shownText().endsWith(u".mkv"_s));
    QApplication::processEvents();
    title->repaint();
    EXPECT_EQ(title->toolTip(), name);
    EXPECT_EQ(controlsOutside(), QStringList());
    window().jobView()->optionsDisclosure()->click();
    EXPECT_EQ(controlsOutside(), QStringList());

    shell->settings().present();
    auto* settings = window().findChild<SettingsDialog*>();
    ASSERT_TRUE(settings && settings->isVisible());
    EXPECT_LE(settings->height(), room.height());
    EXPECT_LE(settings->width(), room.width());
    settings->close();
}

// The long wait: the latest lines arrive under the bar, the counts read with the time left, and
// the window's title carries the percentage.
TEST_F(FirstRunTest, TheProgressPageShowsTheLatestLinesAndTheTimeLeftWithoutMovingTheBar) {
    // Every cue the server answers takes one permit: the test lets the batches through.
    QSemaphore permits;
    test::ChatCompletionsServer server(
        {.key = {}, .translate = [&permits](int, const QString& text) -> QString {
             permits.acquire();
             return u"es: "_s + text;
         }});
    Preferences& preferences = shell->preferences();
    preferences.setProviderIDStorage(Provider::local().id);
    preferences.setBaseURL(server.baseUrl(), Provider::local());
    preferences.setModel(u"modelo-a"_s, Provider::local());
    preferences.setBatchSize(2);
    preferences.setConcurrency(1);
    MediaFixtures::SubtitleRecipe english = track(u"eng"_s);
    english.lines = film;
    openReady(work.video(u"Película.mkv"_s, {english}));

    window().startJob();
    ProgressView* page = window().progressView();
    const auto done = [&](qint64 count) {
        return QTest::qWaitFor(
            [&] {
                const std::optional<TranslationProgress>& counted = state().progress().translation;
                return counted && counted->done == count;
            },
            patience);
    };
    ASSERT_TRUE(done(0));
    QApplication::processEvents();
    const QPoint barBefore = page->bar()->mapTo(&window(), QPoint());
    EXPECT_FALSE(page->liveLines()->isVisibleTo(page));
    // Before any answer, the job's estimate is the guess.
    EXPECT_TRUE(page->detailLine()->text().startsWith(u"0 de 12 subtítulos · falta"_s))
        << page->detailLine()->text().toStdString();

    permits.release(2);
    ASSERT_TRUE(done(2));
    EXPECT_EQ(page->liveLines()->shown(), translated(0, 2));
    EXPECT_TRUE(page->liveLines()->isVisibleTo(page));
    // One request at a time: its first answer sets the pace.
    EXPECT_TRUE(page->detailLine()->text().startsWith(u"2 de 12 subtítulos · falta"_s))
        << page->detailLine()->text().toStdString();
    EXPECT_EQ(window().windowTitle(), u"17 % · VeltoMKV"_s);

    permits.release(8);
    ASSERT_TRUE(done(10));
    QApplication::processEvents();
    // A few at a time, the newest last, as a viewer reads them.
    QList<TranslatedLine> latest = translated(6, 4);
    latest[2] = {u"Line 9."_s, u"es: Line 9."_s};
    EXPECT_EQ(page->liveLines()->shown(), latest);
    EXPECT_EQ(page->bar()->mapTo(&window(), QPoint()), barBefore);
    EXPECT_EQ(window().windowTitle(), u"83 % · VeltoMKV"_s);

    permits.release(int(film.size()));
    ASSERT_TRUE(reaches(Kind::finished)) << state().phase().message().toStdString();
    EXPECT_EQ(window().windowTitle(), u"VeltoMKV"_s);
}

TEST_F(FirstRunTest, ReintentarRunsTheChosenTrackToTheChosenOutputAgain) {
    openReady(work.video(u"Movie.mkv"_s, {track(u"eng"_s, u"A"_s), track(u"eng"_s, u"B"_s)}));
    QListWidget* tracks = window().jobView()->trackList();
    tracks->setCurrentRow(1);
    const std::optional<qint64> chosen = state().selectedTrack();
    // The folder is not there yet: the first run fails, the retry finds it.
    const QString output = work.path(u"nueva/mi-salida.mkv"_s);
    state().setOutputURL(output);
    QTest::keyClick(&window(), Qt::Key_Return);
    ASSERT_TRUE(reaches(Kind::failed));
    ASSERT_TRUE(QDir(work.path(QString())).mkdir(u"nueva"_s));

    QTest::mouseClick(window().failureView()->retryButton(), Qt::LeftButton);
    ASSERT_TRUE(reaches(Kind::finished)) << state().phase().message().toStdString();
    EXPECT_EQ(state().selectedTrack(), chosen);
    EXPECT_TRUE(QFileInfo::exists(output));
}

TEST_F(FirstRunTest, ReplacingAFileAndQuittingDuringAJobAskFirst) {
    const QString video = work.video(u"Movie.mkv"_s, {track(u"eng"_s)});
    QFile existing(work.path(u"Movie.es.mkv"_s));
    ASSERT_TRUE(existing.open(QIODevice::WriteOnly));
    existing.write("mío");
    existing.close();
    openReady(video);
    {
        test::Answer keep(u"Cancelar"_s);
        QTest::keyClick(&window(), Qt::Key_Return);
        EXPECT_EQ(keep.question(), u"Ya existe «Movie.es.mkv». ¿Lo reemplazo?"_s);
    }
    EXPECT_EQ(state().phase().kind(), Kind::ready);
    EXPECT_EQ(QFileInfo(work.path(u"Movie.es.mkv"_s)).size(), 4);

    test::Answer replace(u"Reemplazar"_s);
    QTest::mouseClick(window().jobView()->startButton(), Qt::LeftButton);
    ASSERT_EQ(state().phase().kind(), Kind::working);
    {
        test::Answer stay(u"Seguir traduciendo"_s);
        withText<QAction>(window(), u"Salir"_s)->trigger();
        EXPECT_EQ(stay.question(), u"Todavía estoy traduciendo. ¿Salgo igual?"_s);
    }
    EXPECT_TRUE(window().isVisible());
    EXPECT_TRUE(reaches(Kind::finished)) << state().phase().message().toStdString();
    EXPECT_GT(QFileInfo(work.path(u"Movie.es.mkv"_s)).size(), 4);
}

TEST_F(FirstRunTest, TheFolderAndTheSizeAreThereNextTimeAndQtsDialogsSpeakSpanish) {
    openReady(work.video(u"Movie.mkv"_s, {track(u"eng"_s)}));
    window().resize(window().minimumSize());
    const QSize size = window().size();
    window().close();
    shell.reset();
    start();
    EXPECT_EQ(window().size(), size);
    EXPECT_EQ(preferences().lastFolder(), QFileInfo(work.path(u"Movie.mkv"_s)).path());

    QDialogButtonBox buttons(QDialogButtonBox::Cancel | QDialogButtonBox::Save);
    if (QLocale().language() != QLocale::Spanish &&
        buttons.button(QDialogButtonBox::Cancel)->text() == u"Cancel"_s &&
        !QFile::exists(QLibraryInfo::path(QLibraryInfo::TranslationsPath) + u"/qtbase_es.qm"_s))
        GTEST_SKIP() << "Qt's Spanish translations are not installed (qt6-translations-l10n)";
    EXPECT_EQ(buttons.button(QDialogButtonBox::Cancel)->text(), u"Cancelar"_s);
    EXPECT_EQ(buttons.button(QDialogButtonBox::Save)->text(), u"Guardar"_s);
}

TEST_F(FirstRunTest, AKeyIsReadForEveryProviderThatCanSendOne) {
    if (!test::usePrivateSecretService())
        GTEST_SKIP() << "no private Secret Service: run through ctest";
    const Preferences preferences(
        std::make_unique<QSettings>(settingsFolder.filePath(u"keys.ini"_s), QSettings::IniFormat),
        AppShell::keychainReader());
    const struct {
        const Provider& provider;
        bool read;
    } cases[] = {
        {Provider::local(), true}, {Provider::custom(), true}, {Provider::claudeCLI(), false}};
    for (const auto& c : cases) {
        Keychain::set(u"sk-"_s + c.provider.id, c.provider.id);
        EXPECT_EQ(preferences.apiKey(c.provider), c.read ? u"sk-"_s + c.provider.id : QString())
            << c.provider.id.toStdString();
        Keychain::remove(c.provider.id);
    }
}

// A new user on Claude: the start page says what the engine lacks, one click from the
// settings, and a small window scrolls to that click without covering the heading.
TEST_F(FirstRunTest, TheStartPageSaysWhatTheEngineLacksOneClickFromTheSettings) {
    preferences().setProviderIDStorage(Provider::claude().id);
    EngineLine* engine = window().startEngine();
    ASSERT_TRUE(engine->isVisible());
    EXPECT_TRUE(engine->text()->text().startsWith(u"Falta la API key de Claude"_s))
        << engine->text()->text().toStdString();
    QTest::mouseClick(engine->chooseButton(), Qt::LeftButton);
    auto* settings = window().findChild<SettingsDialog*>();
    ASSERT_TRUE(settings && settings->isVisible());
    settings->close();

    window().setMinimumSize(0, 0);
    window().resize(300, 260);
    QApplication::processEvents();
    auto* area = window().dropZone()->findChild<QScrollArea*>();
    ASSERT_TRUE(area);
    area->ensureWidgetVisible(engine->chooseButton());
    QApplication::processEvents();
    const QRect shown(engine->chooseButton()->mapTo(&window(), QPoint(0, 0)),
                      engine->chooseButton()->size());
    EXPECT_TRUE(window().rect().contains(shown)) << shown.x() << ',' << shown.y();
    QLabel* heading = withText<QLabel>(*window().dropZone(), u"Arrastrá un video acá"_s);
    QLabel* icon = nullptr;
    for (QLabel* label : window().dropZone()->findChildren<QLabel*>()) {
        if (!label->pixmap().isNull() && !icon)
            icon = label;
    }
    ASSERT_TRUE(heading && icon);
    EXPECT_LE(icon->geometry().bottom(), heading->geometry().top());

    openReady(work.video(u"Movie.mkv"_s, {track(u"eng"_s)}));
    EXPECT_FALSE(engine->isVisible());
}

// A credential store that keeps silent is named instead of a missing key.
class SilentStoreTest : public AppWindowTest {
protected:
    SilentStoreTest()
        : AppWindowTest([](const QString&) -> QString { throw KeychainError(silentStore); }) {}
    static inline const QString silentStore = u"El llavero del sistema no respondió a tiempo."_s;
};

TEST_F(SilentStoreTest, TheStartPageNamesItInsteadOfAMissingKey) {
    preferences().setProviderIDStorage(Provider::claude().id);
    EXPECT_EQ(window().startEngine()->text()->text(), silentStore);
}

// The options panel: the wheel turns only a focused control; emptying the cache asks first,
// says what it frees and keeps other files.
TEST_F(FirstRunTest, OptionsTurnOnlyWithFocusAndEmptyTheCacheAfterAsking) {
    const QDir cache(Preferences::cacheDirectory());
    const auto write = [&](const QString& name) {
        QFile file(cache.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(QByteArray(2048, 'x'));
    };
    write(u"peli.json"_s);
    for (const QString& other : {u"notas.txt"_s, u"c.json.bak"_s, u"b.JSON"_s})
        write(other);
    openReady(work.video(u"Movie.mkv"_s, {track(u"eng"_s)}));
    window().jobView()->optionsDisclosure()->click();
    auto* options = window().jobView()->findChild<OptionsPanel*>();
    Preferences& preferences = shell->preferences();
    const QList<std::pair<QWidget*, std::function<QString()>>> cases = {
        {options->variantPicker(), [&] { return preferences.variantRaw(); }},
        {options->batchSizeStepper(), [&] { return QString::number(preferences.batchSize()); }},
    };
    for (const auto& entry : cases) {
        // Named, not bound: clang 14 lets no lambda capture a structured binding.
        QWidget* const control = entry.first;
        const std::function<QString()>& stored = entry.second;
        const QString before = stored();
        const auto turn = [&] {
            const QPoint centre = control->rect().center();
            QWheelEvent wheel(centre, control->mapToGlobal(centre), QPoint(), QPoint(0, -120),
                              Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
            QApplication::sendEvent(control, &wheel);
        };
        window().jobView()->startButton()->setFocus();
        turn();
        EXPECT_EQ(stored(), before) << control->metaObject()->className();
        control->setFocus();
        ASSERT_TRUE(QTest::qWaitFor([&] { return control->hasFocus(); }));
        turn();
        EXPECT_NE(stored(), before) << control->metaObject()->className();
    }
    EXPECT_EQ(options->cacheSize()->text(), u"Ocupa 2,0 kB"_s);
    for (const auto& [answer, emptied] :
         {std::pair{u"Cancelar"_s, false}, {u"Vaciar caché"_s, true}}) {
        const test::Answer reply(answer);
        QTest::mouseClick(options->emptyCacheButton(), Qt::LeftButton);
        EXPECT_EQ(reply.question(), u"¿Vacío la caché de traducciones?"_s);
        EXPECT_EQ(cache.exists(u"peli.json"_s), !emptied) << answer.toStdString();
    }
    EXPECT_EQ(cache.entryList(QDir::Files, QDir::Name),
              (QStringList{u"b.JSON"_s, u"c.json.bak"_s, u"notas.txt"_s}));
    EXPECT_EQ(options->cacheSize()->text(), u"La caché está vacía."_s);
    EXPECT_FALSE(options->emptyCacheButton()->isEnabled());
    for (const QString& other : cache.entryList(QDir::Files))
        QFile::remove(cache.filePath(other));
}

} // namespace
