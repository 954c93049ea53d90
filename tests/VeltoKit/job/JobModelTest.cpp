#include <gtest/gtest.h>

#include "VeltoKit/job/JobOptions.h"
#include "VeltoKit/job/JobStage.h"
#include "VeltoKit/job/TranslationJob.h"

using namespace velto;
using namespace Qt::StringLiterals;

TEST(JobModel, DefaultOptionsAreTheProgramsOwn) {
    const JobOptions options;
    EXPECT_EQ(options.sourceLanguage, u"eng"_s);
    EXPECT_EQ(options.variant, SpanishVariant::neutro);
    EXPECT_FALSE(options.stripSDH);
    EXPECT_TRUE(options.stripParens);
    EXPECT_FALSE(options.makeDefault);
    EXPECT_EQ(options.trackTitle, u"Español (traducido)"_s);
    EXPECT_EQ(options.batchSize, 40);
    EXPECT_EQ(options.concurrency, 3);
    EXPECT_EQ(options.contextLines, 4);
    EXPECT_TRUE(options.useCache);
    EXPECT_FALSE(options.outputURL);
    EXPECT_FALSE(options.forcedTrackIndex);
    EXPECT_FALSE(options.force);
}

TEST(JobModel, StagesAreTheirLabelsInDeclarationOrder) {
    EXPECT_EQ(jobStageFromLabel(u"Listo"), JobStage::done);
    EXPECT_EQ(jobStageFromLabel(u"listo"), std::nullopt);
    EXPECT_EQ(label(JobStage::stripping), u"Quitando descripciones de sonido"_s);
    for (JobStage stage : allJobStages())
        EXPECT_EQ(jobStageFromLabel(label(stage)), stage);
    EXPECT_EQ(ordinal(JobStage::stripping), 5);
    EXPECT_EQ(ordinal(allJobStages().back()), 8);
}

TEST(JobModel, DefaultOutputLiesBesideTheSource) {
    EXPECT_EQ(TranslationJob::defaultOutputURL(u"a/b/Movie.mkv"_s, u".es"_s),
              u"a/b/Movie.es.mkv"_s);
    EXPECT_EQ(TranslationJob::defaultOutputURL(u"clip"_s, u".es"_s), u"clip.es.mkv"_s);
    EXPECT_EQ(TranslationJob::defaultOutputURL(u"/v/My.Show.S01.mp4"_s, u".es"_s),
              u"/v/My.Show.S01.es.mp4"_s);
}
