#include "VeltoKit/subtitles/Subtitles.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "SubtitleTestSupport.h"
#include "VeltoKit/subtitles/TextDecoder.h"
#include "support/MediaFixtures.h"

using namespace velto;
using namespace Qt::StringLiterals;

namespace {

const QByteArray oneCue = "1\n00:00:01,000 --> 00:00:02,000\nma\u00f1ana\n";

SrtDocument withEnds(const QStringList& ends) {
    QList<SrtCue> cues;
    for (const QString& end : ends)
        cues.append({QString::number(cues.size() + 1), u"00:00:01,000"_s, end, {}, u"x"_s});
    return SrtDocument(cues);
}

} // namespace

TEST(TextDecoder, TriesUtf8ThenWindows1252ThenLatin1AndDropsTheMark) {
    EXPECT_EQ(TextDecoder::decode("\xEF\xBB\xBFma\u00f1ana"), u"mañana"_s);
    EXPECT_EQ(TextDecoder::decode("ma\361ana"), u"mañana"_s);
    EXPECT_EQ(TextDecoder::decode("\x93\x85\x94 \x80 \x9C\x8C \x96\x97 \x92"), u"“…” € œŒ –— ’"_s);
    // 0x81 is undefined in Windows-1252, so the whole file is read as Latin-1: 0x80 is no euro.
    EXPECT_EQ(TextDecoder::decode("\x80\x81\xF1"), u"\u0080\u0081ñ"_s);
    EXPECT_EQ(TextDecoder::decode(QByteArray("\xFF\xFEh\0i\0", 6)), u"hi"_s);
    EXPECT_EQ(TextDecoder::decode(QByteArray("\xFE\xFF\0h\0i", 6)), u"hi"_s);
}

TEST(Subtitles, LoadPicksTheParserByCodecOrFileName) {
    QTemporaryDir dir;
    const QString ass = dir.filePath(u"x.ASS"_s);
    ASSERT_TRUE(QFile::copy(testDataFile(u"five-field-format.ass"_s), ass));
    EXPECT_EQ(Subtitles::load(ass, u"subrip"_s)->kind(), u"ass"_s);
    const QString srt = testDataFile(u"three-digit-hours.srt"_s);
    EXPECT_EQ(Subtitles::load(srt, u"mov_text"_s)->kind(), u"srt"_s);
    EXPECT_EQ(errorOf([&] { Subtitles::load(srt, u"SSA"_s); }),
              u"empty: El archivo ASS no contiene líneas de diálogo."_s);
}

TEST(Subtitles, WritesUtf8WithoutAMarkAndNamesTheFileOnFailure) {
    QTemporaryDir dir;
    const QString path = dir.filePath(u"out.srt"_s);
    Subtitles::write(withEnds(QStringList(99, u"9"_s)), path); // replaced whole, never truncated
    Subtitles::write(SrtDocument::parse(QString::fromUtf8(oneCue)), path);
    EXPECT_EQ(MediaFixtures::readFile(path), oneCue + "\n");
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files), QStringList({u"out.srt"_s}));

    EXPECT_EQ(errorOf([&] { Subtitles::readText(dir.filePath(u"falta.srt"_s)); }),
              u"No pude leer «falta.srt»: el archivo no existe."_s);
    EXPECT_EQ(errorOf([&] { Subtitles::readText(dir.path()); }),
              u"No pude leer «"_s + QDir(dir.path()).dirName() +
                  u"»: es una carpeta, no un archivo."_s);
    EXPECT_EQ(
        errorOf([&] { Subtitles::write(withEnds({}), dir.filePath(u"no/hay/salida.srt"_s)); }),
        u"No pude guardar «salida.srt»: la carpeta no existe."_s);
}

TEST(Subtitles, VerifyTimingNamesTheFirstDifferenceOnly) {
    const auto timingError = [](const QStringList& a, const QStringList& b) {
        return errorOf([&] { Subtitles::verifyTiming(withEnds(a), withEnds(b)); });
    };
    const QString end = u"00:00:02,000"_s;
    EXPECT_EQ(timingError(QStringList(10, end), QStringList(9, end)),
              u"timingChanged: Cambió la cantidad de eventos: 10 -> 9"_s);
    EXPECT_EQ(timingError({end, end, end, end}, {end, end, u"00:00:02,5"_s, u"9"_s}),
              u"timingChanged: Los tiempos cambiaron en el evento 3: [\"3\", \"00:00:01,000\", "
              u"\"00:00:02,000\", \"\"] -> [\"3\", \"00:00:01,000\", \"00:00:02,5\", \"\"]"_s);
    EXPECT_EQ(timingError({}, {}), u"(no error)"_s);
    EXPECT_EQ(timingError({end, end}, {end, end}), u"(no error)"_s);
}
