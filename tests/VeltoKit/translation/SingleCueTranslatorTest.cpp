#include "VeltoKit/translation/SingleCueTranslator.h"

#include <atomic>

#include <gtest/gtest.h>

#include "VeltoKit/translation/BlockProtocol.h"
#include "VeltoKit/translation/TranslationBackend.h"
#include "VeltoKit/translation/TranslationError.h"
#include "VeltoKit/translation/Translator.h"

using namespace velto;
using namespace Qt::StringLiterals;

namespace {

// Answers each request by the one text in it: whole, with a block too many, without its
// placeholder, with a passing failure, or with a fatal one.
class Scripted : public TranslationBackend {
public:
    QString label() const override { return u"guion"_s; }
    QString complete(const QString&, const QString& prompt, std::stop_token) const override {
        ++calls;
        const qsizetype header = prompt.lastIndexOf(BlockProtocol::header());
        prompts.append(prompt);
        const QString text = BlockProtocol::split(prompt.sliced(header)).at(1);
        if (text == u"dos"_s)
            return BlockProtocol::build({{1, u"two"_s}, {2, u"de más"_s}});
        if (text == u"⟪1⟫tres"_s)
            return BlockProtocol::build({{1, u"three"_s}});
        if (text == u"cuatro"_s)
            throw TranslationError::transient(u"se cortó"_s);
        if (text == u"cinco"_s)
            throw TranslationError::fatal(u"clave rechazada"_s);
        return BlockProtocol::build({{1, text.toUpper()}});
    }

    mutable std::atomic<int> calls = 0;
    mutable QStringList prompts;
};

} // namespace

TEST(SingleCueTranslator, KeepsOnlyWholeAnswersAndStopsQuietlyAtAFatalError) {
    const auto engine = std::make_shared<Scripted>();
    const Translator translator(engine, u"inglés"_s, SpanishVariant::neutro, 40, 1, 1, nullptr);
    const QStringList texts = {u"uno"_s,    u"dos"_s,   u"⟪1⟫tres"_s,
                               u"cuatro"_s, u"cinco"_s, u"seis"_s};
    QList<qint64> progress;
    const QList<std::optional<QString>> answers =
        SingleCueTranslator(translator, engine, 1)
            .translate(texts, {0, 1, 2, 3, 4, 5}, [&](qint64 asked) { progress.append(asked); },
                       {});

    EXPECT_EQ(answers, (QList<std::optional<QString>>{u"UNO"_s, {}, {}, {}, {}, {}}));
    EXPECT_EQ(engine->calls, 5) << "nothing is asked after a fatal error";
    EXPECT_EQ(progress, (QList<qint64>{1, 2, 3, 4, 5}));
    // Each text alone, with the line before it as context, as the translator would send it.
    EXPECT_EQ(engine->prompts.value(2), translator.prompt(texts, {2}));
    EXPECT_TRUE(engine->prompts.value(2).contains(u"\ndos\n"_s));
}
