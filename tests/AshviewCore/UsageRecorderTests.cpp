#include "AshviewCore/UsageRecorder.h"

#include <gtest/gtest.h>

namespace ashview {
namespace {

using Totals = UsageHistory::Totals;
using Sightings = std::vector<SiteSighting>;

SiteSighting shown(const std::string& host) { return {host, true, false, false}; }
SiteSighting grayed(const std::string& host) { return {host, true, true, true}; }
SiteSighting pinnedGray(const std::string& host) { return {host, true, true, false}; }
SiteSighting hidden(const std::string& host) { return {host, false, false, false}; }

/// A run that started at 10:00 on a Tuesday in Berlin; `pass(t, ...)` is a
/// read pass `t` seconds later.
class Recording : public ::testing::Test {
protected:
    Calendar calendar{"gregorian", "Europe/Berlin", "en_GB"};
    Instant start = *calendar.date(2026, 5, 12, 10);
    std::string day = "2026-05-12";
    UsageRecorder recorder{UsageHistory{}};

    void SetUp() override { recorder.appStarted(start, std::nullopt, calendar); }

    void pass(double t, const Sightings& sightings, bool observing = true) {
        recorder.record(sightings, start + t, observing, calendar);
    }
    /// Passes every 10 seconds from `from` up to and including `to`.
    void passes(double from, double to, const Sightings& sightings, bool observing = true) {
        for (double t = from; t <= to; t += 10) pass(t, sightings, observing);
    }
    Totals totals(const std::string& host, const std::string& on) const {
        const auto& days = recorder.history().days;
        auto found = days.find(on);
        if (found == days.end()) return {};
        auto site = found->second.sites.find(host);
        return site == found->second.sites.end() ? Totals{} : site->second;
    }
    Totals totals(const std::string& host) const { return totals(host, day); }
};

TEST_F(Recording, CreditsTheGapToWhatWasOnScreenAtItsStart) {
    pass(0, {shown("a"), hidden("b")});
    EXPECT_EQ(totals("a"), (Totals{0, 0, 1, 0, 0})) << "the first pass counts a visit but no time";
    pass(15, {hidden("a"), shown("b")});
    EXPECT_EQ(totals("a").seconds, 15);
    EXPECT_EQ(totals("b").seconds, 0);
    pass(30.5, {hidden("a"), shown("b")});
    EXPECT_EQ(totals("b").seconds, 0) << "a gap over 15 seconds counts nothing";
    pass(40, {hidden("a"), shown("b")});
    EXPECT_EQ(totals("b").seconds, 9.5);
    pass(35, {hidden("a"), shown("b")});
    EXPECT_EQ(totals("b").seconds, 9.5) << "a clock that went back counts nothing";
    pass(45, {hidden("a"), pinnedGray("b")});
    pass(55, {hidden("a"), pinnedGray("b")});
    EXPECT_EQ(totals("b").seconds, 29.5);
    EXPECT_EQ(totals("b").graySeconds, 10);
    // Gray by the user's own hand makes no gray moment, however long it lasts.
    passes(65, 400, {hidden("a"), pinnedGray("b")});
    passes(410, 450, {hidden("a"), hidden("b")});
    EXPECT_EQ(totals("b").grayLeft + totals("b").grayStayed, 0);
    EXPECT_EQ(totals("b").visits, 1);
    EXPECT_TRUE(recorder.hasUnsavedChanges());
    recorder.markSaved();
    EXPECT_FALSE(recorder.hasUnsavedChanges());
    EXPECT_EQ(recorder.history().lastRun, (UsageHistory::Run{start + 450, std::nullopt}));
}

TEST_F(Recording, ALongGapIsNeitherTimeNorALeaving) {
    pass(0, {shown("a")});
    pass(600, {shown("a")});
    pass(610, {shown("a")});
    EXPECT_EQ(totals("a"), (Totals{10, 0, 1, 0, 0}));
}

TEST_F(Recording, TimeIsSplitAtLocalMidnightAndVisitsStayOnTheirDay) {
    // In the night to the 25-hour day, and with a calendar of another system.
    Calendar japanese("japanese", "Europe/Berlin", "ja_JP");
    Instant beforeMidnight = *calendar.date(2026, 10, 24, 23, 59, 55);
    recorder.record({shown("a")}, beforeMidnight, true, japanese);
    recorder.record({shown("a")}, beforeMidnight + 10, true, japanese);
    EXPECT_EQ(totals("a", "2026-10-24"), (Totals{5, 0, 1, 0, 0}));
    EXPECT_EQ(totals("a", "2026-10-25"), (Totals{5, 0, 0, 0, 0}));
}

TEST_F(Recording, AVisitSurvivesShortAbsences) {
    // 29 seconds away: the same visit.
    pass(0, {shown("a")});
    pass(10, {hidden("a")});
    pass(39, {shown("a")});
    EXPECT_EQ(totals("a").visits, 1);
    // 30 seconds away: a new one.
    pass(50, {hidden("a")});
    pass(80, {shown("a")});
    EXPECT_EQ(totals("a").visits, 2);
    // While paused, every site is out of view; the pause's first pass still
    // credits the time before it.
    double before = totals("a").seconds;
    pass(90, {shown("a")}, false);
    EXPECT_EQ(totals("a").seconds, before + 10);
    pass(100, {shown("a")}, false);
    EXPECT_EQ(totals("a").seconds, before + 10);
    pass(115, {shown("a")});
    EXPECT_EQ(totals("a").visits, 2) << "back within the grace after a short pause";
    passes(125, 200, {shown("a")}, false);
    pass(205, {shown("a")});
    EXPECT_EQ(totals("a").visits, 3);
}

TEST_F(Recording, LeavingWithinTwoMinutesCountsOnlyOnceTheyAreOver) {
    // Gray just before midnight; the user leaves after 119 seconds.
    Instant gray = *calendar.date(2026, 5, 12, 23, 58);
    auto at = [&](double t, const Sightings& sightings) { recorder.record(sightings, gray + t, true, calendar); };
    for (double t = 0; t <= 110; t += 10) at(t, {grayed("a")});
    at(119, {hidden("a")});
    at(125, {hidden("a")});
    at(140, {hidden("a")});
    EXPECT_EQ(totals("a").grayLeft, 0) << "the visit has not ended yet";
    EXPECT_EQ(recorder.trackedHosts(), std::vector<std::string>{"a"});
    at(149, {hidden("a")});
    EXPECT_EQ(totals("a", "2026-05-12"), (Totals{119, 119, 1, 1, 0})) << "on the day the moment happened";
    EXPECT_EQ(totals("a", "2026-05-13"), (Totals{0, 0, 0, 0, 0}));
}

TEST_F(Recording, AMomentIsDecidedWhenItsTwoMinutesEnd) {
    // Leaves at once; decided as left when the grace ends, counted at 120 s.
    pass(0, {grayed("a")});
    pass(5, {hidden("a")});
    passes(15, 115, {hidden("a")});
    EXPECT_EQ(totals("a").grayLeft, 0);
    pass(119.9, {hidden("a")});
    EXPECT_EQ(totals("a").grayLeft, 0);
    pass(120, {hidden("a")});
    EXPECT_EQ(totals("a").grayLeft, 1);

    // Away at 100, back at 115 within the grace: same visit, stayed at 120.
    pass(200, {grayed("b")});
    passes(210, 290, {grayed("b")});
    pass(300, {hidden("b")});
    pass(315, {grayed("b")});
    EXPECT_EQ(totals("b").grayStayed, 0);
    pass(320, {grayed("b")});
    EXPECT_EQ(totals("b"), (Totals{105, 105, 1, 0, 1}));
    // Gray on every pass of a visit makes one moment, not one per pass.
    passes(330, 600, {grayed("b")});
    EXPECT_EQ(totals("b").grayStayed, 1);
    EXPECT_EQ(totals("b").visits, 1);

    // Out of view at 110 and no pass until 200: left, by when it went away.
    pass(1000, {grayed("c")});
    passes(1010, 1100, {grayed("c")});
    pass(1110, {hidden("c")});
    pass(1200, {hidden("c")});
    EXPECT_EQ(totals("c").grayLeft, 1);
    EXPECT_EQ(totals("c").grayStayed, 0);
}

TEST_F(Recording, APauseInsideTheTwoMinutesDropsTheMoment) {
    pass(0, {grayed("a")});
    pass(5, {hidden("a")});
    pass(40, {hidden("a")});  // visit over, moment decided as left
    pass(100, {hidden("a")}, false);
    passes(110, 400, {hidden("a")});
    EXPECT_EQ(totals("a").grayLeft + totals("a").grayStayed, 0);

    // A pause that begins after the two minutes counts the moment.
    pass(500, {grayed("b")});
    passes(510, 620, {grayed("b")});
    pass(630, {grayed("b")}, false);
    EXPECT_EQ(totals("b").grayStayed, 1);
}

TEST_F(Recording, ASiteLeftOffTheListGoesThroughTheGraceAndTheTwoMinutes) {
    pass(0, {grayed("a"), shown("b")});
    pass(10, {shown("b")});
    EXPECT_EQ(totals("a").seconds, 10) << "on screen at the start of the gap";
    pass(20, {shown("b")});
    EXPECT_EQ(totals("a").seconds, 10);
    pass(30, {shown("b")});
    EXPECT_EQ(recorder.trackedHosts(), (std::vector<std::string>{"a", "b"}));
    pass(40, {shown("b")});  // the visit of a ends; its moment waits
    EXPECT_EQ(recorder.trackedHosts(), (std::vector<std::string>{"a", "b"}));
    passes(50, 110, {shown("b")});
    EXPECT_EQ(totals("a").grayLeft, 0);
    pass(120, {shown("b")});
    EXPECT_EQ(totals("a").grayLeft, 1);
    EXPECT_EQ(recorder.trackedHosts(), std::vector<std::string>{"b"});
    // A host named twice in one pass counts once.
    pass(130, {shown("b"), shown("b")});
    EXPECT_EQ(totals("b").seconds, 130);
}

TEST_F(Recording, ClearingStartsAfreshWhileSitesAreOnScreen) {
    pass(0, {shown("a")});
    pass(10, {shown("a")});
    recorder.markSaved();
    recorder.clearHistory(start + 12);
    EXPECT_TRUE(recorder.hasUnsavedChanges());
    EXPECT_EQ(recorder.history().began, start + 12);
    EXPECT_TRUE(recorder.history().days.empty());
    pass(15, {shown("a")});
    EXPECT_EQ(totals("a"), (Totals{0, 0, 1, 0, 0}));
}

/// The gap between two runs, by how the first one ended.
TEST(UsageRecorder, AccountsForTheTimeBetweenRuns) {
    Calendar calendar("gregorian", "Europe/Berlin", "en_GB");
    Instant evening = *calendar.date(2026, 5, 12, 22);
    Instant morning = *calendar.date(2026, 5, 13, 8);
    auto after = [&](std::optional<UsageHistory::Stop> stop, std::optional<Instant> bootTime) {
        UsageHistory history;
        history.began = evening - 86400;
        history.lastRun = UsageHistory::Run{evening, stop};
        UsageRecorder recorder(history);
        recorder.appStarted(morning, bootTime, calendar);
        return recorder.history();
    };
    auto unobserved = [](const UsageHistory& history, const std::string& day) {
        auto found = history.days.find(day);
        return found == history.days.end() ? 0.0 : found->second.unobservedSeconds;
    };

    UsageHistory quit = after(UsageHistory::Stop{evening, UsageHistory::StopReason::userQuit}, std::nullopt);
    EXPECT_EQ(unobserved(quit, "2026-05-12"), 2 * 3600.0);
    EXPECT_EQ(unobserved(quit, "2026-05-13"), 8 * 3600.0);
    EXPECT_EQ(quit.began, evening - 86400);
    EXPECT_EQ(quit.lastRun, (UsageHistory::Run{morning, std::nullopt}));

    UsageHistory shutdown = after(UsageHistory::Stop{evening, UsageHistory::StopReason::shutdown}, morning - 60);
    EXPECT_TRUE(shutdown.days.empty());

    for (std::optional<Instant> boot : {std::optional<Instant>{}, std::optional<Instant>{evening - 600}}) {
        UsageHistory crashed = after(std::nullopt, boot);
        EXPECT_EQ(unobserved(crashed, "2026-05-12") + unobserved(crashed, "2026-05-13"), 10 * 3600.0);
    }
    UsageHistory rebooted = after(std::nullopt, evening + 3600);
    EXPECT_EQ(unobserved(rebooted, "2026-05-12"), 3600.0);
    EXPECT_EQ(unobserved(rebooted, "2026-05-13"), 0.0);

    // The first start of a new document begins counting; old days go.
    UsageHistory fresh;
    fresh.days["2024-01-01"].unobservedSeconds = 5;
    UsageRecorder recorder(fresh);
    recorder.appStarted(morning, std::nullopt, calendar);
    EXPECT_EQ(recorder.history().began, morning);
    EXPECT_TRUE(recorder.history().days.empty());
    EXPECT_TRUE(recorder.hasUnsavedChanges());
}

TEST(UsageRecorder, StoppingRecordsTheStopAndLosesUndecidedMoments) {
    Calendar calendar("gregorian", "UTC", "en_US");
    Instant start = *calendar.date(2026, 5, 12, 10);
    UsageRecorder recorder{UsageHistory{}};
    recorder.appStarted(start, std::nullopt, calendar);
    recorder.record({grayed("a")}, start, true, calendar);
    recorder.record({grayed("a")}, start + 10, true, calendar);
    recorder.appStopping(start + 12, UsageHistory::StopReason::shutdown, calendar);
    EXPECT_EQ(recorder.history().lastRun,
              (UsageHistory::Run{start + 12, UsageHistory::Stop{start + 12, UsageHistory::StopReason::shutdown}}));
    EXPECT_TRUE(recorder.trackedHosts().empty());
    EXPECT_EQ(recorder.history().days.at("2026-05-12").sites.at("a"), (Totals{10, 10, 1, 0, 0}));

    // Next run: no gap counted, no moment carried over, a new visit.
    recorder.appStarted(start + 300, std::nullopt, calendar);
    for (double t = 300; t <= 600; t += 10) recorder.record({grayed("a")}, start + t, true, calendar);
    EXPECT_EQ(recorder.history().days.at("2026-05-12").sites.at("a"), (Totals{310, 310, 2, 0, 1}));
    EXPECT_EQ(recorder.history().days.at("2026-05-12").unobservedSeconds, 0);
}

}  // namespace
}  // namespace ashview
