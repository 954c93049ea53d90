#include "VeltoKit/job/JobPlan.h"

#include <gtest/gtest.h>

using namespace velto;
using namespace Qt::StringLiterals;

TEST(JobPlan, DefaultOutputLiesBesideTheSourceInAContainerTheMuxWrites) {
    const QList<std::pair<QString, QString>> names = {
        {u"a/b/Movie.mkv"_s, u"a/b/Movie.es.mkv"_s},
        {u"clip"_s, u"clip.es.mkv"_s},
        {u"/v/My.Show.S01.mp4"_s, u"/v/My.Show.S01.es.mp4"_s},
        {u"/v/Trailer.webm"_s, u"/v/Trailer.es.mkv"_s},
        {u"/v/Old.AVI"_s, u"/v/Old.es.mkv"_s},
    };
    for (const auto& [source, output] : names)
        EXPECT_EQ(JobPlan::defaultOutputURL(source), output);
}
