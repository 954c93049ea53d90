#include "VeltoKit/subtitles/StripSDH.h"

#include "SubtitleTestSupport.h"

using namespace velto;
using namespace Qt::StringLiterals;

TEST(StripSDH, RemovesDescriptionsLabelsAndMusicButKeepsWords) {
    const QString nothing = u"(nothing)"_s;
    const std::vector<std::tuple<QString, bool, QString>> cases = {
        {u"[MÚSICA]"_s, false, nothing},
        {u"<i>[suspira]</i>"_s, false, nothing},
        {u"<i><b> [x] </b></i>\nSí"_s, false, u"Sí"_s},
        {u"♪ ♪\nHola"_s, false, u"Hola"_s},
        {u"♪ la  la\t la ♪"_s, false, u"♪ la la la ♪"_s},
        {u"[a [b] c] Hola"_s, false, u"[a c] Hola"_s},
        {u"(ladra) ¡Quieto!"_s, false, u"(ladra) ¡Quieto!"_s},
        {u"(ladra) ¡Quieto!"_s, true, u"¡Quieto!"_s},
        // Speaker labels in capitals go; a dash stays only where two speakers share the cue.
        {u"JUAN: Hola"_s, false, u"Hola"_s},
        {u"- JUAN: Hola\n- PEDRO: Chau"_s, false, u"- Hola\n- Chau"_s},
        {u"—DR. ÑOÑO: Hola\nOtra"_s, false, u"- Hola\nOtra"_s},
        {u"– JUAN: Hola\nOtra"_s, false, u"Hola\nOtra"_s},
        {u"- Ya voy"_s, false, u"Ya voy"_s},
        {u"- [grita]\n- ¡No!"_s, false, u"¡No!"_s},
        {u"Juan: Hola"_s, false, u"Juan: Hola"_s},
        {u"ABCDEFGHIJKLMNOPQRSTUVWXYZ: Hola"_s, false, u"ABCDEFGHIJKLMNOPQRSTUVWXYZ: Hola"_s},
    };
    for (const auto& [text, stripParens, expected] : cases) {
        SCOPED_TRACE(text.toStdString());
        EXPECT_EQ(StripSDH::text(text, stripParens).value_or(nothing), expected);
    }
}

TEST(StripSDH, StripsAnSrtCopyCountsWhatLostSomethingAndNeverInventsATime) {
    const SrtDocument source =
        SrtDocument::parse(u"1\n00:00:01,000 --> 00:00:02,000\n[MÚSICA]\n\n"
                           u"2\n00:00:03,000 --> 00:00:04,000 X1:5\nJUAN: Hola\n\n"
                           u"3\n00:00:05,000 --> 00:00:06,000\n\n\n"
                           u"4\n00:00:07,000 --> 00:00:08,000\nSin  cambios\n\n"
                           u"5\n00:00:09,000 --> 00:00:10,000\n[risas] Bueno\n"_s);
    const StripSDH::Result result = StripSDH::apply(source, false);
    EXPECT_EQ(result.document->render(), u"2\n00:00:03,000 --> 00:00:04,000 X1:5\nHola\n\n"
                                         u"4\n00:00:07,000 --> 00:00:08,000\nSin cambios\n\n"
                                         u"5\n00:00:09,000 --> 00:00:10,000\nBueno\n\n"_s);
    EXPECT_EQ(result.removed, 3); // the empty cue 3 goes uncounted, the blanks of 4 too
    EXPECT_EQ(errorOf([&] { StripSDH::verifySubset(source, *result.document); }), u"(no error)"_s);

    const SrtDocument invented = SrtDocument::parse(u"2\n00:00:03,000 --> 00:00:04,001\nb\n"_s);
    EXPECT_EQ(errorOf([&] { StripSDH::verifySubset(source, invented); }),
              u"timingChanged: La versión sin descripciones inventó un tiempo que no existía en "
              u"el original: [\"2\", \"00:00:03,000\", \"00:00:04,001\", \"\"]"_s);
    const SrtDocument allSound =
        SrtDocument::parse(u"1\n00:00:01,000 --> 00:00:02,000\n(ruido)\n"_s);
    EXPECT_EQ(errorOf([&] { StripSDH::apply(allSound, true); }),
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

    const AssDocument onlyMusic =
        AssDocument::parse(assEvents + u"Dialogue: 0,0:00:01.00,0:00:02.00,D,,0,0,0,,♪ ♪\n"_s);
    EXPECT_EQ(errorOf([&] { StripSDH::apply(onlyMusic, false); }),
              u"empty: Al quitar las descripciones no quedó ningún diálogo."_s);
}
