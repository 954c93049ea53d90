// A season through the queue against the same videos one by one through the single-file state,
// and the memory the queue holds after each episode.
//   velto-queue-season make FOLDER   writes the ten episodes (one without subtitles, one already
//                                     in Spanish, one with image tracks only, one broken)
//   velto-queue-season [ROUNDS]      times both ways, alternating, and prints one line a round
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <sys/resource.h>

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QSettings>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTimer>

#include "VeltoKit/providers/Preferences.h"
#include "VeltoMKV/state/AppState.h"
#include "VeltoMKV/state/QueueState.h"
#include "VeltoMKV/state/VideoScan.h"
#include "support/MediaFixtures.h"

using namespace velto;
using namespace Qt::StringLiterals;
using Format = MediaFixtures::SubtitleFormat;

namespace {

constexpr int patience = 600'000;

// Runs the event loop until `condition` holds, handling each report the moment it arrives as
// the window's loop does (a polling wait would add its sleep to every step of both contenders);
// a run that hangs is no figure, so it ends the program.
template <typename Condition>
void waitFor(Condition condition) {
    QElapsedTimer clock;
    clock.start();
    // Wakes the loop now and then, so the deadline is seen even when nothing else comes.
    QTimer tick;
    tick.start(250);
    while (!condition()) {
        if (clock.elapsed() > patience) {
            std::fprintf(stderr, "gave up waiting\n");
            std::exit(1);
        }
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
}

MediaFixtures::SubtitleRecipe track(const QString& language, Format format = Format::srt) {
    QStringList lines;
    for (int i = 1; i <= 40; ++i)
        lines << u"Line number %1 of the episode."_s.arg(i);
    return {.format = format, .language = language, .lines = lines};
}

void makeSeason(const QString& folder) {
    QDir().mkpath(folder);
    for (int episode = 1; episode <= 10; ++episode) {
        const QString path = QDir(folder).filePath(u"Serie S01E%1.mkv"_s.arg(episode));
        QList<MediaFixtures::SubtitleRecipe> tracks = {track(u"eng"_s)};
        if (episode == 3)
            tracks.clear();
        if (episode == 5)
            tracks << track(u"spa"_s);
        if (episode == 7)
            tracks = {track(u"eng"_s, Format::pgs)};
        if (episode == 9)
            MediaFixtures::writeFile(path, "this is not a video");
        else
            MediaFixtures::writeVideo(path, {.subtitles = tracks});
    }
}

double residentMegabytes() {
    QFile status(u"/proc/self/statm"_s);
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    const QList<QByteArray> fields = status.readAll().split(' ');
    return fields.size() > 1 ? fields.at(1).toDouble() * 4096 / (1024.0 * 1024.0) : 0;
}

// User and system seconds of this process and of the tools it ran and waited for.
double cpuSeconds() {
    double total = 0;
    for (int who : {RUSAGE_SELF, RUSAGE_CHILDREN}) {
        rusage usage{};
        getrusage(who, &usage);
        total += static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
                 static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
    }
    return total;
}

void removeOutputs(const QString& folder) {
    for (const QString& name : QDir(folder).entryList({u"*.es.mkv"_s}, QDir::Files))
        QFile::remove(QDir(folder).filePath(name));
}

double singles(const QStringList& videos, const Preferences& preferences) {
    AppState state;
    QElapsedTimer clock;
    clock.start();
    for (const QString& video : videos) {
        state.load(video, preferences);
        waitFor([&] { return state.phase().kind() != Phase::Kind::inspecting; });
        if (state.phase().kind() != Phase::Kind::ready)
            continue;
        state.start(preferences);
        waitFor([&] { return !state.hasTask(); });
    }
    return static_cast<double>(clock.elapsed()) / 1000.0;
}

double queue(const QStringList& videos, const Preferences& preferences, QList<double>& memory) {
    QueueState queue;
    QObject::connect(&queue, &QueueState::rowChanged, &queue, [&](quint64 id) {
        if (queue.row(id)->state == QueueRow::State::done)
            memory << residentMegabytes();
    });
    QElapsedTimer clock;
    clock.start();
    queue.add(videos, preferences);
    queue.start(preferences);
    waitFor([&] { return !queue.isRunning(); });
    if (queue.summary().done != 6) {
        std::fprintf(stderr, "the queue ended with %s\n", qPrintable(queue.summary().text()));
        std::exit(1);
    }
    return static_cast<double>(clock.elapsed()) / 1000.0;
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    const QStringList arguments = QCoreApplication::arguments().mid(1);
    if (arguments.value(0) == u"make"_s && arguments.size() == 2) {
        makeSeason(arguments.at(1));
        return 0;
    }
    const int rounds = std::max(1, arguments.value(0, u"5"_s).toInt());
    QStandardPaths::setTestModeEnabled(true);
    const QTemporaryDir scratch;
    const QString folder = scratch.filePath(u"Temporada 1"_s);
    makeSeason(folder);
    const QStringList videos = VideoScan::videos({folder});
    Preferences preferences(
        std::make_unique<QSettings>(scratch.filePath(u"VeltoMKV.ini"_s), QSettings::IniFormat),
        [](const QString&) { return QString(); });
    preferences.setProviderIDStorage(u"echo"_s);
    preferences.setUseCache(false);

    std::printf("round  singles_s  queue_s  queue/singles  cpu_singles_s  cpu_queue_s  cpu_ratio  "
                "rss_mb_after_each_episode\n");
    for (int round = 1; round <= rounds; ++round) {
        // Which goes first alternates, so a build that starts beside the benchmark weighs on
        // both alike.
        double one = 0;
        double all = 0;
        double cpuOne = 0;
        double cpuAll = 0;
        QList<double> memory;
        for (int leg = 0; leg < 2; ++leg) {
            const double before = cpuSeconds();
            if ((leg + round) % 2 == 0) {
                one = singles(videos, preferences);
                cpuOne = cpuSeconds() - before;
            } else {
                all = queue(videos, preferences, memory);
                cpuAll = cpuSeconds() - before;
            }
            removeOutputs(folder);
        }
        QStringList megabytes;
        for (double value : memory)
            megabytes << QString::number(value, 'f', 1);
        std::printf("%5d  %9.2f  %7.2f  %13.3f  %13.2f  %11.2f  %9.3f  %s\n", round, one, all,
                    all / one, cpuOne, cpuAll, cpuAll / cpuOne, qPrintable(megabytes.join(u' ')));
        std::fflush(stdout);
    }
    return 0;
}
