#include "Ashview/Controller/Log.h"

#include "Platform/Sim/SimClock.h"

#include <gtest/gtest.h>

#include <sstream>

namespace ashview {
namespace {

TEST(Log, StampsEachLineWithTheLoopsClockInTheZoneOfTheMoment) {
    SimClock clock;  // 09:00:00 UTC
    std::ostringstream out;
    Log log(out, clock);
    log("graying window 42");
    clock.advance(61.999);
    clock.setCalendar(Calendar("gregorian", "Asia/Kolkata", "en_IN"));  // UTC+05:30
    log.write("tab changed");
    EXPECT_EQ(out.str(), "09:00:00 graying window 42\n14:31:01 tab changed\n");

    // Twenty-four hours, zero-padded, whatever the calendar and locale.
    Instant lateEvening = *Calendar::gregorianUTC().date(2026, 11, 23, 14, 5, 9);  // 23:05:09 in Tokyo
    EXPECT_EQ(Log::clockText(lateEvening, Calendar("japanese", "Asia/Tokyo", "ja_JP")), "23:05:09");
    Instant earlyMorning = *Calendar::gregorianUTC().date(2026, 11, 23, 0, 0, 3);
    EXPECT_EQ(Log::clockText(earlyMorning, Calendar("gregorian", "UTC", "en_US")), "00:00:03");
}

}  // namespace
}  // namespace ashview
