#include "AshviewCore/UsageSummary.h"

#include <gtest/gtest.h>

namespace ashview {
namespace {

using Totals = UsageHistory::Totals;
using Row = UsageSummary::SiteRow;
using Lines = std::vector<std::string>;

/// A history in Berlin seen on 2 April 2026, a fortnight that holds the
/// change to summer time. Counting began 20 days before.
class Summarising : public ::testing::Test {
protected:
    Calendar calendar{"gregorian", "Europe/Berlin", "en_US"};
    LocalDays local{calendar};
    Instant now = *calendar.date(2026, 4, 2, 15);
    UsageHistory history;

    void SetUp() override { history.began = local.start(-20, now); }

    std::string key(long daysAgo) const { return local.key(local.start(-daysAgo, now)); }
    void add(long daysAgo, const std::string& host, Totals totals) {
        history.update(host, key(daysAgo), [&](Totals& day) { day.add(totals); });
    }
    void addEach(long from, long to, const std::string& host, Totals totals) {
        for (long daysAgo = from; daysAgo <= to; ++daysAgo) add(daysAgo, host, totals);
    }
    void unwatched(long daysAgo) { history.days[key(daysAgo)].unobservedSeconds = 3600.5; }
    UsageSummary summary(const std::vector<std::string>& hosts = {"a", "b"}) const {
        return UsageSummary::make(history, hosts, now, calendar);
    }
};

TEST(UsageSummaryText, DurationsAreWholeMinutesAndHoursNeverRoundedUp) {
    struct Case {
        double seconds;
        const char* text;
    };
    for (Case test : {Case{0, "<1m"}, Case{59.9, "<1m"}, Case{-600, "<1m"}, Case{std::nan(""), "<1m"},
                      Case{60, "1m"}, Case{119, "1m"}, Case{3599, "59m"}, Case{3600, "1h"}, Case{7200, "2h"},
                      Case{7500, "2h 5m"}, Case{7559, "2h 5m"}, Case{360060, "100h 1m"}}) {
        EXPECT_EQ(UsageSummary::duration(test.seconds), test.text) << test.seconds;
    }
}

TEST(UsageSummaryText, ComparisonIsExpectedOnTheFirstDayBothWeeksCanHaveFiveCompleteDays) {
    auto days = [](std::initializer_list<int> completeDaysAgo) {
        std::vector<bool> complete(15, false);
        for (int index : completeDaysAgo) complete[static_cast<std::size_t>(index)] = true;
        return UsageSummary::daysUntilComparison(complete);
    };
    EXPECT_EQ(days({0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14}), 1);
    EXPECT_EQ(days({}), 13);
    EXPECT_EQ(UsageSummary::daysUntilComparison({}), 13);
    EXPECT_EQ(days({1, 2, 3, 4, 5, 8, 9, 10, 11, 12}), 1);
    EXPECT_EQ(days({0, 1, 2, 3, 4, 5, 6, 7}), 5);
    // Four recent days missing: the first week is short until enough days
    // to come have replaced them.
    EXPECT_EQ(days({4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14}), 6);
    EXPECT_EQ(days({2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14}), 1);
}

TEST_F(Summarising, AHistoryThatBeganTodayShowsTodayAndWhenComparisonsStart) {
    history.began = now - 3600;
    add(0, "a", {330, 0, 2, 0, 0});
    add(0, "z", {9999, 0, 9, 0, 0});
    UsageSummary made = summary();
    EXPECT_EQ(made.daysOfHistory, 0);
    EXPECT_EQ(made.todaySeconds, 330);
    EXPECT_EQ(made.todayVisits, 2);
    EXPECT_EQ(made.comparisonStarts, local.start(13, now));
    EXPECT_EQ(made.lines, (Lines{"Today so far: 5m, 2 visits", "Comparisons start on Apr 15, 2026"}));
    EXPECT_EQ(made.menuLine(), "Today so far: 5m\u2026");
    EXPECT_TRUE(made.sites.empty());

    // The date is the calendar's own medium form, in its zone and locale.
    Calendar german("gregorian", "Europe/Berlin", "de_DE");
    EXPECT_EQ(UsageSummary::make(history, {"a"}, now, german).lines.back(), "Comparisons start on 15.04.2026");
}

TEST_F(Summarising, TwoFullWeeksAreComparedSiteBySite) {
    add(0, "a", {90, 0, 1, 0, 0});
    addEach(1, 7, "a", {600, 100, 3, 1, 0});
    addEach(8, 14, "a", {300, 0, 1, 0, 1});
    addEach(8, 14, "b", {120, 0, 0, 0, 0});
    addEach(1, 14, "unlisted", {5000, 0, 5, 5, 5});
    add(15, "a", {99999, 0, 99, 0, 0});
    UsageSummary made = summary({"b", "a", "a"});

    EXPECT_EQ(made.todaySeconds, 90);
    EXPECT_EQ(made.todayVisits, 1);
    EXPECT_EQ(made.current, (UsageSummary::Period{4200, 21, 7, 7}));
    EXPECT_EQ(made.previous, (UsageSummary::Period{2940, 7, 0, 7}));
    ASSERT_TRUE(made.compared);
    EXPECT_EQ(*made.compared, (UsageSummary::Comparison{made.current, 7, made.previous, 7}));
    EXPECT_EQ(made.comparisonStarts, std::nullopt);
    EXPECT_EQ(made.daysOfHistory, 7);
    EXPECT_EQ(made.sites, (std::vector<Row>{{"a", 4200, 21, 600.0, 300.0}, {"b", 0, 0, 0.0, 120.0}}));
    EXPECT_EQ(made.sites[0].change(), "up 5m a day");
    EXPECT_EQ(made.sites[1].change(), "down 2m a day");
    EXPECT_EQ(made.lines, (Lines{"Today so far: 1m, 1 visit",
                                 "1h 10m on your sites, about 10m a day, 3m more than the 7 days before.",
                                 "21 visits, about 3 a day, 2 more than the 7 days before.",
                                 "After a site turned gray, you left within 2 minutes in 7 of 7 visits "
                                 "(0 of 7 the week before)."}));
    EXPECT_EQ(made.menuLine(), "Last 7 days: 1h 10m on your sites\u2026");

    // With nothing listed, every figure is zero, but the history's age stays.
    UsageSummary none = summary({});
    EXPECT_EQ(none.current, UsageSummary::Period{});
    EXPECT_EQ(none.todaySeconds, 0);
    EXPECT_TRUE(none.sites.empty());
    EXPECT_EQ(none.daysOfHistory, 7);
    EXPECT_TRUE(none.compared);
}

TEST_F(Summarising, OnlyCompleteDaysAreCompared) {
    addEach(1, 14, "a", {600, 0, 2, 0, 0});
    addEach(8, 14, "b", {120, 0, 1, 0, 0});
    unwatched(1);
    unwatched(2);
    unwatched(9);
    unwatched(10);
    add(1, "a", {3000, 0, 0, 0, 0});
    UsageSummary five = summary();
    ASSERT_TRUE(five.compared);
    EXPECT_EQ(five.compared->currentDays, 5);
    EXPECT_EQ(five.compared->previousDays, 5);
    EXPECT_EQ(five.compared->current.seconds, 3000);
    EXPECT_EQ(five.current.seconds, 7200) << "all of the last 7 days count in the week's figures";
    EXPECT_EQ(five.sites[0], (Row{"a", 7200, 14, 600.0, 600.0}));
    EXPECT_EQ(five.sites[0].change(), "same");
    EXPECT_EQ(five.sites[1], (Row{"b", 0, 0, 0.0, 120.0}));

    // Four complete days in a week are not enough; the site seen only in the
    // week before then has no row.
    unwatched(3);
    UsageSummary four = summary();
    EXPECT_FALSE(four.compared);
    EXPECT_EQ(four.comparisonStarts, local.start(5, now));
    EXPECT_EQ(four.sites, (std::vector<Row>{{"a", 7200, 14, std::nullopt, std::nullopt}}));
    EXPECT_EQ(four.sites[0].change(), std::nullopt);
    EXPECT_EQ(four.lines[1], "2h on your sites in the last 7 days.");
    EXPECT_EQ(four.lines[2], "14 visits.");
}

TEST_F(Summarising, DaysOfHistoryCountsTheDaysTheHistoryReaches) {
    struct Case {
        Instant began;
        std::int64_t days;
        const char* timeLine;
    };
    for (Case test : {Case{local.start(0, now), 0, nullptr}, Case{local.start(0, now) - 1, 1, "Last 1 day: 1m on your sites."},
                      Case{local.start(-1, now), 1, "Last 1 day: 1m on your sites."},
                      Case{local.start(-2, now) + 60, 2, "Last 2 days: 1m on your sites."},
                      Case{local.start(-7, now) + 60, 7, "1m on your sites in the last 7 days."}}) {
        history.began = test.began;
        history.days.clear();
        add(1, "a", {90, 0, 1, 0, 0});
        UsageSummary made = summary();
        EXPECT_EQ(made.daysOfHistory, test.days);
        EXPECT_FALSE(made.compared);
        if (test.timeLine) {
            ASSERT_EQ(made.lines.size(), 5u);
            EXPECT_EQ(made.lines[1], test.timeLine);
            EXPECT_EQ(made.lines[2], "1 visit.");
            EXPECT_EQ(made.lines[3], "Not enough gray visits yet.");
            EXPECT_EQ(made.menuLine(), "Last 7 days: 1m on your sites\u2026");
        } else {
            EXPECT_EQ(made.lines.size(), 2u);
        }
    }
    history.began.reset();
    EXPECT_EQ(summary().daysOfHistory, 0);
}

TEST_F(Summarising, AveragesAreReadInWholeUnitsWithoutRoundingTimeUp) {
    // 59 s a day now, 90 s a day before: under a minute against one minute.
    addEach(1, 7, "a", {59, 0, 0, 1, 0});
    addEach(8, 14, "a", {90, 0, 0, 1, 1});
    add(3, "a", {0, 0, 3, 0, 0});     // 3 visits in 7 days: 0.43 a day
    add(9, "a", {0, 0, 15, 0, 0});    // 15 visits in 6 complete days: 2.5 a day
    add(10, "a", {0, 0, 5, 0, 0});
    unwatched(10);
    UsageSummary made = summary();
    ASSERT_TRUE(made.compared);
    EXPECT_EQ(made.lines[1], "6m on your sites, under 1m a day, 1m less than the 7 days before.");
    EXPECT_EQ(made.lines[2], "3 visits, under 1 a day, 3 fewer than the 7 days before.");
    EXPECT_EQ(made.lines[3], "After a site turned gray, you left within 2 minutes in 7 of 7 visits "
                             "(6 of 12 the week before).");

    // 119 and 61 seconds a day are both one whole minute.
    history.days.clear();
    addEach(1, 7, "a", {119, 0, 3, 0, 0});
    addEach(8, 14, "a", {61, 0, 3, 0, 0});
    addEach(8, 11, "b", {0, 0, 0, 1, 0});
    addEach(1, 7, "b", {0, 0, 0, 1, 0});
    made = summary();
    EXPECT_EQ(made.sites[0].change(), "same");
    EXPECT_EQ(made.lines[1], "13m on your sites, about 1m a day, the same as the 7 days before.");
    EXPECT_EQ(made.lines[2], "21 visits, about 3 a day, the same as the 7 days before.");
    EXPECT_EQ(made.lines[3], "After a site turned gray, you left within 2 minutes in 7 of 7 visits.")
        << "no bracket for fewer than 5 moments the week before";
    addEach(1, 3, "b", {0, 0, 0, 0, 0});
    history.days[key(1)].sites.clear();
    history.days[key(2)].sites.clear();
    history.days[key(3)].sites.clear();
    EXPECT_EQ(summary().lines[3], "Not enough gray visits yet.");
}

TEST_F(Summarising, RowsWithEqualTimeComeInHostOrder) {
    addEach(1, 2, "c.example", {300, 0, 1, 0, 0});
    addEach(1, 2, "a.example", {300, 0, 1, 0, 0});
    add(1, "b.example", {900, 0, 1, 0, 0});
    add(1, "d.example", {0, 0, 4, 0, 0});
    UsageSummary made = summary({"d.example", "c.example", "b.example", "a.example"});
    std::vector<std::string> order;
    for (const Row& row : made.sites) order.push_back(row.host);
    EXPECT_EQ(order, (std::vector<std::string>{"b.example", "a.example", "c.example"}));
}

}  // namespace
}  // namespace ashview
