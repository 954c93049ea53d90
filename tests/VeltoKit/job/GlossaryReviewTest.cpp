#include "VeltoKit/job/GlossaryReview.h"

#include <QDir>
#include <QProcess>
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

// An engine that translates every word it knows, names too, whatever it is told.
TEST(GlossaryReview, KeptNamesSurviveALiteralEngineAndWhatStillBreaksTheListIsNamed) {
    ChatCompletionsServer server({.key = {}, .translate = [](int, QString text) -> QString {
                                      return u"es: "_s +
                                             text.replace(u"Mr."_s, u"señor"_s)
                                                 .replace(u"White"_s, u"Blanco"_s)
                                                 .replace(u"the Shire"_s, u"el Condado"_s);
                                  }});
    const QTemporaryDir root;
    const QString source = QDir(root.path()).filePath(u"Movie.mkv"_s);
    MediaFixtures::writeVideo(
        source,
        {.subtitles = {{.language = u"eng"_s,
                        .lines = {u"Mr. White, sit down."_s, u"Where is the car?"_s,
                                  u"Walter White is here."_s, u"We live in the Shire."_s}}}});
    // The folder's list, as the window writes it.
    Glossary({{u"White"_s, {}}, {u"the Shire"_s, u"la Comarca"_s}})
        .save(Glossary::pathIn(root.path()));
    const auto backend = std::make_shared<OpenAICompatibleBackend>(
        HttpBackend::Settings{{}, u"m"_s, server.baseUrl(), 30.0, std::make_shared<HttpClient>()},
        u"Local"_s, 0.0);
    JobOptions options;
    options.useCache = false;
    const JobResult result =
        TranslationJob(MediaFixtures::tools(), backend, options, root.path()).run(source, {}, {});

    // The preflight, one batch, and one request for each of the three cues that broke the list.
    EXPECT_EQ(server.completions(), 5);
    // Asked alone, with the rule restated.
    EXPECT_EQ(server.systemPrompts().filter(u"«the Shire»: se traduce «la Comarca»"_s).size(), 2);
    EXPECT_EQ(result.warnings.last(), u"1 subtítulo no respeta «Nombres y términos»: #4 (0:03)."_s);
    QList<qint64> named;
    for (const QualityFinding& finding : result.qualityFindings) {
        if (finding.issue == QualityIssue::names)
            named.append(finding.cue.number);
    }
    EXPECT_EQ(named, QList<qint64>{4});

    QProcess ffmpeg;
    ffmpeg.start(u"ffmpeg"_s, {u"-v"_s, u"error"_s, u"-i"_s, result.outputURL, u"-map"_s,
                               u"0:s:1"_s, u"-f"_s, u"srt"_s, u"-"_s});
    ffmpeg.waitForFinished(-1);
    const SrtDocument track = SrtDocument::parse(QString::fromUtf8(ffmpeg.readAllStandardOutput()));
    QStringList written;
    for (const SrtCue& cue : track.cues())
        written.append(cue.text);
    EXPECT_EQ(written,
              (QStringList{u"es: señor White, sit down."_s, u"es: Where is the car?"_s,
                           u"es: Walter White is here."_s, u"es: We live in el Condado."_s}));
}
