#include <gtest/gtest.h>

#include "VeltoKit/job/JobStage.h"
#include "VeltoKit/job/JobUpdate.h"
#include "VeltoKit/job/TranslationJob.h"

using namespace velto;
using namespace Qt::StringLiterals;

TEST(JobModel, StagesAreFoundByTheirExactLabelAndMuxingNamesItsContainer) {
    for (JobStage stage : allJobStages())
        EXPECT_EQ(jobStageFromLabel(label(stage)), stage);
    EXPECT_EQ(jobStageFromLabel(u"listo"), std::nullopt);
    const QList<std::pair<JobUpdate, QString>> labels = {
        {{JobStage::muxing, u"Movie.es.mkv"_s, {}}, u"Escribiendo el MKV"_s},
        {{JobStage::muxing, u"clip.es.mp4"_s, {}}, u"Escribiendo el MP4"_s},
        {{JobStage::muxing, u"clip.es.MOV"_s, {}}, u"Escribiendo el MOV"_s},
        {{JobStage::done, u"clip.es.mp4"_s, 1.0}, u"Listo"_s},
    };
    for (const auto& [update, text] : labels)
        EXPECT_EQ(label(update), text);
}

TEST(JobModel, DefaultOutputLiesBesideTheSource) {
    const QList<std::pair<QString, QString>> names = {
        {u"a/b/Movie.mkv"_s, u"a/b/Movie.es.mkv"_s},
        {u"clip"_s, u"clip.es.mkv"_s},
        {u"/v/My.Show.S01.mp4"_s, u"/v/My.Show.S01.es.mp4"_s},
    };
    for (const auto& [source, output] : names)
        EXPECT_EQ(TranslationJob::defaultOutputURL(source, u".es"_s), output);
}
