#include "AshviewCore/Foundation/Calendar.h"

#include <gtest/gtest.h>

namespace ashview {
namespace {

// Day lengths over clock changes are pinned through LocalDays::split, and day
// names and date texts through the sentences and the usage summary.

TEST(Calendar, FollowsItsZoneAcrossMidnightsAndClockChanges) {
    Calendar berlin("gregorian", "Europe/Berlin", "de_DE");
    // 2026-11-23 23:30 UTC is already Tuesday 00:30 in Berlin.
    Instant lateMonday = *Calendar::gregorianUTC().date(2026, 11, 23, 23, 30);
    EXPECT_EQ(berlin.components(lateMonday), (DateComponents{2026, 11, 24, 0, 30, 0, 3}));
    EXPECT_EQ(Calendar::gregorianUTC().weekday(lateMonday), 2);
    // A day added keeps the wall clock: 23 hours over the spring change.
    Instant before = *berlin.date(2026, 3, 28, 9, 15);
    Instant after = berlin.addingDays(before, 1);
    EXPECT_DOUBLE_EQ(after - before, 23 * 3600.0);
    EXPECT_EQ(berlin.components(after).hour, 9);
    EXPECT_EQ(berlin.components(berlin.addingDays(before, -30)).month, 2);
    // Santiago skips from 00:00 to 01:00 when summer time begins: its day starts at 01:00.
    Calendar santiago("gregorian", "America/Santiago", "es_CL");
    Instant start = santiago.startOfDay(*santiago.date(2026, 9, 6, 12));
    EXPECT_EQ(santiago.components(start).hour, 1);
    EXPECT_EQ(santiago.components(start).day, 6);
    EXPECT_LT(santiago.components(start - 1).day, 6);
}

TEST(Calendar, RemembersNoDayAcrossOtherInstants) {
    // One calendar answers a mix of instants, also of other days and of a day
    // whose midnight is skipped; a calendar made afresh for each question is
    // the reference.
    Calendar santiago("gregorian", "America/Santiago", "es_CL");
    const Instant instants[] = {*santiago.date(2026, 9, 6, 12), *santiago.date(2026, 9, 5, 23, 59),
                                *santiago.date(2026, 9, 6, 12), *santiago.date(2026, 11, 23, 8),
                                *santiago.date(2026, 9, 6, 1, 30), *santiago.date(2026, 11, 23, 8)};
    for (Instant instant : instants) {
        Calendar fresh("gregorian", "America/Santiago", "es_CL");
        EXPECT_EQ(santiago.startOfDay(instant), fresh.startOfDay(instant)) << instant.seconds;
        EXPECT_EQ(santiago.components(instant), fresh.components(instant)) << instant.seconds;
    }
    EXPECT_NE(santiago.startOfDay(instants[0]), santiago.startOfDay(instants[1]));
}

TEST(Calendar, LenientDatesRollOverAndUnknownZonesAreRefused) {
    Calendar utc = Calendar::gregorianUTC();
    DateComponents april31 = utc.components(*utc.date(2026, 4, 31));
    EXPECT_EQ(april31.month, 5);
    EXPECT_EQ(april31.day, 1);
    // Other calendar systems are pinned through day keys and weekdays.
    EXPECT_THROW(Calendar("gregorian", "Mars/Olympus", "en_US"), std::invalid_argument);
}

}  // namespace
}  // namespace ashview
