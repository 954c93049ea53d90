#include "VeltoKit/job/QualityReview.h"

#include <mutex>

#include <QDir>
#include <QMap>
#include <QSet>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include "VeltoKit/engines/OpenAICompatibleBackend.h"
#include "VeltoKit/job/TranslationJob.h"
#include "VeltoKit/subtitles/SrtDocument.h"
#include "support/ChatCompletionsServer.h"
#include "support/MediaFixtures.h"

using namespace velto;
using namespace velto::test;
using namespace Qt::StringLiterals;

namespace {

// Six cues of 2.5 s each; the last one past the first minute.
const QStringList english = {u"Hello there."_s,
                             u"Where did you put the keys?"_s,
                             u"I left them on the table."_s,
                             u"We should leave before dark."_s,
                             u"Fine."_s,
                             u"See you tomorrow, then."_s};

QByteArray englishSrt() {
    QByteArray srt;
    const QList<int> starts = {0, 3, 6, 9, 12, 62};
    for (qsizetype i = 0; i < english.size(); ++i) {
        srt += QStringLiteral("%1\n00:%2:%3,500 --> 00:%2:%4,000\n%5\n\n")
                   .arg(i + 1)
                   .arg(starts[i] / 60, 2, 10, QLatin1Char('0'))
                   .arg(starts[i] % 60, 2, 10, QLatin1Char('0'))
                   .arg(starts[i] % 60 + 3, 2, 10, QLatin1Char('0'))
                   .arg(english[i])
                   .toUtf8();
    }
    return srt;
}

class QualityReviewTest : public testing::Test {
protected:
    JobResult translate(const ChatCompletionsServer& server) {
        const QString source = QDir(m_root.path()).filePath(u"Movie.mkv"_s);
        MediaFixtures::writeVideo(
            source, {.subtitles = {{.language = u"eng"_s, .contents = englishSrt()}}});
        const auto backend = std::make_shared<OpenAICompatibleBackend>(
            HttpBackend::Settings{u"sk-prueba"_s, u"m"_s, server.baseUrl(), 30.0,
                                  std::make_shared<HttpClient>()},
            u"Local"_s, 0.0);
        JobOptions options;
        options.useCache = false;
        m_updates.clear();
        return TranslationJob(MediaFixtures::tools(), backend, options, m_root.path())
            .run(source, [this](const JobUpdate& update) { m_updates.append(update); }, {});
    }

    QTemporaryDir m_root;
    QList<JobUpdate> m_updates;
};

} // namespace

TEST_F(QualityReviewTest, NamesTheCuesAMisbehavingEngineSpoiledAndAsksAgainOnlyTheUntranslated) {
    std::mutex mutex;
    QSet<QString> seen;
    ChatCompletionsServer server({.translate = [&](int, const QString& text) -> QString {
        const std::lock_guard lock(mutex);
        const bool first = !seen.contains(text);
        seen.insert(text);
        if (text == english[1] || (text == english[2] && first))
            return text;
        if (text == english[3])
            return QString();
        if (text == english[4])
            return u"es: "_s + u"Bien, "_s.repeated(10);
        return u"es: "_s + text;
    }});
    const JobResult result = translate(server);

    // Cue 5 came back far longer than its source, twice: the track keeps its source.
    EXPECT_EQ(result.warnings,
              (QStringList{u"2 subtítulos quedaron sin traducir: #2 (0:03), #5 (0:12)."_s,
                           u"1 subtítulo quedó vacío o incompleto: #4 (0:09)."_s}));
    ASSERT_EQ(result.qualityFindings.size(), 3);
    const CheckedCue& untranslated = result.qualityFindings[0].cue;
    EXPECT_EQ(std::tuple(untranslated.number, untranslated.startMs, untranslated.endMs),
              std::tuple(2, 3'500, 6'000));
    EXPECT_EQ(untranslated.translation, english[1]);
    EXPECT_EQ(std::pair(result.translatedCount, result.failedLines), std::pair(4LL, 2LL));
    // The preflight, one batch, and one request for each of the three cues that came back in
    // English or too long; the asking again is a stage of its own.
    EXPECT_EQ(server.completions(), 5);
    const auto lastReviewing =
        std::find_if(m_updates.rbegin(), m_updates.rend(),
                     [](const JobUpdate& update) { return update.stage == JobStage::reviewing; });
    EXPECT_EQ(lastReviewing->detail, u"3 de 3"_s);

    // The written track holds what the user was told, at the times named; the empty cue is
    // not stored at all.
    QMap<QString, QString> written;
    const SrtDocument track = SrtDocument::parse(MediaFixtures::subtitleText(result.outputURL, 1));
    for (const SrtCue& cue : track.cues())
        written.insert(cue.start, cue.text);
    EXPECT_EQ(written,
              (QMap<QString, QString>{{u"00:00:00,500"_s, u"es: Hello there."_s},
                                      {u"00:00:03,500"_s, english[1]},
                                      {u"00:00:06,500"_s, u"es: I left them on the table."_s},
                                      {u"00:00:12,500"_s, english[4]},
                                      {u"00:01:02,500"_s, u"es: See you tomorrow, then."_s}}));
    // A well-behaved engine brings no warning: tests/cli/CliQualityTest.cpp.
}
