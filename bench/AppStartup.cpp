// Launches the desktop app as the program does and reports, one "name value" line each:
//   shown_ms   time from launch to the main window first exposed on screen
//   rss_kb     resident memory after two seconds at rest
// With a video as argument it then translates it with the echo engine and reports
//   stall_ms   the longest gap between two ticks of a 10 ms timer on the GUI thread while the
//              job ran: how long the window could not answer.
// The launch time is VELTO_LAUNCHED_NS (CLOCK_REALTIME, set by the calling script just before
// exec, so loading the libraries counts), else the process start time from /proc.
#include <chrono>
#include <cstdio>
#include <fstream>
#include <string>

#include <QApplication>
#include <QElapsedTimer>
#include <QSettings>
#include <QTemporaryDir>
#include <QTimer>
#include <QWindow>

#include "VeltoMKV/AppShell.h"
#include "VeltoMKV/MainWindow.h"
#include "VeltoMKV/state/AppState.h"

namespace {

double millisecondsSinceLaunch() {
    using namespace std::chrono;
    const QByteArray launched = qgetenv("VELTO_LAUNCHED_NS");
    if (!launched.isEmpty()) {
        const auto now = duration_cast<nanoseconds>(system_clock::now().time_since_epoch());
        return (now.count() - launched.toLongLong()) / 1e6;
    }
    std::ifstream stat("/proc/self/stat");
    std::string field;
    for (int i = 0; i < 22 && stat >> field; ++i) {
    }
    std::ifstream uptime("/proc/uptime");
    double up = 0;
    uptime >> up;
    return (up - std::stod(field) / 100.0) * 1000.0;
}

long statusValue(const char* key) {
    std::ifstream status("/proc/self/status");
    std::string name;
    long value = 0;
    while (status >> name) {
        if (name == key) {
            status >> value;
            return value;
        }
        status.ignore(4096, '\n');
    }
    return -1;
}

// Reports the first exposure of the window it watches.
class ExposeWatch : public QObject {
public:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::Expose && !shown) {
            shown = true;
            std::printf("shown_ms %.1f\n", millisecondsSinceLaunch());
            std::fflush(stdout);
        }
        return QObject::eventFilter(watched, event);
    }
    bool shown = false;
};

} // namespace

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    velto::AppShell::configureApplication();
    // A fresh user's preferences, on the echo engine.
    const QTemporaryDir settings;
    velto::AppShell shell(
        std::make_unique<QSettings>(settings.filePath(QStringLiteral("VeltoMKV.ini")),
                                    QSettings::IniFormat),
        [](const QString&) { return QString(); });
    shell.preferences().setProviderIDStorage(QStringLiteral("echo"));
    // Every run does the whole work, and the user's cache is left alone.
    shell.preferences().setUseCache(false);
    ExposeWatch watch;
    shell.window().winId();
    shell.window().windowHandle()->installEventFilter(&watch);
    shell.show();

    const QStringList arguments = QApplication::arguments().mid(1);
    QElapsedTimer sinceTick;
    QTimer ticker;
    ticker.setInterval(10);
    qint64 worst = 0;
    QObject::connect(&ticker, &QTimer::timeout, &app,
                     [&] { worst = std::max(worst, sinceTick.restart()); });
    velto::AppState& state = shell.state();
    QObject::connect(&state, &velto::AppState::phaseChanged, &app, [&] {
        const auto kind = state.phase().kind();
        if (kind == velto::Phase::Kind::ready && !ticker.isActive()) {
            sinceTick.start();
            ticker.start();
            shell.window().startJob();
        } else if (kind == velto::Phase::Kind::finished || kind == velto::Phase::Kind::failed) {
            ticker.stop();
            std::printf("stall_ms %lld\n", static_cast<long long>(worst));
            if (kind == velto::Phase::Kind::failed)
                std::printf("failed %s\n", qPrintable(state.phase().message()));
            std::fflush(stdout);
            QApplication::quit();
        }
    });
    QTimer::singleShot(2000, &app, [&] {
        std::printf("rss_kb %ld\n", statusValue("VmRSS:"));
        std::fflush(stdout);
        if (arguments.isEmpty())
            QApplication::quit();
        else
            shell.window().openFile(arguments.first());
    });
    return QApplication::exec();
}
