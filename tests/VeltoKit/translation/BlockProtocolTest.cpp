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

// The wording of the prompts is the translator's own; what a test can hold it to is which
// texts go where: the previous lines as context, the asked ones as blocks, the language named.
TEST(Prompts, QuoteOnlyTheLinesBeforeTheBatchAsContextAndAskForTheBatchAsBlocks) {
    const QStringList texts = {u"Hi."_s, u"- Who?\n- Me."_s, u"Run!"_s, u"Go."_s};
    const std::tuple<qint64, QList<qsizetype>, QList<qsizetype>> rows[] = {
        {3, {1, 2}, {0}}, {2, {3}, {1, 2}}, {1, {3}, {2}}, {3, {0, 1}, {}}};
    for (const auto& [contextLines, indices, context] : rows) {
        const Translator translator(std::make_shared<EchoBackend>(), u"japonés"_s,
                                    SpanishVariant::neutro, 10, contextLines, 1, nullptr);
        EXPECT_TRUE(translator.systemPrompt().contains(u"japonés"_s));
        const QString prompt = translator.prompt(texts, indices);
        const qsizetype header = prompt.lastIndexOf(BlockProtocol::header());
        std::vector<std::pair<int, QString>> blocks;
        for (qsizetype index : indices)
            blocks.emplace_back(static_cast<int>(blocks.size() + 1), texts[index]);
        EXPECT_EQ(BlockProtocol::split(prompt.sliced(header)),
                  (std::map<int, QString>(blocks.begin(), blocks.end())));
        for (qsizetype i = 0; i < texts.size(); ++i) {
            if (indices.contains(i))
                continue;
            EXPECT_EQ(prompt.first(header).contains(texts[i]), context.contains(i))
                << contextLines << ' ' << i;
        }
    }
}
