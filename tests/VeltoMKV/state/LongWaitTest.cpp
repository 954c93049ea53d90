// What the window tells during a long job: counts as prose and a guess at the time left.

#include <QRegularExpression>

#include <gtest/gtest.h>

#include "VeltoKit/translation/TranslationProgress.h"
#include "VeltoMKV/state/Format.h"
#include "VeltoMKV/state/TimeLeft.h"

using namespace velto;
using namespace Qt::StringLiterals;

namespace {

TEST(LongWait, CountsAndTimeLeftReadAsSpanishProse) {
    EXPECT_EQ(Format::counts({1, 0, 0, 0}), u"0 de 1 subtítulo"_s);
    EXPECT_EQ(Format::counts({1234567, 1000, 999, 2}),
              u"1.000 de 1.234.567 subtítulos · 999 en caché · 2 sin traducir"_s);

    const struct {
        double seconds;
        QString text;
    } left[] = {
        {29, u"falta menos de un minuto"_s}, {31, u"falta ~1 min"_s},  {3569, u"faltan ~59 min"_s},
        {4810, u"faltan ~1 h 20 min"_s},     {7190, u"faltan ~2 h"_s},
    };
    for (const auto& c : left)
        EXPECT_EQ(Format::timeLeft(c.seconds), c.text) << c.seconds;
}

TEST(LongWait, TimeLeftFollowsThePaceOfTheLatestBatches) {
    // Reports as "seconds:done/cached/total", in order.
    const struct {
        const char* name;
        qint64 concurrency;
        QString reports;
        double askedAt;
        std::optional<double> left;
    } cases[] = {
        {"one request at a time: the first answer sets the pace", 1, u"0:0/0/400 10:40/0/400"_s, 10,
         90},
        {"three at once: no guess while the first round is still coming", 3,
         u"0:0/0/400 10:40/0/400 10.5:80/0/400"_s, 10.5, std::nullopt},
        {"three at once: the whole first round is the pace", 3,
         u"0:0/0/400 10:40/0/400 10:80/0/400 10:120/0/400"_s, 10, 280.0 / 12},
        {"cache hits are no pace", 1, u"0:0/0/400 10:240/200/400"_s, 10, 40},
        {"a stalled engine makes the guess grow", 1, u"0:0/0/400 10:40/0/400"_s, 40, 360},
        {"an engine that slows down shows within a few batches", 1,
         u"0:0/0/800 10:40/0/800 20:80/0/800 30:120/0/800 40:160/0/800 60:200/0/800 "
         "80:240/0/800 100:280/0/800 120:320/0/800"_s,
         120, 240},
        {"between answers the guess counts down", 1, u"0:0/0/400 10:40/0/400"_s, 15, 85},
        {"nothing left", 1, u"0:0/0/40 5:40/0/40"_s, 6, 0},
    };
    const TimeLeft::Clock::time_point start;
    const auto at = [&](double seconds) {
        return start + std::chrono::duration_cast<TimeLeft::Clock::duration>(
                           std::chrono::duration<double>(seconds));
    };
    for (const auto& c : cases) {
        TimeLeft guess(c.concurrency);
        for (const QString& report : c.reports.split(u' ')) {
            const QStringList n = report.split(QRegularExpression(u"[:/]"_s));
            guess.observe({n[3].toLongLong(), n[1].toLongLong(), n[2].toLongLong(), 0},
                          at(n[0].toDouble()));
        }
        const std::optional<double> left = guess.secondsLeft(at(c.askedAt));
        ASSERT_EQ(left.has_value(), c.left.has_value()) << c.name;
        if (left) {
            EXPECT_NEAR(*left, *c.left, 0.01) << c.name;
        }
    }
}

} // namespace
