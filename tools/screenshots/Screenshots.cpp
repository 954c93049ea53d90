// Draws the main window and the settings in each phase a user meets, on whatever platform Qt
// runs on (offscreen from scripts/screenshots), for a person to look at. Not part of the suite:
// the tests check behaviour, this only produces pictures.
// Usage: veltomkv-screenshots VIDEO OUT_FOLDER [--dark]
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QListWidget>
#include <QPalette>
#include <QSettings>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <QToolButton>

#include "VeltoMKV/AppShell.h"
#include "VeltoMKV/EstimateLine.h"
#include "VeltoMKV/JobView.h"
#include "VeltoMKV/MainWindow.h"
#include "VeltoMKV/NamesPanel.h"
#include "VeltoMKV/QueueView.h"
#include "VeltoMKV/SettingsDialog.h"
#include "VeltoMKV/SettingsPresenter.h"
#include "VeltoMKV/state/AppState.h"
#include "VeltoMKV/state/NameList.h"
#include "VeltoMKV/state/QueueState.h"
#ifdef VELTO_SCREENSHOT_SERVER
#include "support/ChatCompletionsServer.h"
#endif

using namespace velto;
using namespace Qt::StringLiterals;

namespace {

constexpr int patience = 60'000;

// A dark palette as a dark desktop theme gives it, to see that every text stays readable.
QPalette darkPalette() {
    QPalette dark;
    const QColor text(0xe8, 0xe8, 0xea), disabled(0x80, 0x80, 0x86);
    dark.setColor(QPalette::Window, QColor(0x2b, 0x2b, 0x2e));
    dark.setColor(QPalette::Base, QColor(0x1f, 0x1f, 0x22));
    dark.setColor(QPalette::AlternateBase, QColor(0x34, 0x34, 0x38));
    dark.setColor(QPalette::Button, QColor(0x3a, 0x3a, 0x3e));
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        dark.setColor(role, text);
        dark.setColor(QPalette::Disabled, role, disabled);
    }
    dark.setColor(QPalette::Highlight, QColor(0x3d, 0x7e, 0xe0));
    dark.setColor(QPalette::HighlightedText, Qt::white);
    dark.setColor(QPalette::Link, QColor(0x7a, 0xb0, 0xff));
    dark.setColor(QPalette::Mid, QColor(0x5a, 0x5a, 0x60));
    dark.setColor(QPalette::PlaceholderText, QColor(0x9a, 0x9a, 0xa2));
    return dark;
}

class Camera {
public:
    Camera(QString folder, QString suffix)
        : m_folder(std::move(folder))
        , m_suffix(std::move(suffix)) {}

    // Saves `widget` as "<name>-<suffix>.png"; false when it could not be written.
    bool take(QWidget& widget, const QString& name) {
        QApplication::processEvents();
        const QString scale = QString::number(qRound(widget.devicePixelRatioF() * 100));
        const QString file = m_folder + u'/' + name + u'-' + m_suffix + scale + u".png"_s;
        const bool saved = widget.grab().save(file);
        qInfo("%s %s", saved ? "escrita" : "NO SE PUDO ESCRIBIR", qPrintable(file));
        m_ok = m_ok && saved;
        return saved;
    }
    bool ok() const { return m_ok; }

private:
    QString m_folder, m_suffix;
    bool m_ok = true;
};

} // namespace

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    AppShell::configureApplication();
    const QStringList arguments = app.arguments().mid(1);
    if (arguments.size() < 2) {
        qCritical("Uso: veltomkv-screenshots VIDEO CARPETA [--dark]");
        return 2;
    }
    const bool dark = arguments.contains(u"--dark"_s);
    if (dark)
        QApplication::setPalette(darkPalette());
    QStandardPaths::setTestModeEnabled(true);
    QDir().mkpath(arguments[1]);
    Camera camera(arguments[1], dark ? u"dark-"_s : QString());

    const QTemporaryDir settings;
    AppShell shell(
        std::make_unique<QSettings>(settings.filePath(u"VeltoMKV.ini"_s), QSettings::IniFormat),
        [](const QString&) { return QString(); });
    shell.preferences().setProviderIDStorage(u"echo"_s);
    shell.preferences().setUseCache(false);
    shell.show();
    MainWindow& window = shell.window();
    AppState& state = shell.state();
    const auto reaches = [&](Phase::Kind kind) {
        return QTest::qWaitFor([&] { return state.phase().kind() == kind; }, patience);
    };
    // A picture taken too early shows an empty window; the run goes on and the picture says so.
    (void)QTest::qWaitForWindowExposed(&window);
    (void)QTest::qWaitFor([&] { return state.ffmpegStatus().has_value(); }, patience);
    camera.take(window, u"main-idle"_s);

    window.openFile(arguments[0]);
    if (!reaches(Phase::Kind::ready)) {
        qCritical("%s", qPrintable(state.phase().message()));
        return 1;
    }
    const auto estimated = [&] {
        return QTest::qWaitFor(
            [&] {
                const QString line = window.jobView()->findChild<EstimateLine*>()->text()->text();
                return !line.isEmpty() && !line.startsWith(u"Calculando"_s);
            },
            patience);
    };
    (void)estimated();
    camera.take(window, u"main-ready"_s);
    window.jobView()->optionsDisclosure()->click();
    camera.take(window, u"main-ready-options"_s);
    window.jobView()->optionsDisclosure()->click();
    if (auto* names = window.findChild<NamesPanel*>()) {
        (void)QTest::qWaitFor([&] { return !names->list().isSearching(); }, patience);
        // The sample names only Mara; a season's list holds more, some of them translated.
        const QList<std::pair<QString, QString>> season = {
            {u"Grandma"_s, u"la abuela"_s}, {u"Hollow Creek"_s, {}}, {u"Mr. Abernathy"_s, {}}};
        for (const auto& [term, rendering] : season)
            names->list().add(term, rendering);
        camera.take(window, u"main-ready-names-folded"_s);
        names->disclosure()->click();
        QCoreApplication::processEvents();
        camera.take(window, u"main-ready-names"_s);
        names->disclosure()->click();
        for (const auto& [term, rendering] : season)
            names->list().remove(term);
        QFile::remove(names->list().filePath().value_or(QString()));
    }

    bool working = false;
    QObject::connect(&state, &AppState::progressChanged, &window, [&] {
        if (!working && state.phase().kind() == Phase::Kind::working)
            working = camera.take(window, u"main-working"_s);
    });
    window.startJob();
    if (reaches(Phase::Kind::finished))
        camera.take(window, u"main-finished"_s);
    QFile::remove(state.result() ? state.result()->outputURL : QString());

    // The same with a subtitle file beside the video, then alone: the choice, what was written.
    for (const JobOutputs outputs : {JobOutputs::videoAndSidecar, JobOutputs::sidecarOnly}) {
        const QString name = outputs == JobOutputs::sidecarOnly ? u"sidecar-only"_s : u"sidecar"_s;
        shell.preferences().setOutputs(outputs);
        state.reset();
        window.openFile(arguments[0]);
        if (!reaches(Phase::Kind::ready))
            continue;
        camera.take(window, u"main-ready-"_s + name);
        window.jobView()->optionsDisclosure()->click();
        camera.take(window, u"main-ready-"_s + name + u"-options"_s);
        window.jobView()->optionsDisclosure()->click();
        window.startJob();
        if (reaches(Phase::Kind::finished))
            camera.take(window, u"main-finished-"_s + name);
        if (state.result()) {
            QFile::remove(state.result()->outputURL);
            QFile::remove(state.result()->sidecarURL.value_or(QString()));
        }
    }
    shell.preferences().setOutputs(JobOutputs::video);

    // Back to the ready page: the settings over it, then an engine that cannot run.
    state.reset();
    window.openFile(arguments[0]);
    if (reaches(Phase::Kind::ready)) {
        shell.settings().present();
        if (auto* dialog = window.findChild<SettingsDialog*>()) {
            for (const Provider& provider :
                 {Provider::local(), Provider::openAI(), Provider::claudeCLI()}) {
                dialog->findChild<QListWidget*>()->setCurrentRow(
                    static_cast<int>(Provider::all().indexOf(provider)));
                camera.take(*dialog, u"settings-"_s + provider.id);
            }
            shell.settings().setPresented(false);
        }
        shell.preferences().setProviderIDStorage(u"anthropic"_s);
        camera.take(window, u"main-ready-no-engine"_s);
    }

#ifdef VELTO_SCREENSHOT_SERVER
    // A server that bills, at a price of the user's: the estimate before, the cost after.
    const test::ChatCompletionsServer server({.key = {}, .reportUsage = true});
    Preferences& preferences = shell.preferences();
    preferences.setProviderIDStorage(Provider::local().id);
    preferences.setBaseURL(server.baseUrl(), Provider::local());
    preferences.setModel(u"modelo-a"_s, Provider::local());
    preferences.setUserPrice(Provider::local(), u"modelo-a"_s, TokenPrice{3, 15});
    state.reset();
    window.openFile(arguments[0]);
    if (reaches(Phase::Kind::ready)) {
        (void)estimated();
        camera.take(window, u"main-ready-estimate"_s);
        window.startJob();
        if (reaches(Phase::Kind::finished))
            camera.take(window, u"main-finished-cost"_s);
        QFile::remove(state.result() ? state.result()->outputURL : QString());
    }
#endif

    // A file that is no video.
    const QString notAVideo = settings.filePath(u"Notas.mkv"_s);
    QFile note(notAVideo);
    if (note.open(QIODevice::WriteOnly))
        note.write(QByteArray(4096, '\x7f'));
    note.close();
    window.openFile(notAVideo);
    if (reaches(Phase::Kind::failed))
        camera.take(window, u"main-failed"_s);
    else
        qCritical("%s", qPrintable(state.phase().message()));

    // A folder of episodes: copies of the video, and one that is no video.
    const QTemporaryDir scratch;
    const QDir season(scratch.filePath(u"Temporada 1"_s));
    season.mkpath(u"."_s);
    for (int episode = 1; episode <= 3; ++episode)
        QFile::copy(arguments[0], season.filePath(u"Capítulo %1.mkv"_s.arg(episode)));
    QFile::copy(notAVideo, season.filePath(u"Capítulo 4.mkv"_s));
    shell.preferences().setProviderIDStorage(u"echo"_s);
    state.reset();
    window.openFiles({season.path()});
    QueueState& queue = window.queueState();
    (void)QTest::qWaitFor([&] { return queue.backgroundTasks() == 0 && queue.runnable() == 3; },
                          patience);
    camera.take(window, u"queue-ready"_s);
    bool running = false;
    QObject::connect(&queue, &QueueState::rowChanged, &window, [&](quint64 id) {
        const QueueRow* row = queue.row(id);
        if (!running && row && row->state == QueueRow::State::translating &&
            row->progress.translation)
            running = camera.take(window, u"queue-running"_s);
    });
    window.queueView()->start();
    (void)QTest::qWaitFor([&] { return !queue.isRunning(); }, patience);
    camera.take(window, u"queue-finished"_s);
    return camera.ok() ? 0 : 1;
}
