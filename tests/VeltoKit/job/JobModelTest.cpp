#include <QList>

#include <gtest/gtest.h>

#include "VeltoKit/job/JobStage.h"
#include "VeltoKit/job/JobUpdate.h"

using namespace velto;
using namespace Qt::StringLiterals;

TEST(JobModel, MuxingNamesItsContainer) {
    const QList<std::pair<JobUpdate, QString>> labels = {
        {{JobStage::muxing, u"Movie.es.mkv"_s, {}}, u"Escribiendo el MKV"_s},
        {{JobStage::muxing, u"clip.es.mp4"_s, {}}, u"Escribiendo el MP4"_s},
        {{JobStage::muxing, u"clip.es.MOV"_s, {}}, u"Escribiendo el MOV"_s},
        {{JobStage::done, u"clip.es.mp4"_s, 1.0}, u"Listo"_s},
    };
    for (const auto& [update, text] : labels)
        EXPECT_EQ(label(update), text);
}
