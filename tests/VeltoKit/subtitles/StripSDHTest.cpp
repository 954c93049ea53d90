#include "VeltoKit/subtitles/StripSDH.h"

#include <gtest/gtest.h>

#include "SubtitleTestSupport.h"
#include "VeltoKit/subtitles/AssDocument.h"
#include "VeltoKit/subtitles/SrtDocument.h"

using namespace velto;
using namespace Qt::StringLiterals;

namespace {

QString stripped(const QString& text, bool parens = false) {
    return StripSDH::text(text, parens).value_or(u"(nothing)"_s);
}

const QString assEvents = u"[Events]\nFormat: Layer, Start, End, Style, Name, MarginL, MarginR, "
                          u"MarginV, Effect, Text\n"_s;

} // namespace

TEST(StripSDH, RemovesDescriptionsAndMusicButKeepsWords) {
    EXPECT_EQ(stripped(u"[MÚSICA]"_s), u"(nothing)"_s);
    EXPECT_EQ(stripped(u"<i>[suspira]</i>"_s), u"(nothing)"_s);
    EXPECT_EQ(stripped(u"<i><b> [x] </b></i>\nSí"_s), u"Sí"_s);
    EXPECT_EQ(stripped(u"♪ ♪\nHola"_s), u"Hola"_s);
    EXPECT_EQ(stripped(u"♪ la  la\t la ♪"_s), u"♪ la la la ♪"_s);
    EXPECT_EQ(stripped(u"[a [b] c] Hola"_s), u"[a c] Hola"_s);
    EXPECT_EQ(stripped(u"(ladra) ¡Quieto!"_s), u"(ladra) ¡Quieto!"_s);
    EXPECT_EQ(stripped(u"(ladra) ¡Quieto!"_s, true), u"¡Quieto!"_s);
}

TEST(StripSDH, DropsSpeakerLabelsAndLoneDashes) {
    EXPECT_EQ(stripped(u"JUAN: Hola"_s), u"Hola"_s);
    EXPECT_EQ(stripped(u"- JUAN: Hola\n- PEDRO: Chau"_s), u"- Hola\n- Chau"_s);
    EXPECT_EQ(stripped(u"—DR. ÑOÑO: Hola\nOtra"_s), u"- Hola\nOtra"_s);
    EXPECT_EQ(stripped(u"– JUAN: Hola\nOtra"_s), u"Hola\nOtra"_s);
    EXPECT_EQ(stripped(u"- Ya voy"_s), u"Ya voy"_s);
    EXPECT_EQ(stripped(u"- [grita]\n- ¡No!"_s), u"¡No!"_s);
    EXPECT_EQ(stripped(u"Juan: Hola"_s), u"Juan: Hola"_s);
    EXPECT_EQ(stripped(u"ABCDEFGHIJKLMNOPQRSTUVWXYZ: Hola"_s),
              u"ABCDEFGHIJKLMNOPQRSTUVWXYZ: Hola"_s);
}

TEST(StripSDH, StripsAnSrtCopyAndCountsWhatLostSomething) {
    const SrtDocument source =
        SrtDocument::parse(u"1\n00:00:01,000 --> 00:00:02,000\n[MÚSICA]\n\n"
                           u"2\n00:00:03,000 --> 00:00:04,000 X1:5\nJUAN: Hola\n\n"
                           u"3\n00:00:05,000 --> 00:00:06,000\n\n\n"
                           u"4\n00:00:07,000 --> 00:00:08,000\nSin  cambios\n\n"
                           u"5\n00:00:09,000 --> 00:00:10,000\n[risas] Bueno\n"_s);
    const QString before = source.render();
    const StripSDH::Result result = StripSDH::apply(source, false);
    EXPECT_EQ(result.document->render(), u"2\n00:00:03,000 --> 00:00:04,000 X1:5\nHola\n\n"
                                         u"4\n00:00:07,000 --> 00:00:08,000\nSin cambios\n\n"
                                         u"5\n00:00:09,000 --> 00:00:10,000\nBueno\n\n"_s);
    EXPECT_EQ(result.removed, 3); // the empty cue 3 goes uncounted, the blanks of 4 too
    EXPECT_EQ(source.render(), before);
    StripSDH::verifySubset(source, *result.document);

    const SrtDocument allSound =
        SrtDocument::parse(u"1\n00:00:01,000 --> 00:00:02,000\n(ruido)\n"_s);
    EXPECT_EQ(subtitleErrorOf([&] { StripSDH::apply(allSound, true); }),
              u"empty: Al quitar las descripciones no quedó ningún subtítulo: la pista era "
              u"íntegramente descriptiva."_s);
}

TEST(StripSDH, StripsAssDialoguesAroundTheirStyling) {
    const AssDocument source = AssDocument::parse(
        assEvents +
        u"Dialogue: 0,0:00:01.00,0:00:02.00,Default,,0,0,0,,{\\an8}[MUSIC PLAYING]\n"
        u"Comment: 0,0:00:01.00,0:00:02.00,Default,,0,0,0,,[kept: not a dialogue]\n"
        u"Dialogue: 0,0:00:03.00,0:00:04.00,Default,,0,0,0,,{\\i1}ANNA: Hi{\\i0}\\N(sighs)\n"
        u"Dialogue: 0,0:00:05.00,0:00:06.00,Default,,0,0,0,,{\\i1}[sighs]{\\i0}\n"
        u"Dialogue: 0,0:00:07.00,0:00:08.00,Default,,0,0,0,,- BEN: Yes\\N- ANNA: No\n"_s);
    const StripSDH::Result result = StripSDH::apply(source, true);
    EXPECT_EQ(result.document->render(),
              assEvents +
                  u"Comment: 0,0:00:01.00,0:00:02.00,Default,,0,0,0,,[kept: not a dialogue]\n"
                  u"Dialogue: 0,0:00:03.00,0:00:04.00,Default,,0,0,0,,{\\i1}Hi{\\i0}\n"
                  u"Dialogue: 0,0:00:07.00,0:00:08.00,Default,,0,0,0,,- Yes\\N- No\n"_s);
    EXPECT_EQ(result.removed, 4);
    StripSDH::verifySubset(source, *result.document);

    const AssDocument onlyMusic =
        AssDocument::parse(assEvents + u"Dialogue: 0,0:00:01.00,0:00:02.00,D,,0,0,0,,♪ ♪\n"_s);
    EXPECT_EQ(subtitleErrorOf([&] { StripSDH::apply(onlyMusic, false); }),
              u"empty: Al quitar las descripciones no quedó ningún diálogo."_s);
}

TEST(StripSDH, VerifySubsetRefusesAnInventedTime) {
    const SrtDocument full = SrtDocument::parse(u"1\n00:00:01,000 --> 00:00:02,000\na\n\n"
                                                u"2\n00:00:03,000 --> 00:00:04,000\nb\n"_s);
    StripSDH::verifySubset(full, SrtDocument());
    const SrtDocument invented = SrtDocument::parse(u"2\n00:00:03,000 --> 00:00:04,001\nb\n"_s);
    EXPECT_EQ(subtitleErrorOf([&] { StripSDH::verifySubset(full, invented); }),
              u"timingChanged: La versión sin descripciones inventó un tiempo que no existía en "
              u"el original: [\"2\", \"00:00:03,000\", \"00:00:04,001\", \"\"]"_s);
}
