#include "VeltoMKV/state/Format.h"

#include <gtest/gtest.h>

using namespace velto;
using namespace Qt::StringLiterals;

TEST(Format, Duration) {
    const struct {
        std::optional<double> seconds;
        QString text;
    } cases[] = {
        {std::nullopt, u"—"_s},   {0.0, u"—"_s},          {-3.0, u"—"_s},
        {0.4, u"0:00"_s},         {59.9, u"0:59"_s},      {61.0, u"1:01"_s},
        {3599.9, u"59:59"_s},     {3600.0, u"1:00:00"_s}, {6727.5, u"1:52:07"_s},
        {36000.0, u"10:00:00"_s},
    };
    for (const auto& c : cases)
        EXPECT_EQ(Format::duration(c.seconds), c.text) << c.seconds.value_or(-1);
}

TEST(Format, ElapsedRoundsMinutesHalfToEven) {
    const struct {
        double seconds;
        QString text;
    } cases[] = {
        {0, u"0 s"_s},          {59, u"59 s"_s},        {59.4, u"59 s"_s},
        {60, u"1 min 0 s"_s},   {90, u"2 min 30 s"_s},  {100, u"2 min 40 s"_s},
        {150, u"2 min 30 s"_s}, {210, u"4 min 30 s"_s}, {3725, u"62 min 5 s"_s},
    };
    for (const auto& c : cases)
        EXPECT_EQ(Format::elapsed(c.seconds), c.text) << c.seconds;
}
