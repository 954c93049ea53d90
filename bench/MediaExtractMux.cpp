// Extracts the English text track of a video and muxes it back as a new track, the way a
// job does, and prints how long the two steps took. Used by media-extract-mux.sh.
#include <chrono>
#include <cstdio>

#include <QCoreApplication>
#include <QDir>
#include <QStringList>

#include "VeltoKit/core/VeltoError.h"
#include "VeltoKit/media/FFmpeg.h"
#include "VeltoKit/media/ShellError.h"

using namespace velto;

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    const QStringList arguments = app.arguments();
    if (arguments.size() != 4) {
        std::fprintf(stderr, "usage: %s SOURCE WORK_DIRECTORY OUTPUT\n", argv[0]);
        return 2;
    }
    const QString& source = arguments[1];
    const QString& directory = arguments[2];
    const QString& output = arguments[3];
    try {
        const auto tools = FFmpeg::locate();
        if (!tools)
            throw ShellError::notFound(QStringLiteral("ffmpeg"));
        const MediaInfo info = tools->inspect(source);
        const auto track = info.pickSource(QStringLiteral("eng"));
        if (!track)
            throw VeltoError(QStringLiteral("No hay una pista de texto en inglés."));

        using Clock = std::chrono::steady_clock;
        const auto start = Clock::now();
        const QString subtitle = tools->extract(*track, source, directory);
        const auto extracted = Clock::now();
        MuxOptions options;
        options.title = QStringLiteral("Español");
        options.makeDefault = true;
        tools->mux(source, subtitle, output, info.tracks.size(), options);
        const auto muxed = Clock::now();

        const auto seconds = [](Clock::duration d) {
            return std::chrono::duration<double>(d).count();
        };
        std::printf("%.3f %.3f\n", seconds(extracted - start), seconds(muxed - extracted));
        return 0;
    } catch (const VeltoError& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
