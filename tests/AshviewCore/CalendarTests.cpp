#include "AshviewCore/Calendar.h"

#include <gtest/gtest.h>

namespace ashview {
namespace {

Instant utc(long year, long month, long day, long hour = 0, long minute = 0) {
    return *Calendar::gregorianUTC().date(year, month, day, hour, minute);
}

TEST(Calendar, ReadsLocalFieldsInItsOwnZone) {
    Calendar berlin("gregorian", "Europe/Berlin", "de_DE");
    // 2026-11-23 23:30 UTC is already Tuesday 00:30 in Berlin.
    DateComponents parts = berlin.components(utc(2026, 11, 23, 23, 30));
    EXPECT_EQ(parts, (DateComponents{2026, 11, 24, 0, 30, 0, 3}));
    EXPECT_EQ(Calendar::gregorianUTC().weekday(utc(2026, 11, 23)), 2);  // a Monday
}

TEST(Calendar, DaysAreTwentyThreeOrTwentyFiveHoursWhenClocksChange) {
    Calendar berlin("gregorian", "Europe/Berlin", "en_GB");
    EXPECT_DOUBLE_EQ(berlin.dayInterval(utc(2026, 3, 29, 12)).duration(), 23 * 3600.0);
    EXPECT_DOUBLE_EQ(berlin.dayInterval(utc(2026, 10, 25, 12)).duration(), 25 * 3600.0);
    EXPECT_DOUBLE_EQ(berlin.dayInterval(utc(2026, 6, 1, 12)).duration(), 24 * 3600.0);
    // Lord Howe Island moves its clocks by half an hour.
    Calendar lordHowe("gregorian", "Australia/Lord_Howe", "en_AU");
    EXPECT_DOUBLE_EQ(lordHowe.dayInterval(utc(2026, 4, 5, 3)).duration(), 24.5 * 3600.0);
}

TEST(Calendar, StartOfDayIsTheFirstMomentThatExists) {
    // Santiago skips from 00:00 to 01:00 when summer time begins.
    Calendar santiago("gregorian", "America/Santiago", "es_CL");
    Instant noon = *santiago.date(2026, 9, 6, 12);
    Instant start = santiago.startOfDay(noon);
    EXPECT_EQ(santiago.components(start).hour, 1);
    EXPECT_EQ(santiago.components(start).day, 6);
    EXPECT_LT(santiago.components(start - 1).day, 6);
}

TEST(Calendar, RemembersNoDayAcrossOtherInstants) {
    // One calendar answers a mix of instants, also instants of other days and
    // a day whose midnight is skipped; a calendar made afresh for each
    // question is the reference.
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

TEST(Calendar, AddingDaysKeepsTheWallClock) {
    Calendar berlin("gregorian", "Europe/Berlin", "en_GB");
    Instant before = *berlin.date(2026, 3, 28, 9, 15);
    Instant after = berlin.addingDays(before, 1);
    EXPECT_DOUBLE_EQ(after - before, 23 * 3600.0);
    EXPECT_EQ(berlin.components(after).hour, 9);
    EXPECT_EQ(berlin.components(berlin.addingDays(before, -30)).month, 2);
}

TEST(Calendar, LenientDatesRollOverAndOtherSystemsKeepTheirYears) {
    Calendar utcCalendar = Calendar::gregorianUTC();
    DateComponents april31 = utcCalendar.components(*utcCalendar.date(2026, 4, 31));
    EXPECT_EQ(april31.month, 5);
    EXPECT_EQ(april31.day, 1);

    Calendar buddhist("buddhist", "Asia/Bangkok", "th_TH");
    Instant instant = utc(2026, 11, 23, 12);
    EXPECT_EQ(buddhist.components(instant).year, 2569);
    EXPECT_EQ(buddhist.withIdentifier("gregorian").components(instant).year, 2026);
    EXPECT_THROW(Calendar("gregorian", "Mars/Olympus", "en_US"), std::invalid_argument);
}

TEST(Calendar, NamesAndFormatsComeFromTheLocale) {
    Calendar german("gregorian", "Europe/Berlin", "de_DE");
    auto names = german.weekdaySymbols();
    ASSERT_EQ(names.size(), 7u);
    EXPECT_EQ(names[0], "Sonntag");
    EXPECT_EQ(german.shortWeekdaySymbols()[1], "Mo.");
    Instant evening = utc(2026, 11, 23, 17, 5);  // 18:05 in Berlin
    EXPECT_EQ(german.shortTimeText(evening), "18:05");
    EXPECT_EQ(german.mediumDateText(evening), "23.11.2026");
    Calendar american("gregorian", "America/New_York", "en_US");
    EXPECT_EQ(american.shortTimeText(evening), "12:05\u202FPM");
    EXPECT_EQ(american.mediumDateText(evening), "Nov 23, 2026");
}

}  // namespace
}  // namespace ashview
