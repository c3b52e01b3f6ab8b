#include "Platform/BootTime.h"
#include "Platform/Sim/SimNotificationCenter.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <vector>

namespace ashview {
namespace {

TEST(SimNotificationCenter, ObservationsMayComeAndGoDuringAPostAndOutliveTheCenter) {
    std::unique_ptr<NotificationObservation> later;
    std::unique_ptr<NotificationObservation> added;
    std::unique_ptr<NotificationObservation> dropper;
    int laterRan = 0;
    int addedRan = 0;
    {
        SimNotificationCenter center;
        dropper = center.observe("x", [&] {
            later.reset();
            if (!added) added = center.observe("x", [&] { ++addedRan; });
        });
        later = center.observe("x", [&] { ++laterRan; });
        EXPECT_EQ(center.post("x"), 1u);
        EXPECT_EQ(laterRan, 0);
        EXPECT_EQ(addedRan, 0);
        center.post("x");
        EXPECT_EQ(addedRan, 1);
    }
    dropper.reset();  // must not touch the gone center
    added.reset();
}

TEST(BootTime, ReadsTheBtimeLineOfProcStat) {
    EXPECT_EQ(BootTime::fromProcStat("cpu  1 2 3\nintr 5\nbtime 1763884800\nprocesses 9\n"),
              Instant::fromUnixSeconds(1763884800.0));
    EXPECT_EQ(BootTime::fromProcStat("btime 12"), Instant::fromUnixSeconds(12.0));
    for (const char* bad : {"cpu 1\nbtimex 5\n", "btime 17x\n", "btime \n", "btime -4\n", ""})
        EXPECT_EQ(BootTime::fromProcStat(bad), std::nullopt) << bad;
}

TEST(BootTime, TheKernelsBootTimeLiesInThePast) {
    std::optional<Instant> boot = BootTime::kernel();
    ASSERT_TRUE(boot.has_value());
    double nowUnix = std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
    EXPECT_LE(boot->unixSeconds(), nowUnix);
    EXPECT_GT(boot->unixSeconds(), 1.0e9);  // after 2001
}

}  // namespace
}  // namespace ashview
