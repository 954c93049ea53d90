#include "VeltoKit/translation/Glossary.h"

#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include "VeltoKit/engines/OpenAICompatibleBackend.h"
#include "VeltoKit/subtitles/SubtitleDocument.h"
#include "VeltoKit/subtitles/Subtitles.h"
#include "VeltoKit/translation/NameCandidates.h"
#include "VeltoKit/translation/TranslationCache.h"
#include "VeltoKit/translation/Translator.h"
#include "support/ChatCompletionsServer.h"
#include "support/SubtitleCorpus.h"

using namespace velto;
using namespace velto::test;
using namespace Qt::StringLiterals;

namespace {

const QStringList texts = {u"Mr. White is late."_s, u"Hello there."_s, u"Fine, thanks."_s,
                           u"Whitey, see you."_s};

Glossary kept(const QString& term, const QString& rendering = {}) {
    return Glossary({{term, rendering}});
}

// The system prompts a translator with `glossary` sends for `texts`, two cues a request.
QStringList systemPrompts(const Glossary& glossary,
                          const std::shared_ptr<TranslationCache>& cache = nullptr) {
    ChatCompletionsServer server({.key = {}});
    const auto backend = std::make_shared<OpenAICompatibleBackend>(
        HttpBackend::Settings{{}, u"m"_s, server.baseUrl(), 30.0, std::make_shared<HttpClient>()},
        u"Local"_s, 0.0);
    Translator(backend, u"inglés"_s, SpanishVariant::neutro, 2, 0, 1, cache, glossary)
        .translateAll(texts, {}, {});
    return server.systemPrompts();
}

} // namespace

TEST(Glossary, ReadsWhatItWritesCommentsAsideAndALaterLineWins) {
    const Glossary read = Glossary::parse(u"# Temporada 1\r\nWalter White\r\n\n  # otra\n"
                                          u"the Shire\tel Condado\nHeisenberg\t\n"
                                          u"the Shire\tla Comarca\n"_s);
    const QList<Glossary::Entry> expected = {
        {u"Walter White"_s, {}}, {u"the Shire"_s, u"la Comarca"_s}, {u"Heisenberg"_s, {}}};
    EXPECT_EQ(read.entries(), expected);

    const QTemporaryDir folder;
    const QString path = Glossary::pathIn(folder.path());
    read.save(path, {u"Nombres de la temporada"_s});
    EXPECT_EQ(Glossary::load(path), read);
    EXPECT_TRUE(Glossary::load(path + u"-no"_s).isEmpty());
}

TEST(Glossary, PromptsCarryTheListOnlyWhereItsTermsAreAndAnEmptyListChangesNothing) {
    const QStringList plain = systemPrompts({});
    ASSERT_EQ(plain.size(), 2);
    // "Whitey" is another word: the second request goes as it would without a list.
    const QStringList listed = systemPrompts(kept(u"White"_s));
    EXPECT_EQ(listed[0],
              plain[0] +
                  u"\n\nNOMBRES Y TÉRMINOS (respetalos en todos los bloques, aunque el resto "
                  u"de la frase cambie):\n- «White»: se deja tal cual, sin traducir."_s);
    EXPECT_EQ(listed[1], plain[1]);
    EXPECT_EQ(systemPrompts(kept(u"Heisenberg"_s)), plain);
}

TEST(Glossary, ACachedTranslationMadeUnderAnotherRenderingIsAskedAgain) {
    const QTemporaryDir folder;
    const auto cache =
        std::make_shared<TranslationCache>(folder.filePath(u"c.json"_s), u"Local|neutro"_s);
    EXPECT_EQ(systemPrompts(kept(u"White"_s), cache).size(), 2);
    // Only the cue that holds the term goes again, alone; the same list again asks nothing.
    EXPECT_EQ(systemPrompts(kept(u"White"_s, u"Blanco"_s), cache).size(), 1);
    EXPECT_EQ(systemPrompts(kept(u"White"_s), cache).size(), 0);
}

TEST(NameCandidates, FindTheMainCharactersOfRealEpisodes) {
    if (const QString reason = SubtitleCorpus::missingReason(); !reason.isEmpty())
        GTEST_SKIP() << reason.toStdString();
    const QDir dualsub(SubtitleCorpus::directory() + u"/dualsub"_s);
    const struct {
        QString file;
        QStringList names;
    } episodes[] = {
        {u"Breaking Bad 5x09 - Blood Money (English).srt"_s,
         {u"Walt"_s, u"Skyler"_s, u"Hank"_s, u"Marie"_s, u"Saul"_s, u"Pinkman"_s}},
        {u"Game of Thrones 1x01 - Winter Is Coming (English).srt"_s,
         {u"Stark"_s, u"Jon"_s, u"Arya"_s, u"Bran"_s, u"Tyrion"_s, u"Daenerys"_s, u"Winterfell"_s,
          u"King's Landing"_s}},
    };
    for (const auto& episode : episodes) {
        const QStringList found = NameCandidates::find(
            Subtitles::load(dualsub.filePath(episode.file), u"subrip"_s)->texts());
        for (const QString& name : episode.names)
            EXPECT_TRUE(found.contains(name))
                << name.toStdString() << " in " << episode.file.toStdString();
        // Words that open sentences or stand for a title are no names.
        for (const QString& word : {u"I"_s, u"Yeah"_s, u"Okay"_s, u"Well"_s, u"The"_s, u"Mr"_s})
            EXPECT_FALSE(found.contains(word)) << word.toStdString();
        EXPECT_LT(found.size(), 60);
    }
}
