#include "AshviewCore/Usage/LocalDays.h"

#include <gtest/gtest.h>

namespace ashview {
namespace {

using Pieces = std::vector<LocalDays::Piece>;
constexpr double hour = 3600.0;

TEST(LocalDays, SplitsAtTheMidnightsOfRealTimeZones) {
    struct Case {
        const char* zone;
        long month, day;
        double hours;  // of the middle day, on which the clocks change
    };
    for (Case test : {Case{"Europe/Berlin", 3, 29, 23}, Case{"Europe/Berlin", 10, 25, 25},
                      Case{"Australia/Lord_Howe", 4, 5, 24.5}, Case{"Australia/Lord_Howe", 10, 4, 23.5}}) {
        LocalDays local(Calendar("gregorian", test.zone, "en_GB"));
        auto noon = [&](long day) { return *local.calendar.date(2026, test.month, day, 12); };
        EXPECT_EQ(local.split(noon(test.day - 1), noon(test.day + 1)),
                  (Pieces{{local.key(noon(test.day - 1)), 12 * hour},
                          {local.key(noon(test.day)), test.hours * hour},
                          {local.key(noon(test.day + 1)), 12 * hour}}))
            << test.zone << " " << test.month;
    }
    LocalDays newYork(Calendar("gregorian", "America/New_York", "en_US"));
    Instant midnight = *newYork.calendar.date(2026, 1, 10);
    EXPECT_EQ(newYork.split(midnight - 10, midnight + 10), (Pieces{{"2026-01-09", 10}, {"2026-01-10", 10}}));
    EXPECT_TRUE(newYork.split(midnight, midnight).empty());
    EXPECT_TRUE(newYork.split(midnight, midnight - 60).empty());
}

TEST(LocalDays, KeysAreGregorianInTheGivenCalendarsZone) {
    // 20:00 UTC is already the next morning in Bangkok and Tokyo.
    Instant instant = *Calendar::gregorianUTC().date(2026, 11, 23, 20);
    for (const Calendar& other : {Calendar("buddhist", "Asia/Bangkok", "th_TH"), Calendar("japanese", "Asia/Tokyo", "ja_JP")})
        EXPECT_EQ(LocalDays(other).key(instant), "2026-11-24") << other.identifier();
    EXPECT_EQ(LocalDays(Calendar::gregorianUTC()).key(instant), "2026-11-23");
}

}  // namespace
}  // namespace ashview
