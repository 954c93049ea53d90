#include "VeltoKit/translation/BlockProtocol.h"

#include <gtest/gtest.h>

#include "VeltoKit/engines/EchoBackend.h"
#include "VeltoKit/translation/SpanishVariant.h"
#include "VeltoKit/translation/Translator.h"
#include "support/QStringPrinter.h"

using namespace velto;
using namespace Qt::StringLiterals;

TEST(BlockProtocol, BuildsTextsVerbatimAndSplitsAnswersBackIntoNumberedBodies) {
    EXPECT_EQ(BlockProtocol::build({{12, u"Hola\nchau"_s}, {1, QString()}}),
              u"#@#12#@#\nHola\nchau\n#@#1#@#\n"_s);
    const std::vector<std::pair<QString, std::map<int, QString>>> answers = {
        {u"  #@#1#@#  \nuno\n\n#@#2#@#\ndos  \n"_s, {{1, u"uno"_s}, {2, u"dos"_s}}},
        // Leading indentation and inner blank lines are the text's; trailing Unicode spaces not.
        {u"#@#1#@#\n\n  uno\n\ndos\u00a0\u3000\n\n"_s, {{1, u"  uno\n\ndos"_s}}},
        {u"Acá van:\n#@#1#@#\nhola"_s, {{1, u"hola"_s}}},
        {u"#@#1#@#\nhola #@#3#@#\nchau"_s, {{1, u"hola #@#3#@#\nchau"_s}}},
        {u"#@#2#@#\nviejo\n#@#2#@#\nnuevo"_s, {{2, u"nuevo"_s}}},
        {u"Sin marcadores."_s, {}},
        // Windows and old Mac line ends mark lines too, and come back as "\n".
        {u"#@#1#@#\r\nHola\r\nchau\r\n#@#2#@#\r\n\r\nDos\r\n"_s,
         {{1, u"Hola\nchau"_s}, {2, u"Dos"_s}}},
        {u"#@#1#@#\rUno\r#@#2#@# \rDos\r"_s, {{1, u"Uno"_s}, {2, u"Dos"_s}}},
        // A number too big to parse still ends the block before it.
        {u"#@#1#@#\na\n#@#99999999999#@#\nb"_s, {{1, u"a"_s}}},
    };
    for (const auto& [answer, blocks] : answers)
        EXPECT_EQ(BlockProtocol::split(answer), blocks) << answer.toStdString();
}

// Raw values are what settings and the command line store: only the exact ones name a variant.
TEST(SpanishVariant, OnlyTheExactRawValuesNameAVariant) {
    EXPECT_EQ(spanishVariantFromRawValue(u"espana"), SpanishVariant::espana);
    for (QStringView raw : {u"españa", u"Neutro", u""})
        EXPECT_EQ(spanishVariantFromRawValue(raw), std::nullopt);
}

TEST(Prompts, TheSystemPromptNamesItsLanguageAndDialectAndRequestsTheirBlocks) {
    const auto translator = [](qint64 contextLines, SpanishVariant variant) {
        return Translator(std::make_shared<EchoBackend>(), u"japonés"_s, variant, 10, contextLines,
                          1, nullptr);
    };
    for (SpanishVariant variant : allSpanishVariants()) {
        const QString system = translator(0, variant).systemPrompt();
        EXPECT_TRUE(system.contains(u"Traducís del japonés al español."));
        EXPECT_TRUE(system.contains(u"\n- Registro: "_s + dialectDescription(variant) + u".\n"_s));
    }

    const QString context = u"CONTEXTO PREVIO (líneas anteriores en el idioma original; NO las "
                            u"traduzcas ni las incluyas en la respuesta, son solo para que "
                            u"entiendas la escena):\n"_s;
    const auto ask = [](int n) {
        return u"Traducí los siguientes %1 bloques. Devolvé los %1 bloques con sus marcadores "
               u"#@#N#@#, nada más.\n\nBLOQUES A TRADUCIR:\n"_s.arg(n);
    };
    const QStringList texts = {u"Hi."_s, u"- Who?\n- Me."_s, u"Run!"_s, u"Go."_s};
    const std::tuple<qint64, QList<qsizetype>, QString> rows[] = {
        {3, {1, 2}, context + u"Hi.\n\n"_s + ask(2) + u"#@#1#@#\n- Who?\n- Me.\n#@#2#@#\nRun!"_s},
        {2, {3}, context + u"- Who?\n- Me.\nRun!\n\n"_s + ask(1) + u"#@#1#@#\nGo."_s},
        {3, {0, 1}, ask(2) + u"#@#1#@#\nHi.\n#@#2#@#\n- Who?\n- Me."_s},
    };
    for (const auto& [contextLines, indices, prompt] : rows)
        EXPECT_EQ(translator(contextLines, SpanishVariant::neutro).prompt(texts, indices), prompt);
}
