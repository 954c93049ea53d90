#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include "VeltoKit/core/VeltoError.h"
#include "VeltoKit/engines/EchoBackend.h"
#include "VeltoKit/job/SidecarFile.h"
#include "VeltoKit/job/TranslationJob.h"
#include "VeltoKit/subtitles/SrtDocument.h"
#include "VeltoKit/subtitles/SubtitleError.h"
#include "support/MediaFixtures.h"
#include "support/ShellScripts.h"

using namespace velto;
using namespace Qt::StringLiterals;

namespace {

QStringList filesIn(const QString& folder) {
    return QDir(folder).entryList(QDir::Files | QDir::Hidden, QDir::Name);
}

} // namespace

TEST(Sidecar, AFileWhoseTimingsDriftedNeverTakesItsName) {
    const QTemporaryDir work, beside;
    const QByteArray text = MediaFixtures::srtText({u"One."_s, u"Two."_s});
    const QString drifted = work.filePath(u"es.srt"_s);
    MediaFixtures::writeFile(drifted, QByteArray(text).replace("00:00:01,400", "00:00:01,401"));

    EXPECT_THROW(SidecarFile(beside.filePath(u"Film.es.srt"_s), drifted,
                             SrtDocument::parse(QString::fromUtf8(text))),
                 SubtitleError);
    EXPECT_EQ(filesIn(beside.path()), QStringList());
}

TEST(Sidecar, AVideoThatFailsToWriteLeavesNoSubtitleFileEither) {
    const QTemporaryDir folder;
    const QString source = folder.filePath(u"Film.mkv"_s);
    MediaFixtures::writeVideo(source, {.subtitles = {{.language = u"eng"_s}}});
    FFmpeg tools = MediaFixtures::tools();
    QDir(folder.path()).mkpath(u"tools"_s);
    // The real ffmpeg, except that writing the video fails.
    tools.ffmpeg = writeShellScript(
        folder.filePath(u"tools/ffmpeg"_s),
        u"case \"$*\" in *\"-map 1:0\"*) echo 'Conversion failed!' >&2; exit 1;; esac\n"
        "exec '"_s +
            tools.ffmpeg + u"' \"$@\"\n"_s);
    JobOptions options;
    options.outputs = JobOutputs::videoAndSidecar;
    options.useCache = false;
    const TranslationJob job(tools, std::make_shared<EchoBackend>(), options, folder.path());

    try {
        job.run(source, {}, {});
        ADD_FAILURE() << "the job wrote its video";
    } catch (const VeltoError& error) {
        EXPECT_TRUE(error.description().contains(u"Conversion failed!"_s))
            << error.description().toStdString();
    }
    EXPECT_EQ(filesIn(folder.path()), QStringList{u"Film.mkv"_s});
}
