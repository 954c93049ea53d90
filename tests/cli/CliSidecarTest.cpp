#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>

#include <gtest/gtest.h>

#include "CliHome.h"

using namespace Qt::StringLiterals;
using namespace velto;
using namespace velto::test;
using MediaFixtures::SubtitleFormat;

namespace {

// What fixes when each cue shows, as written: SRT's arrow lines, ASS's fields before the text.
QStringList timingLines(const QString& file) {
    QStringList timings;
    for (const QByteArray& line : MediaFixtures::readFile(file).split('\n')) {
        if (line.contains("-->"))
            timings.append(QString::fromUtf8(line));
        else if (line.startsWith("Dialogue:"))
            timings.append(QString::fromUtf8(line).section(u',', 0, 8));
    }
    return timings;
}

QJsonObject resultOf(const CliOutcome& run) {
    for (const QString& line : run.out.split(u'\n', Qt::SkipEmptyParts)) {
        const QJsonObject event = QJsonDocument::fromJson(line.toUtf8()).object();
        if (event[u"type"] == u"result"_s)
            return event;
    }
    return {};
}

class CliSidecarTest : public CliHome {
protected:
    QString video(const QString& name, SubtitleFormat format = SubtitleFormat::srt) {
        QDir(m_root.path()).mkpath(QFileInfo(name).path());
        MediaFixtures::writeVideo(path(name),
                                  {.subtitles = {{.format = format, .language = u"eng"_s}}});
        return path(name);
    }

    CliOutcome echo(const QStringList& arguments) {
        return run(QStringList{u"--provider"_s, u"echo"_s, u"--no-cache"_s} + arguments);
    }
};

} // namespace

TEST_F(CliSidecarTest, WritesSubtitleFilesWithTheSourceTracksTimingsByteForByte) {
    struct Case {
        QString video;
        SubtitleFormat format;
        QString flag;
        QStringList written; // besides the video, sorted
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
        const QString source = video(c.video, c.format);
        const CliOutcome run = echo({u"--json"_s, c.flag, source});
        ASSERT_EQ(run.status, 0) << run.err.toStdString();
        const QDir folder = QFileInfo(source).dir();
        const QString sidecar = folder.filePath(c.written.last());
        EXPECT_EQ(resultOf(run)[u"sidecar"].toString(), sidecar);
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

TEST_F(CliSidecarTest, SaysWhenItReplacesASubtitleFileAndRefusesAFolderItCannotWrite) {
    const QString source = video(u"Film.mkv"_s);
    MediaFixtures::writeFile(path(u"Film.es.srt"_s), "viejo\n");
    const CliOutcome replaced = echo({u"--sidecar-only"_s, source});
    ASSERT_EQ(replaced.status, 0) << replaced.err.toStdString();
    EXPECT_TRUE(replaced.out.contains(u"Ya existía «"_s + path(u"Film.es.srt"_s) +
                                      u"»: lo reemplacé por el nuevo."_s))
        << replaced.out.toStdString();
    EXPECT_TRUE(MediaFixtures::readFile(path(u"Film.es.srt"_s)).contains("[ES] "));

    // Root writes everywhere, so only others can meet a read-only folder.
    if (::geteuid() == 0)
        return;
    const QString locked = video(u"locked/Film.mkv"_s);
    QFile::setPermissions(path(u"locked"_s), QFile::ReadOwner | QFile::ExeOwner);
    const CliOutcome refused = echo({u"--sidecar-only"_s, locked});
    QFile::setPermissions(path(u"locked"_s),
                          QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    EXPECT_EQ(refused.status, 1);
    EXPECT_TRUE(refused.err.contains(u"El subtítulo va siempre junto al video original"_s))
        << refused.err.toStdString();
    EXPECT_EQ(QDir(path(u"locked"_s)).entryList(QDir::Files | QDir::Hidden),
              QStringList{u"Film.mkv"_s});
}
