#include "VeltoKit/translation/BlockProtocol.h"

#include <gtest/gtest.h>

#include "VeltoKit/translation/SpanishVariant.h"
#include "support/QStringPrinter.h"

using namespace velto;

using Blocks = std::map<int, QString>;

TEST(BlockProtocol, BuildPutsEachTextVerbatimUnderItsMarker) {
    EXPECT_EQ(BlockProtocol::marker(12), QStringLiteral("#@#12#@#"));
    EXPECT_EQ(BlockProtocol::build({{1, QStringLiteral("Hola\nchau")}}),
              QStringLiteral("#@#1#@#\nHola\nchau"));
    EXPECT_EQ(BlockProtocol::build({{2, QStringLiteral("<i>a</i>")}, {1, QString()}}),
              QStringLiteral("#@#2#@#\n<i>a</i>\n#@#1#@#\n"));
}

TEST(BlockProtocol, SplitTrimsBodiesAndToleratesPaddedMarkers) {
    EXPECT_EQ(BlockProtocol::split(QStringLiteral("  #@#1#@#  \nuno\n\n#@#2#@#\ndos  \n")),
              (Blocks{{1, QStringLiteral("uno")}, {2, QStringLiteral("dos")}}));
    // Leading indentation and inner blank lines are the text's; trailing Unicode spaces are not.
    EXPECT_EQ(BlockProtocol::split(QStringLiteral("#@#1#@#\n\n  uno\n\ndos\u00a0\u3000\n\n")),
              (Blocks{{1, QStringLiteral("  uno\n\ndos")}}));
}

TEST(BlockProtocol, SplitIgnoresPreamblesAndInlineMarkersAndKeepsTheLastRepeat) {
    EXPECT_EQ(BlockProtocol::split(QStringLiteral("Acá van:\n#@#1#@#\nhola")),
              (Blocks{{1, QStringLiteral("hola")}}));
    EXPECT_EQ(BlockProtocol::split(QStringLiteral("#@#1#@#\nhola #@#3#@#\nchau")),
              (Blocks{{1, QStringLiteral("hola #@#3#@#\nchau")}}));
    EXPECT_EQ(BlockProtocol::split(QStringLiteral("#@#2#@#\nviejo\n#@#2#@#\nnuevo")),
              (Blocks{{2, QStringLiteral("nuevo")}}));
    EXPECT_EQ(BlockProtocol::split(QStringLiteral("Sin marcadores.")), Blocks{});
    // A number too big to parse still ends the block before it.
    EXPECT_EQ(BlockProtocol::split(QStringLiteral("#@#1#@#\na\n#@#99999999999#@#\nb")),
              (Blocks{{1, QStringLiteral("a")}}));
}

TEST(SpanishVariant, RawValuesRoundTripAndNothingElseNamesAVariant) {
    QStringList raws;
    for (SpanishVariant variant : allSpanishVariants()) {
        raws.append(rawValue(variant));
        EXPECT_EQ(spanishVariantFromRawValue(rawValue(variant)), variant);
    }
    EXPECT_EQ(raws, (QStringList{QStringLiteral("neutro"), QStringLiteral("rioplatense"),
                                 QStringLiteral("latino"), QStringLiteral("espana")}));
    EXPECT_EQ(spanishVariantFromRawValue(u"españa"), std::nullopt);
    EXPECT_EQ(spanishVariantFromRawValue(u"Neutro"), std::nullopt);
    EXPECT_EQ(spanishVariantFromRawValue(u""), std::nullopt);
    EXPECT_EQ(label(SpanishVariant::neutro), QStringLiteral("Neutro (recomendado)"));
    EXPECT_EQ(label(SpanishVariant::espana), QStringLiteral("España"));
    EXPECT_TRUE(dialectDescription(SpanishVariant::rioplatense).contains(u"«vos tenés»"));
}
