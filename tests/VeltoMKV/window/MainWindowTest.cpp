#include "VeltoMKV/MainWindow.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QFileInfo>
#include <QFileOpenEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QSignalSpy>
#include <QSpinBox>
#include <QTest>
#include <QToolButton>
#include <QUrl>

#include <gtest/gtest.h>

#include "VeltoKit/platform/PlatformText.h"
#include "VeltoKit/providers/Provider.h"
#include "VeltoMKV/DropZone.h"
#include "VeltoMKV/FailureView.h"
#include "VeltoMKV/JobView.h"
#include "VeltoMKV/OptionsPanel.h"
#include "VeltoMKV/ProgressView.h"
#include "VeltoMKV/ResultView.h"
#include "VeltoMKV/SettingsDialog.h"
#include "VeltoMKV/SettingsPresenter.h"
#include "VeltoMKV/window/Answer.h"
#include "VeltoMKV/window/AppWindow.h"
#include "support/ChatCompletionsServer.h"
#include "support/SecretService.h"

using namespace velto;
using namespace velto::AppTesting;
using namespace Qt::StringLiterals;

namespace {

using MainWindowTest = AppWindowTest;

TEST_F(MainWindowTest, DropTranslateAndSeeTheResult) {
    EXPECT_EQ(window().windowTitle(), u"VeltoMKV"_s);
    const QAction* open = withText<QAction>(window(), u"Abrir…"_s);
    EXPECT_TRUE(open && open->shortcut() == QKeySequence(QKeySequence::Open));
    EXPECT_EQ(window().currentPage(), window().dropZone());

    auto image = track(u"fre"_s);
    image.format = MediaFixtures::SubtitleFormat::pgs;
    const QString video =
        work.video(u"Película.mkv"_s, {track(u"eng"_s, u"SDH"_s, false, true),
                                       track(u"eng"_s, u"English"_s), track(u"jpn"_s), image});
    ASSERT_TRUE(drop(window().dropZone(), {QUrl::fromLocalFile(video)}));
    EXPECT_EQ(state().phase().kind(), Kind::inspecting);
    ASSERT_TRUE(reaches(Kind::ready)) << state().phase().message().toStdString();

    JobView* view = window().jobView();
    EXPECT_EQ(window().currentPage(), view);
    EXPECT_EQ(view->trackList()->count(), 4);
    // The image track says why it cannot be chosen.
    const QListWidgetItem* pictures = view->trackList()->item(3);
    EXPECT_TRUE(pictures->text().contains(u"necesita OCR"_s)) << pictures->text().toStdString();
    EXPECT_FALSE(pictures->flags() & Qt::ItemIsEnabled);
    ASSERT_TRUE(view->trackList()->currentItem());
    EXPECT_TRUE(view->trackList()->currentItem()->text().startsWith(u"#3  inglés  «English»"_s))
        << view->trackList()->currentItem()->text().toStdString();
    EXPECT_EQ(view->engineLine()->text(), preferences().engineConfiguration().summary());
    EXPECT_EQ(view->outputLine()->text(), u"Película.es.mkv"_s);
    EXPECT_FALSE(view->notice()->isVisible());

    // The job's first report finds the window on its progress page.
    bool working = false;
    QObject::connect(&state(), &AppState::progressChanged, &window(), [&] {
        working = working || window().currentPage() == window().progressView();
    });
    QTest::keyClick(&window(), Qt::Key_Return);
    EXPECT_EQ(window().currentPage(), window().progressView());
    ASSERT_TRUE(reaches(Kind::finished)) << state().phase().message().toStdString();
    EXPECT_TRUE(working);

    ResultView* result = window().resultView();
    EXPECT_EQ(window().currentPage(), result);
    EXPECT_EQ(result->outputName()->text(), u"Película.es.mkv"_s);
    EXPECT_EQ(state().result()->translatedCount, 3);
    EXPECT_EQ(result->revealButton()->text(), PlatformText::revealInFileBrowser());
    EXPECT_FALSE(result->removals()->isVisible());
    EXPECT_TRUE(QFileInfo::exists(work.path(u"Película.es.mkv"_s)));

    QTest::mouseClick(result->anotherButton(), Qt::LeftButton);
    EXPECT_EQ(state().phase().kind(), Kind::idle);
    EXPECT_EQ(window().currentPage(), window().dropZone());
}

// What every user of a hosted engine does first: paste the key in the settings, close them,
// press Return. The WebM comes back beside itself as an MKV, a container the copy can be.
TEST_F(MainWindowTest, AKeyPastedInTheSettingsUnlocksTheJobAndAWebMBecomesAnMkv) {
    // The key field is open only where a credential store answers.
    if (!test::usePrivateSecretService())
        GTEST_SKIP() << "no private Secret Service: run through ctest";
    test::ChatCompletionsServer server({});
    Preferences& preferences = shell->preferences();
    preferences.setProviderIDStorage(Provider::custom().id);
    preferences.setBaseURL(server.baseUrl(), Provider::custom());
    preferences.setModel(u"modelo-a"_s, Provider::custom());
    openReady(work.video(u"Trailer.webm"_s, {track(u"eng"_s)}));
    JobView* view = window().jobView();
    EXPECT_EQ(view->outputLine()->text(), u"Trailer.es.mkv"_s);
    EXPECT_FALSE(view->startButton()->isEnabled());

    QTest::keyClick(&window(), Qt::Key_Comma, Qt::ControlModifier);
    auto* settings = window().findChild<SettingsDialog*>();
    ASSERT_TRUE(settings && settings->isVisible());
    for (QLineEdit* field : settings->findChildren<QLineEdit*>()) {
        if (field->accessibleName() == u"API key"_s && field->isVisible())
            QTest::keyClicks(field, u"sk-prueba"_s);
    }
    QTest::mouseClick(withText<QPushButton>(*settings, u"Listo"_s), Qt::LeftButton);
    EXPECT_FALSE(settings->isVisible());
    EXPECT_TRUE(view->startButton()->isEnabled()) << view->engineLine()->text().toStdString();
    QTest::keyClick(&window(), Qt::Key_Return);
    ASSERT_TRUE(reaches(Kind::finished)) << state().phase().message().toStdString();
    EXPECT_EQ(server.completions(), 2) << "the connection check and one batch";
    EXPECT_TRUE(QFileInfo::exists(work.path(u"Trailer.es.mkv"_s)));
}

TEST_F(MainWindowTest, EscapeCancelsAndTheFileAndChosenTrackStay) {
    openReady(work.video(u"Movie.mkv"_s, {track(u"eng"_s), track(u"fre"_s)}));
    QListWidget* tracks = window().jobView()->trackList();
    QTest::mouseClick(tracks->viewport(), Qt::LeftButton, {},
                      tracks->visualItemRect(tracks->item(1)).center());
    EXPECT_EQ(state().selectedTrack(), 3);

    QSignalSpy reports(&state(), &AppState::progressChanged);
    QTest::mouseClick(window().jobView()->startButton(), Qt::LeftButton);
    ASSERT_TRUE(reports.wait(patience));
    QTest::keyClick(&window(), Qt::Key_Escape);
    EXPECT_EQ(state().phase().kind(), Kind::ready);
    EXPECT_EQ(window().currentPage(), window().jobView());
    ASSERT_TRUE(settles());
    // The late reports and the end of the cancelled run changed nothing.
    EXPECT_EQ(state().phase().kind(), Kind::ready);
    EXPECT_EQ(state().progress(), JobUpdate{});
    EXPECT_FALSE(state().result());
    EXPECT_EQ(state().selectedTrack(), 3);
    EXPECT_EQ(tracks->currentRow(), 1);
    EXPECT_EQ(work.entries(), QStringList{u"Movie.mkv"_s});

    // And the same file starts again.
    QTest::keyClick(&window(), Qt::Key_Return);
    ASSERT_TRUE(reaches(Kind::finished)) << state().phase().message().toStdString();
}

TEST_F(MainWindowTest, AFileWithoutSubtitlesFailsWithTheExactSentence) {
    // As `veltomkv Silent.mkv` from a terminal.
    shell->openArguments({u"-style=fusion"_s, work.video(u"Silent.mkv"_s, {})});
    ASSERT_TRUE(reaches(Kind::failed));
    FailureView* failure = window().failureView();
    EXPECT_EQ(window().currentPage(), failure);
    EXPECT_EQ(failure->message()->text(),
              u"El archivo no tiene ninguna pista de subtítulos, no hay nada que traducir."_s);

    // "Reintentar" probes the same file again; "Empezar de nuevo" forgets it.
    QTest::mouseClick(failure->retryButton(), Qt::LeftButton);
    EXPECT_EQ(state().phase().kind(), Kind::inspecting);
    ASSERT_TRUE(reaches(Kind::failed));
    QTest::mouseClick(failure->startOverButton(), Qt::LeftButton);
    EXPECT_EQ(state().phase().kind(), Kind::idle);
    EXPECT_FALSE(state().sourceURL());
}

TEST_F(MainWindowTest, AFileHandedOverStartsOnReturnEvenWhileItIsBeingRead) {
    // What macOS sends when a video is opened with the app.
    QFileOpenEvent open(work.video(u"Handed.mkv"_s, {track(u"eng"_s)}));
    QApplication::sendEvent(qApp, &open);
    EXPECT_EQ(state().phase().kind(), Kind::inspecting);
    QTest::keyClick(&window(), Qt::Key_Return);
    ASSERT_TRUE(reaches(Kind::finished)) << state().phase().message().toStdString();
    EXPECT_TRUE(QFileInfo::exists(work.path(u"Handed.es.mkv"_s)));
}

TEST_F(MainWindowTest, ASecondFileDroppedOnTheReadyWindowReplacesTheFirst) {
    openReady(work.video(u"First.mkv"_s, {track(u"eng"_s), track(u"spa"_s)}));
    JobView* view = window().jobView();
    EXPECT_TRUE(view->notice()->isVisible());
    EXPECT_EQ(view->notice()->text(), u"Este archivo ya tiene una pista en español."_s);
    QTest::mouseClick(view->forceToggle(), Qt::LeftButton);
    EXPECT_TRUE(state().force());

    ASSERT_TRUE(drop(&window(), {QUrl::fromLocalFile(work.video(
                                    u"Second.mkv"_s, {track(u"eng"_s, u"Solo"_s, true)}))}));
    ASSERT_TRUE(reaches(Kind::ready));
    EXPECT_EQ(state().sourceURL(), work.path(u"Second.mkv"_s));
    EXPECT_EQ(view->trackList()->count(), 1);
    EXPECT_EQ(view->outputLine()->text(), u"Second.es.mkv"_s);
    EXPECT_FALSE(view->notice()->isVisible());
    EXPECT_FALSE(view->forceToggle()->isChecked());
}

TEST_F(MainWindowTest, DropsOfAnythingButFilesAreRefusedQuietly) {
    const QString a = work.video(u"A.mkv"_s, {track(u"eng"_s)});
    const struct {
        QList<QUrl> urls;
        QString refusal;
    } cases[] = {
        {{QUrl::fromLocalFile(a), QUrl(u"https://example.com/b.mkv"_s)},
         u"Eso no es un archivo: soltá un video."_s},
        {{QUrl(u"https://example.com/video.mkv"_s)}, u"Eso no es un archivo: soltá un video."_s},
    };
    for (const auto& c : cases) {
        EXPECT_FALSE(drop(window().dropZone(), c.urls));
        EXPECT_EQ(window().dropZone()->refusalText(), c.refusal);
        EXPECT_EQ(state().phase().kind(), Kind::idle);
    }
}

TEST_F(MainWindowTest, OptionsAndEngineLineFollowThePreferences) {
    openReady(work.video(u"Movie.mkv"_s, {track(u"eng"_s)}));
    JobView* view = window().jobView();
    QTest::mouseClick(view->optionsDisclosure(), Qt::LeftButton);
    auto* options = view->findChild<OptionsPanel*>();
    ASSERT_TRUE(options && options->isVisible());

    QTest::mouseClick(options->stripSDHToggle(), Qt::LeftButton, {},
                      QPoint(8, options->stripSDHToggle()->height() / 2));
    EXPECT_TRUE(preferences().stripSDH());
    preferences().setUseCache(true);
    EXPECT_TRUE(options->useCacheToggle()->isChecked());
    preferences().setBatchSize(25);
    EXPECT_EQ(options->batchSizeStepper()->value(), 25);
    options->variantPicker()->setCurrentIndex(1);
    EXPECT_EQ(preferences().variantRaw(), u"rioplatense"_s);
    QTest::mouseClick(view->optionsDisclosure(), Qt::LeftButton);
    EXPECT_FALSE(options->isVisible());

    // An engine that cannot run turns the line into its missing requirement and holds the button.
    preferences().setProviderIDStorage(u"anthropic"_s);
    const QString missing =
        preferences().engineConfiguration().missingRequirement().value_or(QString());
    ASSERT_FALSE(missing.isEmpty());
    EXPECT_EQ(view->engineLine()->text(), missing);
    EXPECT_FALSE(view->startButton()->isEnabled());
    EXPECT_EQ(view->startButton()->toolTip(), missing);
    QTest::keyClick(&window(), Qt::Key_Return);
    EXPECT_EQ(state().phase().kind(), Kind::ready);

    // The engine button presents the settings; choosing the echo engine there readies the line.
    QTest::mouseClick(withText<QPushButton>(window(), u"Elegir el motor de traducción"_s),
                      Qt::LeftButton);
    EXPECT_TRUE(shell->settings().isPresented());
    auto* settings = window().findChild<SettingsDialog*>();
    ASSERT_TRUE(settings && settings->isVisible());
    settings->findChild<QListWidget*>()->setCurrentRow(
        static_cast<int>(Provider::all().indexOf(Provider::echo())));
    EXPECT_EQ(preferences().providerIDStorage(), u"echo"_s);
    EXPECT_TRUE(view->startButton()->isEnabled());
    EXPECT_EQ(view->engineLine()->text(), preferences().engineConfiguration().summary());
    settings->accept();
    EXPECT_FALSE(shell->settings().isPresented());
}

// A machine where ffmpeg is nowhere to be found.
class MainWindowWithoutFfmpegTest : public AppWindowTest {
protected:
    MainWindowWithoutFfmpegTest()
        : AppWindowTest({}, [](const std::optional<QString>&) { return std::optional<FFmpeg>(); }) {
    }
};

TEST_F(MainWindowWithoutFfmpegTest, TheWarningShowsAndAVideoFailsToLoadWithIt) {
    const QString missing = u"No encuentro ffmpeg. Instalalo con «"_s +
                            PlatformText::installFfmpeg() + u"» o indicá su carpeta en Ajustes."_s;
    ASSERT_TRUE(QTest::qWaitFor([&] { return state().ffmpegStatus().has_value(); }, patience));
    EXPECT_FALSE(state().ffmpegReady());
    EXPECT_TRUE(window().ffmpegWarning()->isVisible());
    EXPECT_EQ(window().ffmpegWarning()->text(), missing);

    MediaFixtures::writeFile(work.path(u"Movie.mkv"_s), "whatever");
    ASSERT_TRUE(drop(window().dropZone(), {QUrl::fromLocalFile(work.path(u"Movie.mkv"_s))}));
    ASSERT_TRUE(reaches(Kind::failed));
    EXPECT_EQ(window().failureView()->message()->text(), missing);
    EXPECT_TRUE(window().ffmpegWarning()->isVisible());
}

TEST_F(MainWindowTest, WarningsAndRemovalsShowAndClosingDuringAJobLeavesNothing) {
    // Stripping takes the description and the speaker's label; a line that reads as a block
    // marker makes the engine's answer unusable for its cue, which stays in English with a
    // warning.
    preferences().setStripSDH(true);
    auto odd = track(u"eng"_s);
    odd.lines = {u"[DOOR SLAMS]"_s, u"JOHN: Hello there."_s, u"Wait\n#@#9#@#"_s,
                 u"Fine, thanks."_s};
    openReady(work.video(u"Movie.mkv"_s, {odd}));
    QTest::keyClick(&window(), Qt::Key_Return);
    ASSERT_TRUE(reaches(Kind::finished)) << state().phase().message().toStdString();
    ResultView* result = window().resultView();
    EXPECT_TRUE(result->removals()->isVisible());
    EXPECT_EQ(result->removals()->text(),
              u"Descripciones quitadas: "_s +
                  QString::number(state().result()->removedDescriptions));
    EXPECT_GE(state().result()->removedDescriptions, 2);
    const QStringList warnings = state().warnings();
    ASSERT_GE(warnings.size(), 2);
    EXPECT_TRUE(result->warningsPanel()->isVisible());
    QStringList texts;
    for (QLabel* label : result->warningsPanel()->findChildren<QLabel*>())
        texts << label->text();
    EXPECT_TRUE(texts.contains(QString::number(warnings.size()) + u" avisos"_s))
        << texts.join(u'|').toStdString();
    for (const QString& warning : warnings)
        EXPECT_TRUE(texts.contains(u"• "_s + warning)) << warning.toStdString();
    // The cue left in English is said outside the warnings too.
    EXPECT_TRUE(result->untranslated()->isVisible());
    EXPECT_EQ(result->untranslated()->text(),
              u"1 subtítulo quedó sin traducir, en el idioma original."_s);
    QFile::remove(work.path(u"Movie.es.mkv"_s));

    openReady(work.path(u"Movie.mkv"_s));
    QSignalSpy reports(&state(), &AppState::progressChanged);
    QTest::keyClick(&window(), Qt::Key_Return);
    ASSERT_TRUE(reports.wait(patience));
    const test::Answer quit(u"Salir"_s);
    window().close();
    EXPECT_EQ(state().phase().kind(), Kind::ready);
    ASSERT_TRUE(settles());
    EXPECT_EQ(work.entries(), QStringList{u"Movie.mkv"_s});
}

} // namespace
