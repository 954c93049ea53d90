#include <QDir>

#include <gtest/gtest.h>

#include "CliHome.h"

using namespace Qt::StringLiterals;
using namespace velto;
using namespace velto::test;
using MediaFixtures::SubtitleFormat;

namespace {

// What fixes when each cue shows, as written: SRT's arrow lines, ASS's fields before the text.
QByteArrayList timingLines(const QString& file) {
    QByteArrayList timings;
    for (const QByteArray& line : MediaFixtures::readFile(file).split('\n')) {
        if (line.contains("-->"))
            timings.append(line);
        else if (line.startsWith("Dialogue:"))
            timings.append(QString::fromUtf8(line).section(u',', 0, 8).toUtf8());
    }
    return timings;
}

using CliSidecarTest = CliHome;

} // namespace

// Each folder already holds a subtitle file of that name: it is replaced, and the run says so.
TEST_F(CliSidecarTest, WritesSubtitleFilesWithTheSourceTracksTimingsByteForByte) {
    struct Case {
        QString video;
        SubtitleFormat format;
        QString flag;
        QStringList written; // the subtitle file last
    };
    const QString both = u"--sidecar"_s, only = u"--sidecar-only"_s;
    constexpr SubtitleFormat srt = SubtitleFormat::srt;
    const Case cases[] = {
        {u"a/F.mkv"_s, srt, both, {u"F.es.mkv"_s, u"F.es.srt"_s}},
        {u"b/F.mp4"_s, srt, both, {u"F.es.mp4"_s, u"F.es.srt"_s}},
        {u"c/F.webm"_s, srt, both, {u"F.es.mkv"_s, u"F.es.srt"_s}},
        {u"d/F.mkv"_s, srt, only, {u"F.es.srt"_s}},
        {u"e/F.mp4"_s, srt, only, {u"F.es.srt"_s}},
        {u"f/F.webm"_s, srt, only, {u"F.es.srt"_s}},
        {u"g/F.mkv"_s, SubtitleFormat::ass, only, {u"F.es.ass"_s}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.video.toStdString() + ' ' + c.flag.toStdString());
        const QString source = path(c.video);
        QDir(m_root.path()).mkpath(QFileInfo(c.video).path());
        MediaFixtures::writeVideo(source,
                                  {.subtitles = {{.format = c.format, .language = u"eng"_s}}});
        const QDir folder = QFileInfo(source).dir();
        const QString sidecar = folder.filePath(c.written.last());
        MediaFixtures::writeFile(sidecar, "viejo\n");
        const CliOutcome run =
            this->run({u"--provider"_s, u"echo"_s, u"--no-cache"_s, u"--json"_s, c.flag, source});
        ASSERT_EQ(run.status, 0) << run.err.toStdString();
        EXPECT_TRUE(run.out.contains(u"Ya existía «"_s + sidecar + u"»: lo reemplacé"_s));
        EXPECT_TRUE(run.out.contains(u"\"sidecar\":\""_s + sidecar + u'"'))
            << run.out.toStdString();
        // Nothing else, hidden leftovers included.
        QStringList expected = QStringList{QFileInfo(source).fileName()} + c.written;
        expected.sort();
        EXPECT_EQ(folder.entryList(QDir::Files | QDir::Hidden, QDir::Name), expected);
        EXPECT_TRUE(MediaFixtures::readFile(sidecar).contains("[ES] "));

        const QString reference = path(u"reference."_s + QFileInfo(sidecar).suffix());
        QProcess::execute(u"ffmpeg"_s, {u"-v"_s, u"error"_s, u"-y"_s, u"-i"_s, source, u"-map"_s,
                                        u"0:s:0"_s, reference});
        EXPECT_EQ(timingLines(sidecar), timingLines(reference));
        EXPECT_EQ(timingLines(reference).size(), 3);
    }
}
