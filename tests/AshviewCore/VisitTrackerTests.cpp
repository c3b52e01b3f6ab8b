#include "TrackerFixture.h"

namespace ashview {
namespace {

using Phase = SiteUsage::Phase;

/// Windows 1 to `count`, all on screen and all showing example.com.
std::vector<BrowserWindow> several(int count) {
    std::vector<BrowserWindow> windows;
    for (int window = 1; window <= count; ++window) windows.push_back(shown(window, "example.com"));
    return windows;
}

TEST_F(Tracking, CountsAnOpenForEachWindowNewlySeenOnScreen) {
    list("example.com", opensPerHour(100));
    std::vector<BrowserWindow> windows{shown(1, "example.com"), shown(2, "www.example.com"), shown(3, "example.com")};
    pass(0, windows);
    EXPECT_TRUE(usage("example.com").opens.empty()) << "a first pass takes open windows as they are";
    EXPECT_EQ(usage("example.com").sessionOpens, 0);

    windows.push_back(shown(4, "example.com"));
    pass(5, windows);
    EXPECT_EQ(opens("example.com"), 1);

    windows.insert(windows.end(), {shown(5, "example.com"), shown(6, "example.com")});
    pass(10, windows);
    EXPECT_EQ(usage("example.com").opens, (std::vector<Instant>{start + 5, start + 10, start + 10}));
    EXPECT_EQ(usage("example.com").sessionOpens, 3);

    windows.push_back(behind(7, "example.com"));
    pass(15, windows);
    EXPECT_EQ(opens("example.com"), 3) << "a window out of sight is not opened yet";
    windows.back().isOnScreen = true;
    pass(20, windows);
    EXPECT_EQ(opens("example.com"), 4) << "it is counted when it first comes on screen";

    windows[0].host = "unlisted.org";
    pass(25, windows);
    windows[0].host = std::nullopt;
    pass(30, windows);
    windows[0].host = "example.com";
    pass(35, windows);
    EXPECT_EQ(opens("example.com"), 5) << "leaving for an unlisted page and returning opens the site again";

    rules.sites.clear();
    pass(40, windows);
    EXPECT_TRUE(tracker.usage().empty()) << "a site taken off the list loses its counts";
}

TEST_F(Tracking, WindowTurningToAnotherSiteOutOfSightCountsUnderTheSiteItShowsWhenSeen) {
    for (std::string host : {"a.com", "b.com", "c.com"}) list(host, opensPerHour(100));
    pass(0, {shown(1, "a.com")});
    pass(5, {behind(1, "b.com")});
    EXPECT_EQ(tracker.siteByWindow().at(key(1)), "a.com");
    pass(10, {behind(1, "c.com")});
    EXPECT_EQ(tracker.siteByWindow().at(key(1)), "a.com");
    pass(15, {shown(1, "c.com")});
    EXPECT_EQ(opens("a.com") + opens("b.com"), 0);
    EXPECT_EQ(opens("c.com"), 1);
    EXPECT_EQ(tracker.siteByWindow().at(key(1)), "c.com");

    pass(20, {shown(1, "c.com"), behind(2, "a.com")});
    EXPECT_FALSE(tracker.siteByWindow().contains(key(2))) << "a new window out of sight is not remembered";
    pass(25, {shown(1, "c.com"), shown(2, "a.com")});
    EXPECT_EQ(opens("a.com"), 1);
}

TEST_F(Tracking, FirstPassAfterRestoreCountsNoOpenByEitherRoad) {
    // Active from the first pass on, with a window on screen: both the new
    // window and the rule coming into force would count on a later pass.
    list("example.com", settings(GrayTrigger::afterLimit(std::nullopt, 100, CountPeriod::hour), StayGray::untilLeave(),
                                 ActiveHours{{10, 0}, {11, 0}}));
    pass(0, several(1));
    pass(5, several(2));
    EXPECT_EQ(opens("example.com"), 1);

    tracker.restore(tracker.snapshot(start + 5, std::nullopt), start + 10, true);
    EXPECT_FALSE(tracker.hasStartingPoint());
    pass(10, several(3));
    EXPECT_EQ(opens("example.com"), 1);
    EXPECT_EQ(usage("example.com").sessionOpens, 1);
    pass(15, several(4));
    EXPECT_EQ(opens("example.com"), 2);
}

TEST_F(Tracking, OpensCountOnlyWhileTheRuleIsActive) {
    list("example.com", settings(GrayTrigger::afterLimit(std::nullopt, 100, CountPeriod::hour), StayGray::untilLeave(),
                                 ActiveHours{{10, 1}, {11, 0}}));
    pass(0, several(1));
    pass(50, several(2));
    EXPECT_TRUE(usage("example.com").opens.empty()) << "an open outside the rule's hours is no open";
    EXPECT_FALSE(usage("example.com").clockRunning);
    pass(60, several(2));
    EXPECT_EQ(opens("example.com"), 1) << "on screen when the hours begin: one open";
    pass(65, several(2));
    EXPECT_EQ(opens("example.com"), 1);
    pass(3600, several(3));
    EXPECT_EQ(opens("example.com"), 1) << "11:00 is outside";
}

TEST_F(Tracking, OpensLimitTurnsTheSiteGrayOnThePassThatCountsThePassingOpen) {
    list("example.com", opensPerHour(3));
    pass(0, {});
    for (int open = 1; open <= 3; ++open) EXPECT_EQ(first(open, several(open)), Appearance::color) << "open " << open;
    VisitTracker::Appearances result = pass(4, several(4));
    for (const BrowserWindow& window : several(4)) EXPECT_EQ(result.at(window.id), Appearance::gray);
    EXPECT_EQ(usage("example.com").phase, Phase::gray(start + 4));
    EXPECT_EQ(sighting("example.com"), (SiteSighting{"example.com", true, true, true}));
}

TEST_F(Tracking, UntilLeaveStaysGrayWhileAnyWindowIsOpenAndTheLimitWaitsForAWindow) {
    list("example.com", settings(GrayTrigger::rightAway()));
    list("later.com", opensPerHour(5));
    pass(0, {});
    EXPECT_EQ(usage("example.com").phase, Phase::color()) << "no window: color, limit or not";
    EXPECT_EQ(first(1, {shown(1, "example.com"), shown(2, "later.com")}), Appearance::gray);
    EXPECT_EQ(usage("later.com").phase, Phase::color()) << "a window under the limit stays in color";
    EXPECT_FALSE(usage("example.com").latched) << "only staying gray until the browsers quit latches";
    pass(2, {behind(1, "example.com")});
    EXPECT_EQ(usage("example.com").phase, Phase::gray(start + 1)) << "a hidden window keeps the visit alive";
    pass(3, {});
    EXPECT_EQ(usage("example.com").phase, Phase::color());
    EXPECT_FALSE(usage("example.com").latched);
}

TEST_F(Tracking, ForMinutesGraysOnTheWallClockThenLeavesTheRestOfTheVisitInColor) {
    list("example.com", settings(GrayTrigger::rightAway(), StayGray::forMinutes(10)));
    pass(0, {});
    EXPECT_EQ(first(10, {shown(1, "example.com")}), Appearance::gray);
    EXPECT_EQ(first(609, {shown(1, "example.com")}), Appearance::gray);
    EXPECT_EQ(first(610, {shown(1, "example.com")}), Appearance::color);
    EXPECT_EQ(usage("example.com").phase, Phase::colorForRestOfVisit());
    EXPECT_EQ(first(611, {behind(1, "example.com")}), Appearance::color) << "the limit is not looked at";
    pass(612, {});
    EXPECT_EQ(usage("example.com").phase, Phase::color());

    EXPECT_EQ(first(613, {shown(2, "example.com")}), Appearance::gray) << "the next visit is judged again";
    pass(614, {});
    EXPECT_EQ(usage("example.com").phase, Phase::gray(start + 613)) << "leaving does not end the gray time";
    EXPECT_EQ(first(620, {shown(3, "example.com")}), Appearance::gray);
    pass(1212, {});
    EXPECT_TRUE(usage("example.com").phase.grayPhase());
    pass(1213, {});
    EXPECT_EQ(usage("example.com").phase, Phase::color()) << "gray time over with no window: plain color";
}

TEST_F(Tracking, UntilChromeQuitsLatchesPastTheLimitAndThroughInactiveHours) {
    SiteRule& rule = list("example.com", opensPerHour(1, StayGray::untilChromeQuits()));
    pass(0, {});
    pass(1, {shown(1, "example.com")});
    EXPECT_EQ(first(2, {shown(1, "example.com"), shown(2, "example.com")}), Appearance::gray);
    EXPECT_TRUE(usage("example.com").latched);
    pass(3, {});
    EXPECT_EQ(usage("example.com").phase, Phase::color());
    EXPECT_TRUE(usage("example.com").latched);

    rule.settings = opensPerHour(100, StayGray::untilChromeQuits());
    EXPECT_EQ(first(4, {shown(3, "example.com")}), Appearance::gray) << "latched: the limit is not looked at";

    // Out of its hours the site shows in color, and the latch waits.
    rule.settings.hours = ActiveHours{{12, 0}, {13, 0}};
    EXPECT_EQ(first(5, {shown(3, "example.com")}), Appearance::color);
    EXPECT_TRUE(usage("example.com").latched);
    EXPECT_EQ(first(7200, {shown(3, "example.com")}), Appearance::gray) << "gray again as the hours begin";

    rules.sites[0].settings = opensPerHour(100);
    pass(7201, {shown(3, "example.com")});
    EXPECT_FALSE(usage("example.com").latched) << "another way of staying gray drops the latch";
    pass(7202, {});
    EXPECT_EQ(first(7203, {shown(4, "example.com")}), Appearance::color);
}

TEST_F(Tracking, RequestsAndPinsDecideTheAnswerInTheirOrder) {
    const Appearance gray = Appearance::gray, color = Appearance::color;
    list("gray.com", settings(GrayTrigger::rightAway()));
    list("pinned.com", opensPerHour(100), SitePin::grayThisSite);
    list("colored.com", settings(GrayTrigger::rightAway()), SitePin::showInColor);
    requests[key(9)] = WindowRequest::grayThisWindow;
    std::vector<BrowserWindow> windows{shown(1, "gray.com"), shown(2, "pinned.com"), shown(3, "colored.com"),
                                       shown(9, "unlisted.org"), shown(10, std::nullopt)};
    // A request grays even an unlisted window.
    EXPECT_EQ(pass(0, windows), (VisitTracker::Appearances{{key(1), gray}, {key(2), gray}, {key(3), color},
                                                           {key(9), gray}, {key(10), Appearance::notListed}}));
    EXPECT_EQ(tracker.sightings().size(), 3u) << "sightings are per rule";
    EXPECT_EQ(sighting("pinned.com"), (SiteSighting{"pinned.com", true, true, false}));
    EXPECT_EQ(sighting("colored.com"), (SiteSighting{"colored.com", true, false, false}));

    showInColorUntil = start + 100;
    auto result = pass(5, windows);
    EXPECT_EQ(result.at(key(1)), color);
    EXPECT_EQ(result.at(key(2)), color) << "show-in-color overrides the pins";
    EXPECT_EQ(result.at(key(9)), gray) << "but not a window's request";
    EXPECT_TRUE(usage("gray.com").phase.grayPhase()) << "the phase goes on underneath";
    EXPECT_EQ(pass(100, windows).at(key(1)), Appearance::gray) << "show-in-color ends at its instant";

    requests[key(11)] = WindowRequest::grayThisWindow;
    requests[key(12)] = WindowRequest::grayThisWindow;
    windows.push_back(shown(11, "gray.com"));
    windows.push_back(shown(12, "colored.com"));
    pass(105, windows);
    EXPECT_EQ(sighting("gray.com"), (SiteSighting{"gray.com", true, true, false})) << "partly the user's doing";
    EXPECT_EQ(sighting("colored.com"), (SiteSighting{"colored.com", true, false, false}));

    rules.daysOff.push_back(DayOff{Uuid::random(), "Holiday", 5, 12, std::nullopt});
    windows.push_back(shown(13, "pinned.com"));
    result = pass(110, windows);
    EXPECT_EQ(result.at(key(1)), Appearance::color);
    EXPECT_EQ(result.at(key(2)), Appearance::gray) << "a gray pin holds on a day off";
    EXPECT_EQ(opens("pinned.com"), 0) << "no opens on a day off";
    EXPECT_FALSE(usage("gray.com").clockRunning);

    rules.sites.clear();
    result = pass(115, windows);
    EXPECT_EQ(result.at(key(1)), Appearance::notListed);
    EXPECT_EQ(result.at(key(11)), Appearance::gray);
    EXPECT_TRUE(tracker.sightings().empty());
}

TEST_F(Tracking, CreditsOnlyGapsUpToFifteenSecondsToWhatWasOnScreenAtTheirStart) {
    list("example.com", settings(GrayTrigger::afterLimit(100, std::nullopt, CountPeriod::hour)));
    pass(0, {shown(1, "example.com")});
    pass(15, {shown(1, "example.com")});
    EXPECT_EQ(usage("example.com").onScreen, (std::vector<DateInterval>{{start, start + 15}}));
    pass(30.1, {shown(1, "example.com")});
    EXPECT_EQ(usage("example.com").sessionSeconds, 15.0) << "15.1 seconds credit nothing, not even 15";
    pass(45, {shown(1, "example.com")});
    pass(45, {shown(1, "example.com")});
    pass(40, {shown(1, "example.com")});
    EXPECT_EQ(usage("example.com").onScreen, (std::vector<DateInterval>{{start, start + 15}, {start + 30.1, start + 45}}))
        << "the same instant and a clock set back credit nothing";
    pass(50, {});
    EXPECT_EQ(usage("example.com").onScreen.back(), (DateInterval{start + 30.1, start + 50}));
    EXPECT_NEAR(usage("example.com").sessionSeconds, 15.0 + 14.9 + 10.0, 1e-6) << "an overlapping span counts whole";
    pass(55, {shown(1, "example.com")});
    EXPECT_NEAR(usage("example.com").sessionSeconds, 39.9, 1e-6) << "off screen at the span's start";
    pass(60, {});
    EXPECT_NEAR(usage("example.com").sessionSeconds, 44.9, 1e-6) << "on screen at the span's start";
}

TEST_F(Tracking, HourAndMinuteLimitsAreExactAtTheirBoundaries) {
    list("example.com", opensPerHour(1));
    pass(0, {});
    pass(1, several(1));
    VisitTracker later = tracker;
    EXPECT_EQ(first(3601, several(2)), Appearance::color) << "an open exactly an hour ago is out of the hour";
    std::swap(tracker, later);
    EXPECT_EQ(first(3600.5, several(2)), Appearance::gray);

    // Minutes from a fresh start, with the earlier seconds out of the hour.
    rules.sites[0].settings = settings(GrayTrigger::afterLimit(10, 5, CountPeriod::hour));
    pass(3601, {});
    pass(8000, {});
    for (double t = 8010; t <= 8600; t += 15) EXPECT_EQ(first(t, {shown(3, "example.com")}), Appearance::color);
    EXPECT_EQ(first(8609, {shown(3, "example.com")}), Appearance::color) << "599 seconds";
    EXPECT_EQ(first(8610, {shown(3, "example.com")}), Appearance::gray) << "600.0 seconds use up 10 minutes";
}

TEST_F(Tracking, DropsEntriesOlderThanTheHorizonButKeepsSpansReachingIntoItWhole) {
    list("example.com", settings(GrayTrigger::afterLimit(std::nullopt, 100, CountPeriod::day)));
    pass(0, {});
    pass(1, {shown(1, "example.com")});
    pass(10, {shown(1, "example.com")});
    pass(90001, {shown(1, "example.com")});
    EXPECT_EQ(usage("example.com").opens, std::vector<Instant>{start + 1}) << "exactly at the cut-off stays";
    pass(90001.5, {shown(1, "example.com")});
    EXPECT_TRUE(usage("example.com").opens.empty());
    EXPECT_EQ(usage("example.com").onScreen.front(), (DateInterval{start + 1, start + 10}));
    pass(90010.5, {shown(1, "example.com")});
    EXPECT_EQ(usage("example.com").onScreen.size(), 1u);
    EXPECT_EQ(usage("example.com").onScreen.front(), (DateInterval{start + 90001, start + 90010.5}));
}

TEST_F(Tracking, DayCountsRunFromTheLocalStartOfDayAlsoOnDaysOfTwentyThreeHours) {
    list("example.com", settings(GrayTrigger::afterLimit(std::nullopt, 1, CountPeriod::day)));
    start = *calendar.date(2026, 3, 28, 23, 30);
    pass(0, {});
    pass(1, {shown(1, "example.com")});
    pass(1800 - 1, {});
    Instant midnight = *calendar.date(2026, 3, 29, 0, 0);
    pass(midnight - start, {shown(2, "example.com")});
    EXPECT_EQ(opens("example.com"), 2);
    EXPECT_EQ(usage("example.com").phase, Phase::color()) << "an open exactly at the start of the day is not in it";
    pass(midnight - start + 1, {});
    Instant lateEvening = *calendar.date(2026, 3, 29, 23, 30);
    EXPECT_EQ(lateEvening - midnight, 22.5 * 3600) << "the clocks went forward";
    EXPECT_EQ(first(lateEvening - start, {shown(3, "example.com")}), Appearance::color)
        << "only the open of this evening counts in this day, not the rolling 24 hours";
    EXPECT_EQ(first(lateEvening - start + 1, {shown(3, "example.com"), shown(4, "example.com")}), Appearance::gray);
}

TEST_F(Tracking, HoursFollowTheWallClockOnDaysTheClocksChange) {
    // Hours over midnight and the weekday they belong to are pinned with the policy.
    list("skipped.com", settings(GrayTrigger::rightAway(), StayGray::untilLeave(), ActiveHours{{1, 30}, {3, 30}}));
    list("repeated.com", settings(GrayTrigger::rightAway(), StayGray::untilLeave(), ActiveHours{{2, 0}, {2, 30}}));
    std::vector<BrowserWindow> windows{shown(1, "skipped.com"), shown(2, "repeated.com")};
    auto expect = [&](Instant when, Appearance skipped, Appearance repeated) {
        auto result = tracker.update(rules, windows, when, calendar, requests, std::nullopt);
        EXPECT_EQ(result.at(key(1)), skipped) << calendar.components(when).hour;
        EXPECT_EQ(result.at(key(2)), repeated) << calendar.components(when).hour;
    };
    const Appearance gray = Appearance::gray, color = Appearance::color;
    // 29 March 2026: 02:00 becomes 03:00.
    Instant beforeJump = *calendar.date(2026, 3, 29, 1, 59, 59);
    expect(beforeJump, gray, color);
    expect(beforeJump + 1, gray, color);
    EXPECT_EQ(calendar.components(beforeJump + 1).hour, 3);
    expect(*calendar.date(2026, 3, 29, 3, 30), color, color);
    // 25 October 2026: 03:00 summer time becomes 02:00 again.
    Instant firstTime = *calendar.date(2026, 10, 25, 0, 0) + 2.25 * 3600;
    expect(firstTime, gray, gray);
    expect(firstTime + 3600, gray, gray);
    EXPECT_EQ(calendar.components(firstTime + 3600).hour, 2);
    expect(firstTime + 3600 + 900, gray, color);
}

TEST_F(Tracking, BrowserQuitEndsTheSessionOfSitesAndLeavesAppsAlone) {
    list("example.com", settings(GrayTrigger::afterLimit(std::nullopt, 1, CountPeriod::session),
                                 StayGray::untilChromeQuits()));
    list("app:com.apple.Music", settings(GrayTrigger::rightAway()));
    BrowserWindow music{WindowKey{"com.apple.Music", 7}, "app:com.apple.Music", true};
    pass(0, {music});
    pass(1, {music, shown(1, "example.com")});
    pass(2, {music, shown(1, "example.com"), shown(2, "example.com")});
    pass(3, {music, shown(1, "example.com"), shown(2, "example.com")});
    ASSERT_TRUE(usage("example.com").latched);
    SiteUsage app = usage("app:com.apple.Music");
    SiteUsage site = usage("example.com");
    EXPECT_GT(app.sessionSeconds, 0);

    tracker.browserQuit();
    EXPECT_EQ(usage("app:com.apple.Music"), app);
    EXPECT_EQ(usage("example.com"), (SiteUsage{.opens = site.opens, .onScreen = site.onScreen}))
        << "hour and day counts stay, the rest starts afresh";
    EXPECT_EQ(tracker.siteByWindow().size(), 1u);
    EXPECT_EQ(sighting("example.com"), (SiteSighting{"example.com", false, false, false}));
    EXPECT_EQ(sighting("app:com.apple.Music"), (SiteSighting{"app:com.apple.Music", true, true, true}));
    EXPECT_TRUE(tracker.hasStartingPoint());

    EXPECT_EQ(first(4, {shown(1, "example.com"), music}), Appearance::color) << "judged by the limit again";
    EXPECT_EQ(usage("example.com").sessionOpens, 1) << "a window seen again is a new open";
    EXPECT_EQ(first(5, {shown(1, "example.com"), shown(2, "example.com"), music}), Appearance::gray);
}

}  // namespace
}  // namespace ashview
