#include "VeltoKit/translation/Translator.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include "ScriptedBackend.h"
#include "VeltoKit/engines/EchoBackend.h"
#include "VeltoKit/engines/TranslationError.h"
#include "VeltoKit/translation/TranslationCache.h"
#include "support/QStringPrinter.h"

using namespace velto;
using namespace velto::test;
using namespace Qt::StringLiterals;

namespace {

Translator translator(std::shared_ptr<const TranslationBackend> backend, qint64 batchSize,
                      std::shared_ptr<TranslationCache> cache = nullptr, qint64 contextLines = 0) {
    return Translator(std::move(backend), QStringLiteral("inglés"), SpanishVariant::neutro,
                      batchSize, contextLines, 1, std::move(cache));
}

auto echoBackend() {
    return std::make_shared<ScriptedBackend>(
        [](const QStringList& texts, std::stop_token) { return answerWith(echoed(texts)); });
}

const QString context = QStringLiteral(
    "CONTEXTO PREVIO (líneas anteriores en el idioma original; NO las traduzcas ni las incluyas "
    "en la respuesta, son solo para que entiendas la escena):\n");

} // namespace

TEST(Translator, SystemPromptNamesTheSourceLanguageAndTheDialect) {
    const QString system = Translator(std::make_shared<EchoBackend>(), QStringLiteral("japonés"),
                                      SpanishVariant::rioplatense, 10, 0, 1, nullptr)
                               .systemPrompt();
    EXPECT_TRUE(system.startsWith(
        u"Sos un traductor profesional de subtítulos para cine y series. Traducís del japonés al "
        u"español.\n\nRecibís bloques numerados"));
    EXPECT_TRUE(system.contains(u"\n\nCRITERIO DE TRADUCCIÓN:\n- Registro: " +
                                dialectDescription(SpanishVariant::rioplatense) +
                                u".\n- Natural y hablado"));
    EXPECT_TRUE(system.endsWith(u"- Si un bloque ya está en español, devolvelo igual."));
}

TEST(Translator, PromptShowsOnlyTheSourceLinesBeforeTheBatchAsContext) {
    const QStringList texts = {QStringLiteral("Hi."), QStringLiteral("- Who?\n- Me."),
                               QStringLiteral("Run!"), QStringLiteral("Go.")};
    const QString instruction = QStringLiteral("Traducí los siguientes 2 bloques. Devolvé los 2 "
                                               "bloques con sus marcadores #@#N#@#, nada más.\n");
    const Translator threeLines = translator(echoBackend(), 2, nullptr, 3);
    EXPECT_EQ(threeLines.prompt(texts, {1, 2}),
              context + u"Hi.\n\n" + instruction +
                  u"\nBLOQUES A TRADUCIR:\n#@#1#@#\n- Who?\n- Me.\n#@#2#@#\nRun!");
    EXPECT_EQ(threeLines.prompt(texts, {0, 1}),
              instruction + u"\nBLOQUES A TRADUCIR:\n#@#1#@#\nHi.\n#@#2#@#\n- Who?\n- Me.");
    EXPECT_TRUE(threeLines.prompt(texts, {3})
                    .startsWith(context + u"Hi.\n- Who?\n- Me.\nRun!\n\n"
                                          u"Traducí los siguientes 1 "));
    EXPECT_TRUE(translator(echoBackend(), 2, nullptr, 2)
                    .prompt(texts, {3})
                    .startsWith(context + u"- Who?\n- Me.\nRun!\n\nTraducí"));
    EXPECT_TRUE(translator(echoBackend(), 2).prompt(texts, {3}).startsWith(u"Traducí los "));
}

TEST(Translator, HalvesAFailingBatchDownToSingleTextsAndCountsOnlyTheHopelessOnes) {
    // Drops the last block of every answer with several texts; one text is always refused.
    const auto backend = std::make_shared<ScriptedBackend>([](const QStringList& texts, auto) {
        if (texts == QStringList{u"intraducible"_s})
            throw TranslationError(u"El motor no quiso responder."_s, false);
        QStringList translations = echoed(texts);
        if (translations.size() > 1)
            translations.removeLast();
        return answerWith(translations);
    });
    QStringList texts = numberedTexts(7);
    texts.append(u"intraducible"_s);
    const auto result = translator(backend, 8).translateAll(texts, nullptr, {});

    QList<qsizetype> sizes;
    for (const QStringList& request : backend->requests())
        sizes.append(request.size());
    EXPECT_EQ(sizes, (QList<qsizetype>{8, 4, 2, 1, 1, 2, 1, 1, 4, 2, 1, 1, 2, 1, 1}));
    auto halved = [](int n) {
        return u"Lote de %1 reintentado en dos mitades (faltan o sobran bloques (esperados %1, "
               u"recibidos %2))"_s.arg(n)
                   .arg(n - 1);
    };
    EXPECT_EQ(result.warnings,
              (QStringList{halved(8), halved(4), halved(2), halved(2), halved(4), halved(2),
                           halved(2), u"Lote de 1 sin traducir (El motor no quiso responder.)"_s}));
    QStringList expected = echoed(numberedTexts(7));
    expected.append(u"intraducible"_s);
    EXPECT_EQ(result.translations, expected);
    EXPECT_EQ(result.progress, (TranslationProgress{8, 8, 0, 1}));
}

TEST(Translator, WarnsWhenStyleMarksGetLostButKeepsTheTranslation) {
    const QStringList texts = {u"⟪0⟫Hola⟪1⟫ vos"_s, u"<i>Chau</i>"_s, u"<b>Sí</b>\n<b>No</b>"_s,
                               u"Nada"_s};
    const QStringList answers = {u"Hola⟪1⟫ vos"_s, u"<i>Adiós</i>"_s, u"<b>Sí</b>\nNo"_s,
                                 u"<i>Nada</i>"_s};
    const auto backend = std::make_shared<ScriptedBackend>(
        [&](const QStringList&, auto) { return answerWith(answers); });
    const auto result = translator(backend, 4).translateAll(texts, nullptr, {});
    EXPECT_EQ(result.translations, answers);
    EXPECT_EQ(result.warnings,
              (QStringList{u"Se perdieron etiquetas de estilo en: ⟪0⟫Hola⟪1⟫ vos"_s,
                           u"Se perdieron etiquetas de estilo en: <b>Sí</b> <b>No</b>"_s}));
}

TEST(Translator, BatchesOnlyTheTextsMissingFromTheCacheAndReportsProgress) {
    QTemporaryDir dir;
    const auto cache =
        std::make_shared<TranslationCache>(dir.filePath(u"video.json"_s), u"guion|neutro"_s);
    const QStringList texts = numberedTexts(6);
    for (const QString& text : {texts[1], texts[4]})
        cache->put(cache->key(text), u"guardado "_s + text);
    const auto backend = echoBackend();
    QList<TranslationProgress> reported;
    auto result =
        translator(backend, 2, cache)
            .translateAll(texts, [&](const TranslationProgress& p) { reported.append(p); }, {});
    EXPECT_EQ(backend->requests(), (QList<QStringList>{{u"0"_s, u"2"_s}, {u"3"_s, u"5"_s}}));
    EXPECT_EQ(result.translations, (QStringList{u"[ES] 0"_s, u"guardado 1"_s, u"[ES] 2"_s,
                                                u"[ES] 3"_s, u"guardado 4"_s, u"[ES] 5"_s}));
    EXPECT_EQ(reported, (QList<TranslationProgress>{{6, 2, 2, 0}, {6, 4, 2, 0}, {6, 6, 2, 0}}));
    EXPECT_EQ(result.progress, reported.back());
    EXPECT_EQ(result.progress.fraction(), 1.0);

    result = translator(backend, 2, cache).translateAll(texts, nullptr, {});
    EXPECT_EQ(backend->requests().size(), 2);
    EXPECT_EQ(result.progress, (TranslationProgress{6, 6, 6, 0}));
    EXPECT_TRUE(translator(backend, 2).translateAll({}, nullptr, {}).translations.isEmpty());
    EXPECT_EQ(backend->requests().size(), 2);
    EXPECT_EQ(TranslationProgress{}.fraction(), 0.0);
}
