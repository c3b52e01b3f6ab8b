#include "AshviewCore/Usage/UsageRecorder.h"

#include <gtest/gtest.h>

namespace ashview {
namespace {

using Totals = UsageHistory::Totals;
using Sightings = std::vector<SiteSighting>;
using StopReason = UsageHistory::StopReason;

SiteSighting shown(const std::string& host) { return {host, true, false, false}; }
SiteSighting grayed(const std::string& host) { return {host, true, true, true}; }
SiteSighting pinnedGray(const std::string& host) { return {host, true, true, false}; }
SiteSighting hidden(const std::string& host) { return {host, false, false, false}; }

/// A run that started at 10:00 on 12 May 2026 in Berlin; `pass(t, ...)` is a
/// read pass `t` seconds later.
class Recording : public ::testing::Test {
protected:
    Calendar calendar{"gregorian", "Europe/Berlin", "en_GB"};
    Instant start = *calendar.date(2026, 5, 12, 10);
    UsageRecorder recorder{UsageHistory{}};

    void SetUp() override { recorder.appStarted(start, std::nullopt, calendar); }
    void pass(double t, const Sightings& sightings, bool observing = true) {
        recorder.record(sightings, start + t, observing, calendar);
    }
    /// Passes every 10 seconds from `from` through `to`.
    void passes(double from, double to, const Sightings& sightings, bool observing = true) {
        for (double t = from; t <= to; t += 10) pass(t, sightings, observing);
    }
    Totals totals(const std::string& host, const std::string& day = "2026-05-12") const {
        auto found = recorder.history().days.find(day);
        if (found == recorder.history().days.end() || !found->second.sites.count(host)) return {};
        return found->second.sites.at(host);
    }
};

TEST_F(Recording, CreditsEachGapToWhatWasOnScreenAtItsStart) {
    pass(0, {shown("a"), hidden("b")});
    EXPECT_EQ(totals("a"), (Totals{0, 0, 1, 0, 0})) << "the first pass counts a visit but no time";
    pass(15, {hidden("a"), pinnedGray("b")});
    pass(30.5, {hidden("a"), pinnedGray("b")});
    pass(40, {hidden("a"), pinnedGray("b")});
    pass(35, {hidden("a"), pinnedGray("b")});
    EXPECT_EQ(totals("a").seconds, 15);
    EXPECT_EQ(totals("b"), (Totals{9.5, 9.5, 1, 0, 0})) << "no gap over 15 s, no clock going back";
    pass(600, {shown("b")});
    EXPECT_EQ(totals("b").visits, 1) << "a long gap is no leaving";
    // Gray by the user's hand makes no gray moment, however long it lasts.
    passes(610, 900, {pinnedGray("b")});
    passes(910, 1100, {hidden("b")});
    EXPECT_EQ(totals("b").grayLeft + totals("b").grayStayed, 0);
    EXPECT_EQ(recorder.history().lastRun, (UsageHistory::Run{start + 1100, std::nullopt}));

    // Across midnight into the 25-hour day, with a calendar of another system.
    Calendar japanese("japanese", "Europe/Berlin", "ja_JP");
    Instant late = *calendar.date(2026, 10, 24, 23, 59, 55);
    recorder.record({shown("c")}, late, true, japanese);
    recorder.record({shown("c")}, late + 10, true, japanese);
    EXPECT_EQ(totals("c", "2026-10-24"), (Totals{5, 0, 1, 0, 0}));
    EXPECT_EQ(totals("c", "2026-10-25"), (Totals{5, 0, 0, 0, 0}));
}

TEST_F(Recording, AVisitSurvivesAbsencesShorterThanTheGrace) {
    pass(0, {shown("a")});
    pass(10, {hidden("a")});
    pass(39, {shown("a")});
    EXPECT_EQ(totals("a").visits, 1);
    pass(50, {hidden("a")});
    pass(80, {shown("a")});
    EXPECT_EQ(totals("a").visits, 2);
    // A pause hides every site; its first pass still credits the time before.
    double before = totals("a").seconds;
    passes(90, 100, {shown("a")}, false);
    EXPECT_EQ(totals("a").seconds, before + 10);
    pass(115, {shown("a")});
    EXPECT_EQ(totals("a").visits, 2);
}

TEST_F(Recording, AGrayMomentCountsOnItsDayOnlyOnceItsTwoMinutesAreOver) {
    // Gray at 23:58, gone after exactly 120 s: left (judged by when it went,
    // not when the grace ended), counted on the day it happened.
    Instant gray = *calendar.date(2026, 5, 12, 23, 58);
    for (double t : {0.0, 60.0, 110.0}) recorder.record({grayed("a")}, gray + t, true, calendar);
    for (double t : {120.0, 130.0, 149.0}) recorder.record({hidden("a")}, gray + t, true, calendar);
    EXPECT_EQ(totals("a").grayLeft, 0);
    recorder.record({hidden("a")}, gray + 150, true, calendar);
    EXPECT_EQ(totals("a"), (Totals{10, 10, 1, 1, 0}));

    // Leaves at once: decided at 35 s, but not counted before 120 s.
    pass(0, {grayed("b")});
    passes(5, 115, {hidden("b")});
    pass(119.9, {hidden("b")});
    EXPECT_EQ(totals("b").grayLeft, 0);
    pass(120, {hidden("b")});
    EXPECT_EQ(totals("b").grayLeft, 1);

    // Away at 100, back at 115: the same visit, stayed at 120; one moment only.
    pass(200, {grayed("c")});
    passes(210, 290, {grayed("c")});
    pass(300, {hidden("c")});
    pass(315, {grayed("c")});
    EXPECT_EQ(totals("c").grayStayed, 0);
    passes(320, 600, {grayed("c")});
    EXPECT_EQ(totals("c"), (Totals{385, 385, 1, 0, 1}));
}

TEST_F(Recording, APauseInsideTheTwoMinutesDropsTheMoment) {
    pass(0, {grayed("a")});
    pass(5, {hidden("a")});
    pass(40, {hidden("a")});
    pass(100, {hidden("a")}, false);
    passes(110, 300, {hidden("a")});
    EXPECT_EQ(totals("a").grayLeft, 0);
    // After the two minutes, a pause counts it.
    passes(500, 620, {grayed("b")});
    pass(630, {grayed("b")}, false);
    EXPECT_EQ(totals("b").grayStayed, 1);
}

TEST_F(Recording, ASiteLeftOffTheListGoesThroughTheGraceAndTheTwoMinutes) {
    pass(0, {grayed("a"), shown("b")});
    passes(10, 110, {shown("b"), shown("b")});
    EXPECT_EQ(totals("a"), (Totals{10, 10, 1, 0, 0}));
    EXPECT_EQ(totals("b").seconds, 110) << "a host named twice counts once";
    EXPECT_EQ(recorder.trackedHosts(), (std::vector<std::string>{"a", "b"}));
    pass(120, {shown("b")});
    EXPECT_EQ(totals("a").grayLeft, 1);
    EXPECT_EQ(recorder.trackedHosts(), std::vector<std::string>{"b"});

    // Another site in its place: the list is as long as before, yet the
    // first one is out of view from that very pass.
    passes(130, 160, {shown("c")});
    pass(165, {shown("b")});
    EXPECT_EQ(totals("b").visits, 2);

    // A clear while on screen: no time carried over, a new visit.
    recorder.markSaved();
    recorder.clearHistory(start + 185);
    EXPECT_TRUE(recorder.hasUnsavedChanges());
    EXPECT_EQ(recorder.history().began, start + 185);
    pass(190, {shown("b")});
    EXPECT_EQ(totals("b"), (Totals{0, 0, 1, 0, 0}));
}

TEST(UsageRecorder, AccountsForTheTimeBetweenRunsByHowTheLastEnded) {
    Calendar calendar("gregorian", "Europe/Berlin", "en_GB");
    Instant evening = *calendar.date(2026, 5, 12, 22);
    Instant morning = *calendar.date(2026, 5, 13, 8);
    auto unseenAfter = [&](std::optional<UsageHistory::Stop> stop, std::optional<Instant> bootTime) {
        UsageHistory history;
        history.lastRun = UsageHistory::Run{evening, stop};
        history.days["2020-01-01"] = {};
        UsageRecorder recorder(history);
        recorder.appStarted(morning, bootTime, calendar);
        EXPECT_EQ(recorder.history().began, morning);
        EXPECT_EQ(recorder.history().lastRun, (UsageHistory::Run{morning, std::nullopt}));
        std::vector<double> unseen;
        for (const auto& [key, day] : recorder.history().days) unseen.push_back(day.unobservedSeconds);
        return unseen;
    };
    EXPECT_EQ(unseenAfter(UsageHistory::Stop{evening, StopReason::userQuit}, std::nullopt),
              (std::vector<double>{7200, 28800}));
    EXPECT_EQ(unseenAfter(UsageHistory::Stop{evening, StopReason::shutdown}, std::nullopt), std::vector<double>{});
    EXPECT_EQ(unseenAfter(std::nullopt, std::nullopt), (std::vector<double>{7200, 28800}));
    EXPECT_EQ(unseenAfter(std::nullopt, evening - 600), (std::vector<double>{7200, 28800}));
    EXPECT_EQ(unseenAfter(std::nullopt, evening + 3600), std::vector<double>{3600});

    // A stop keeps the figures, loses undecided moments and counts no gap.
    UsageRecorder recorder{UsageHistory{}};
    recorder.appStarted(evening, std::nullopt, calendar);
    recorder.record({grayed("a")}, evening, true, calendar);
    recorder.record({grayed("a")}, evening + 10, true, calendar);
    recorder.appStopping(evening + 12, StopReason::shutdown, calendar);
    EXPECT_EQ(recorder.history().lastRun,
              (UsageHistory::Run{evening + 12, UsageHistory::Stop{evening + 12, StopReason::shutdown}}));
    recorder.appStarted(evening + 300, std::nullopt, calendar);
    for (double t = 300; t <= 600; t += 10) recorder.record({grayed("a")}, evening + t, true, calendar);
    EXPECT_EQ(recorder.history().days.at("2026-05-12"), (UsageHistory::Day{{{"a", {310, 310, 2, 0, 1}}}, 0}));
}

TEST(UsageRecorder, UnwatchedTimeBeforeTheKeptDaysCostsNothing) {
    Calendar calendar("gregorian", "Europe/Berlin", "en_GB");
    LocalDays local(calendar);
    Instant now = *calendar.date(2026, 5, 13, 8);
    auto daysAfterStart = [&](UsageHistory::Run run, std::optional<Instant> bootTime) {
        UsageHistory history;
        history.began = Instant{0};
        history.lastRun = run;
        UsageRecorder recorder(history);
        recorder.appStarted(now, bootTime, calendar);
        EXPECT_EQ(recorder.history().began, Instant{0}) << "a start keeps when counting began";
        return recorder.history().days;
    };
    auto splitWholeThenPruned = [&](Instant from, Instant to) {
        UsageHistory history;
        history.addUnobserved(from, to, local);
        history.prune(now, local);
        return history.days;
    };
    // 500 days and a bit, over both changes of the clocks: the kept days come
    // out as if the whole gap had been split.
    Instant longAgo = now - 500 * 86400.0 - 5000;
    auto whole = splitWholeThenPruned(longAgo, now);
    ASSERT_EQ(whole.size(), 400u);
    EXPECT_EQ(daysAfterStart({longAgo, UsageHistory::Stop{longAgo, StopReason::userQuit}}, std::nullopt), whole);
    EXPECT_EQ(daysAfterStart({longAgo, std::nullopt}, std::nullopt), whole);
    Instant boot = now - 200 * 86400.0;
    EXPECT_EQ(daysAfterStart({longAgo, std::nullopt}, boot), splitWholeThenPruned(longAgo, boot));
    EXPECT_TRUE(daysAfterStart({longAgo, std::nullopt}, now - 450 * 86400.0).empty());

    // A damaged file 95,000 years back: split day by day, that would take
    // minutes and gigabytes.
    Instant damaged{-3e12};
    EXPECT_EQ(daysAfterStart({damaged, std::nullopt}, std::nullopt), whole);
    EXPECT_EQ(daysAfterStart({damaged, UsageHistory::Stop{damaged, StopReason::userQuit}}, std::nullopt), whole);
}

}  // namespace
}  // namespace ashview
