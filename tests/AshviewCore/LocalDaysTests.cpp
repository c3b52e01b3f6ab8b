#include "AshviewCore/LocalDays.h"

#include <gtest/gtest.h>

namespace ashview {
namespace {

using Piece = LocalDays::Piece;

constexpr double hour = 3600.0;

TEST(LocalDays, SplitsAtTheMidnightsOfRealTimeZones) {
    struct Case {
        const char* zone;
        long month;
        long day;
        double middleHours;
    };
    // The middle day of each stretch is the one on which the clocks change.
    for (Case test : {Case{"Europe/Berlin", 3, 29, 23}, Case{"Europe/Berlin", 10, 25, 25},
                      Case{"Australia/Lord_Howe", 4, 5, 24.5}, Case{"Australia/Lord_Howe", 10, 4, 23.5},
                      Case{"Europe/Berlin", 6, 14, 24}}) {
        LocalDays local(Calendar("gregorian", test.zone, "en_GB"));
        Instant from = *local.calendar.date(2026, test.month, test.day - 1, 12);
        Instant to = *local.calendar.date(2026, test.month, test.day + 1, 12);
        auto key = [&](long day) { return local.key(*local.calendar.date(2026, test.month, day, 12)); };
        EXPECT_EQ(local.split(from, to), (std::vector<Piece>{{key(test.day - 1), 12 * hour},
                                                             {key(test.day), test.middleHours * hour},
                                                             {key(test.day + 1), 12 * hour}}))
            << test.zone << " " << test.month << "-" << test.day;
    }
}

TEST(LocalDays, SplitGivesOnePiecePerDayTouched) {
    LocalDays local(Calendar("gregorian", "America/New_York", "en_US"));
    Instant beforeMidnight = *local.calendar.date(2026, 1, 9, 23, 59, 50);
    EXPECT_EQ(local.split(beforeMidnight, beforeMidnight + 20),
              (std::vector<Piece>{{"2026-01-09", 10}, {"2026-01-10", 10}}));
    // Three midnights: four pieces, the two in the middle whole days.
    Instant evening = *local.calendar.date(2026, 1, 9, 18);
    EXPECT_EQ(local.split(evening, evening + 3 * 24 * hour),
              (std::vector<Piece>{{"2026-01-09", 6 * hour},
                                  {"2026-01-10", 24 * hour},
                                  {"2026-01-11", 24 * hour},
                                  {"2026-01-12", 18 * hour}}));
    EXPECT_EQ(local.split(evening, evening + 60), (std::vector<Piece>{{"2026-01-09", 60}}));
    EXPECT_TRUE(local.split(evening, evening).empty());
    EXPECT_TRUE(local.split(evening, evening - 60).empty());
    // A piece ending exactly at midnight stays on its own day.
    Instant midnight = *local.calendar.date(2026, 1, 10);
    EXPECT_EQ(local.split(midnight - 30, midnight), (std::vector<Piece>{{"2026-01-09", 30}}));
}

TEST(LocalDays, KeysAreGregorianInTheGivenCalendarsZone) {
    // 20:00 UTC is already the next morning in Bangkok and Tokyo.
    Instant instant = *Calendar::gregorianUTC().date(2026, 11, 23, 20);
    for (Calendar other : {Calendar("buddhist", "Asia/Bangkok", "th_TH"), Calendar("japanese", "Asia/Tokyo", "ja_JP")}) {
        LocalDays local(other);
        EXPECT_EQ(local.calendar.identifier(), "gregorian");
        EXPECT_EQ(local.calendar.timeZone(), other.timeZone());
        EXPECT_EQ(local.key(instant), "2026-11-24") << other.identifier();
    }
    Calendar berlin("gregorian", "Europe/Berlin", "de_DE");
    EXPECT_EQ(LocalDays(berlin).calendar, berlin);
    EXPECT_EQ(LocalDays(Calendar::gregorianUTC()).key(instant), "2026-11-23");
    // Padding keeps text order equal to date order.
    EXPECT_EQ(LocalDays(Calendar::gregorianUTC()).key(*Calendar::gregorianUTC().date(987, 3, 4, 12)), "0987-03-04");
}

TEST(LocalDays, StartOfDayCountsLocalDaysNotMultiplesOf24Hours) {
    LocalDays berlin(Calendar("gregorian", "Europe/Berlin", "en_GB"));
    Instant monday = *berlin.calendar.date(2026, 3, 30, 10, 30);
    EXPECT_EQ(berlin.start(0, monday), *berlin.calendar.date(2026, 3, 30));
    EXPECT_EQ(berlin.start(-1, monday), *berlin.calendar.date(2026, 3, 29));
    EXPECT_EQ(berlin.start(0, monday) - berlin.start(-1, monday), 23 * hour);
    EXPECT_EQ(berlin.start(-1, monday) - berlin.start(-2, monday), 24 * hour);
    EXPECT_EQ(berlin.start(-400, monday), *berlin.calendar.date(2025, 2, 23));
    Instant october = *berlin.calendar.date(2026, 10, 24, 23, 59);
    EXPECT_EQ(berlin.start(2, october) - berlin.start(1, october), 25 * hour);

    // Santiago skips midnight when summer time begins: that day starts at 01:00.
    LocalDays santiago(Calendar("gregorian", "America/Santiago", "es_CL"));
    Instant saturday = *santiago.calendar.date(2026, 9, 5, 12);
    Instant sunday = santiago.start(1, saturday);
    EXPECT_EQ(santiago.calendar.components(sunday), (DateComponents{2026, 9, 6, 1, 0, 0, 1}));
    EXPECT_EQ(santiago.start(2, saturday) - sunday, 23 * hour);
}

}  // namespace
}  // namespace ashview
