#include "VeltoKit/subtitles/Subtitles.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include "SubtitleTestSupport.h"
#include "VeltoKit/subtitles/AssDocument.h"
#include "VeltoKit/subtitles/SrtDocument.h"
#include "VeltoKit/subtitles/SubtitleError.h"
#include "VeltoKit/subtitles/TextDecoder.h"

using namespace velto;
using namespace Qt::StringLiterals;

namespace {

const QByteArray oneCue = "1\n00:00:01,000 --> 00:00:02,000\nma\xC3\xB1"
                          "ana\n";
const QByteArray oneEvent =
    "[Events]\nFormat: Start, End, Text\nDialogue: 0:00:01.00,0:00:02.00,hola\n";

QString writeFile(const QTemporaryDir& dir, const QString& name, const QByteArray& bytes)
{
    const QString path = dir.filePath(name);
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
    return path;
}

SrtDocument cues(int count, const QString& lastEnd = u"00:00:09,000"_s)
{
    QList<SrtCue> list;
    for (int i = 1; i <= count; ++i)
        list.append({QString::number(i), u"00:00:01,000"_s,
                     i == count ? lastEnd : u"00:00:09,000"_s, QString(), u"x"_s});
    return SrtDocument(list);
}

QString timingError(const SubtitleDocument& a, const SubtitleDocument& b)
{
    try {
        Subtitles::verifyTiming(a, b);
    } catch (const SubtitleError& error) {
        EXPECT_EQ(error.kind(), SubtitleError::Kind::timingChanged);
        return error.description();
    }
    return u"(verified)"_s;
}

} // namespace

TEST(TextDecoder, TriesUtf8ThenWindows1252ThenLatin1AndDropsTheMark)
{
    EXPECT_EQ(TextDecoder::decode("\xEF\xBB\xBFma\xC3\xB1"
                                  "ana"),
              u"mañana"_s);
    EXPECT_EQ(TextDecoder::decode("ma\xF1"
                                  "ana"),
              u"mañana"_s);
    EXPECT_EQ(TextDecoder::decode("\x93\x85\x94 \x80 \x9C\x8C \x96\x97 \x92"), u"“…” € œŒ –— ’"_s);
    // 0x81 is undefined in Windows-1252, so the whole file is read as Latin-1: 0x80 is no euro.
    EXPECT_EQ(TextDecoder::decode("\x80\x81\xF1"), u"\u0080\u0081ñ"_s);
    EXPECT_EQ(TextDecoder::decode(QByteArray("\xFF\xFEh\0i\0", 6)), u"hi"_s);
    EXPECT_EQ(TextDecoder::decode(QByteArray("\xFE\xFF\0h\0i", 6)), u"hi"_s);
    EXPECT_FALSE(TextDecoder::utf8("ma\xC3"));
    EXPECT_FALSE(TextDecoder::windows1252("ok \x9D"));

    const QString text = Subtitles::readText(test::dataFile(u"windows-1252-punctuation.srt"_s));
    EXPECT_TRUE(text.contains(u"“No sé…” — dijo mañana."_s));
    EXPECT_TRUE(text.contains(u"5 € – œuvre, Œuvre, l’été."_s));
}

TEST(Subtitles, LoadPicksTheParserByCodecOrFileName)
{
    QTemporaryDir dir;
    const QString assAsSrt = writeFile(dir, u"x.srt"_s, oneEvent);
    const QString assUpper = writeFile(dir, u"x.ASS"_s, oneEvent);
    const QString srt = writeFile(dir, u"y.txt"_s, "\xEF\xBB\xBF" + oneCue);
    EXPECT_EQ(Subtitles::load(assAsSrt, u"SSA"_s)->kind(), u"ass"_s);
    EXPECT_EQ(Subtitles::load(assUpper, u"subrip"_s)->kind(), u"ass"_s);
    EXPECT_EQ(Subtitles::load(srt, u"mov_text"_s)->texts(), QStringList({u"mañana"_s}));
    try {
        Subtitles::load(assAsSrt, u"subrip"_s);
        ADD_FAILURE() << "an ASS script parsed as SRT";
    } catch (const SubtitleError& error) {
        EXPECT_EQ(error.description(), u"El archivo SRT no contiene ningún subtítulo legible."_s);
    }
}

TEST(Subtitles, ReadAndWriteFailuresNameTheFile)
{
    QTemporaryDir dir;
    try {
        Subtitles::readText(dir.filePath(u"falta.srt"_s));
        ADD_FAILURE() << "read a missing file";
    } catch (const FileError& error) {
        EXPECT_EQ(error.description(), u"No pude leer «falta.srt»: el archivo no existe."_s);
    }
    const SrtDocument document = cues(1);
    try {
        Subtitles::write(document, dir.filePath(u"no/existe/salida.srt"_s));
        ADD_FAILURE() << "wrote into a missing folder";
    } catch (const FileError& error) {
        EXPECT_EQ(error.description(), u"No pude guardar «salida.srt»: la carpeta no existe."_s);
    }
}

TEST(Subtitles, WritesUtf8WithoutAMarkReplacingTheFileWhole)
{
    QTemporaryDir dir;
    const QString path = writeFile(dir, u"out.srt"_s, QByteArray(4096, 'z'));
    const SrtDocument document = SrtDocument::parse(QString::fromUtf8(oneCue));
    Subtitles::write(document, path);
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), oneCue + "\n");
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files), QStringList({u"out.srt"_s}));
}

TEST(Subtitles, VerifyTimingNamesTheFirstDifferenceOnly)
{
    EXPECT_EQ(timingError(cues(10), cues(9)), u"Cambió la cantidad de eventos: 10 -> 9"_s);
    SrtDocument drifted = cues(3, u"00:00:09,001"_s);
    QList<SrtCue> later = drifted.cues();
    later.append(later.first());
    later.last().end = u"00:00:00,000"_s;
    drifted.setCues(later);
    QList<SrtCue> source = cues(3).cues();
    source.append(source.first());
    EXPECT_EQ(timingError(SrtDocument(source), drifted),
              u"Los tiempos cambiaron en el evento 3: [\"3\", \"00:00:01,000\", \"00:00:09,000\", "
              u"\"\"] -> [\"3\", \"00:00:01,000\", \"00:00:09,001\", \"\"]"_s);
    EXPECT_EQ(timingError(SrtDocument(), SrtDocument()), u"(verified)"_s);
    EXPECT_EQ(timingError(cues(4), cues(4)), u"(verified)"_s);
}
