#include "AshviewCore/Usage/UsageSummary.h"

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
    void add(long from, long to, const std::string& host, Totals totals) {
        for (long daysAgo = from; daysAgo <= to; ++daysAgo)
            history.update(host, key(daysAgo), [&](Totals& day) { day.add(totals); });
    }
    void unwatched(long daysAgo) { history.days[key(daysAgo)].unobservedSeconds = 3600.5; }
    UsageSummary summary(const std::vector<std::string>& hosts = {"a", "b"}) const {
        return UsageSummary::make(history, hosts, now, calendar);
    }
};

TEST(UsageSummaryText, DurationsAreWholeMinutesAndHoursNeverRoundedUp) {
    for (auto [seconds, text] : {std::pair<double, const char*>{59.9, "<1m"}, {-600, "<1m"}, {119, "1m"},
                                 {3599, "59m"}, {7200, "2h"}, {7559, "2h 5m"}, {360060, "100h 1m"}}) {
        EXPECT_EQ(UsageSummary::duration(seconds), text) << seconds;
    }
    auto until = [](std::vector<bool> complete) { return UsageSummary::daysUntilComparison(complete); };
    EXPECT_EQ(until(std::vector<bool>(15, true)), 1);
    EXPECT_EQ(until(std::vector<bool>(15, false)), 13);
    EXPECT_EQ(until({false, false, false, false, true, true, true, true, true, true, true, true, true, true, true}), 6);
}

TEST_F(Summarising, AHistoryThatBeganTodayShowsTodayAndWhenComparisonsStart) {
    history.began = now - 3600;
    add(0, 0, "a", {330, 0, 2, 0, 0});
    add(0, 0, "unlisted", {9999, 0, 9, 0, 0});
    UsageSummary made = summary();
    EXPECT_EQ(made.daysOfHistory, 0);
    EXPECT_EQ(made.comparisonStarts, local.start(13, now));
    EXPECT_EQ(made.lines, (Lines{"Today so far: 5m, 2 visits", "Comparisons start on Apr 15, 2026"}));
    EXPECT_EQ(made.menuLine(), "Today so far: 5m\u2026");
    Calendar german("gregorian", "Europe/Berlin", "de_DE");
    EXPECT_EQ(UsageSummary::make(history, {"a"}, now, german).lines.back(), "Comparisons start on 15.04.2026");
}

TEST_F(Summarising, TwoFullWeeksAreComparedSiteBySite) {
    add(0, 0, "a", {90, 0, 1, 0, 0});
    add(1, 7, "a", {600, 100, 3, 1, 0});
    add(8, 14, "a", {300, 0, 1, 0, 1});
    add(8, 14, "b", {120, 0, 0, 0, 0});
    add(15, 15, "a", {99999, 0, 99, 0, 0});
    UsageSummary made = summary({"b", "a", "a"});
    EXPECT_EQ(made.current, (UsageSummary::Period{4200, 21, 7, 7}));
    EXPECT_EQ(made.previous, (UsageSummary::Period{2940, 7, 0, 7}));
    EXPECT_EQ(made.compared, (UsageSummary::Comparison{made.current, 7, made.previous, 7}));
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
    UsageSummary none = summary({});
    EXPECT_EQ(none.current, UsageSummary::Period{});
    EXPECT_TRUE(none.sites.empty());
    EXPECT_EQ(none.daysOfHistory, 7);
}

TEST_F(Summarising, OnlyCompleteDaysAreAveragedAndFiveOfEachAreNeeded) {
    add(1, 14, "a", {600, 0, 2, 0, 0});
    add(8, 14, "b", {120, 0, 1, 0, 0});
    for (long daysAgo : {1, 2, 9, 10}) unwatched(daysAgo);
    add(1, 1, "a", {3000, 0, 0, 0, 0});
    UsageSummary five = summary();
    EXPECT_EQ(five.compared->currentDays, 5);
    EXPECT_EQ(five.sites, (std::vector<Row>{{"a", 7200, 14, 600.0, 600.0}, {"b", 0, 0, 0.0, 120.0}}));
    EXPECT_EQ(five.sites[0].change(), "same");

    unwatched(3);
    UsageSummary four = summary();
    EXPECT_EQ(four.compared, std::nullopt);
    EXPECT_EQ(four.comparisonStarts, local.start(5, now));
    EXPECT_EQ(four.sites, (std::vector<Row>{{"a", 7200, 14, std::nullopt, std::nullopt}}));
    EXPECT_EQ(four.lines, (Lines{"Today so far: <1m, 0 visits", "2h on your sites in the last 7 days.", "14 visits.",
                                 "Not enough gray visits yet.", "Comparisons start on Apr 7, 2026"}));
    for (auto [began, days, line] : {std::tuple<Instant, long, const char*>{local.start(0, now), 0,
                                                                            "Comparisons start on Apr 14, 2026"},
                                     {local.start(0, now) - 1, 1, "Last 1 day: 2h on your sites."},
                                     {local.start(-2, now) + 60, 2, "Last 2 days: 2h on your sites."},
                                     {local.start(-6, now) + 60, 6, "Last 6 days: 2h on your sites."}}) {
        history.began = began;
        UsageSummary made = summary();
        EXPECT_EQ(made.daysOfHistory, days);
        EXPECT_EQ(made.lines[1], line);
    }
}

TEST_F(Summarising, GrayVisitsAreToldFromFiveOnEachSide) {
    add(1, 4, "a", {60, 0, 1, 1, 0});
    add(8, 12, "a", {60, 0, 1, 0, 1});
    EXPECT_EQ(summary().lines[3], "Not enough gray visits yet.");
    add(5, 5, "a", {60, 0, 1, 1, 0});
    EXPECT_EQ(summary().lines[3],
              "After a site turned gray, you left within 2 minutes in 5 of 5 visits (0 of 5 the week before).");
}

TEST_F(Summarising, AveragesAreReadInWholeUnits) {
    add(1, 7, "a", {59, 0, 0, 1, 0});  // under a minute a day, against 90 seconds
    add(8, 14, "a", {90, 0, 0, 1, 1});
    add(3, 3, "a", {0, 0, 3, 0, 0});   // 0.43 visits a day, against 2.5 over 6 days
    add(9, 10, "a", {0, 0, 15, 0, 0});
    unwatched(10);
    UsageSummary made = summary();
    EXPECT_EQ(made.lines[1], "6m on your sites, under 1m a day, 1m less than the 7 days before.");
    EXPECT_EQ(made.lines[2], "3 visits, under 1 a day, 3 fewer than the 7 days before.");
    EXPECT_EQ(made.lines[3], "After a site turned gray, you left within 2 minutes in 7 of 7 visits (6 of 12 the week before).");

    history.days.clear();
    add(1, 7, "b", {119, 0, 3, 1, 0});
    add(8, 14, "b", {61, 0, 3, 0, 0});
    add(8, 11, "b", {0, 0, 0, 1, 0});
    add(1, 7, "c", {119, 0, 0, 0, 0});
    made = summary({"c", "b"});
    EXPECT_EQ(made.sites[0].host, "b") << "equal time: host order";
    EXPECT_EQ(made.sites[0].change(), "same") << "119 and 61 seconds are both one whole minute";
    EXPECT_EQ(made.lines[1], "27m on your sites, about 3m a day, 2m more than the 7 days before.");
    EXPECT_EQ(made.lines[2], "21 visits, about 3 a day, the same as the 7 days before.");
    EXPECT_EQ(made.lines[3], "After a site turned gray, you left within 2 minutes in 7 of 7 visits.");
}

}  // namespace
}  // namespace ashview
