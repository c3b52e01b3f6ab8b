#include "TrackerFixture.h"

namespace ashview {
namespace {

using State = SiteStatus::State;

TEST_F(Tracking, StatusFiguresCountTheRulesPeriodAndTruncateMinutes) {
    list("example.com", settings(GrayTrigger::afterLimit(2, std::nullopt, CountPeriod::hour)));
    auto status = [&](double t) { return tracker.status(rules.sites[0], rules, start + t, calendar); };
    EXPECT_EQ(status(0), (SiteStatus{State::color, 0, std::nullopt, 0, 2, CountPeriod::hour})) << "a rule not yet seen";

    for (double t = 0; t <= 105; t += 15) pass(t, {shown(1, "example.com")});
    pass(119.9, {shown(1, "example.com")});
    EXPECT_EQ(status(119.9).minutesUsed, 1) << "119.9 seconds are one whole minute";
    EXPECT_EQ(status(119.9).state, State::color) << "2 minutes are not used up";

    rules.sites[0].settings = settings(GrayTrigger::afterLimit(std::nullopt, 1, CountPeriod::hour));
    pass(125, {shown(1, "example.com"), shown(2, "example.com")});
    EXPECT_EQ(status(125), (SiteStatus{State::color, 1, 1, 2, std::nullopt, CountPeriod::hour}))
        << "minutes are reported without a minutes limit";
    EXPECT_EQ(status(3725).opensUsed, 0) << "exactly an hour ago";
    EXPECT_EQ(status(3724.999).opensUsed, 1);

    for (double t = 130; t <= 3600; t += 10) pass(t, {shown(1, "example.com")});
    EXPECT_EQ(status(5400).minutesUsed, 30) << "of a span from 90 to 30 minutes ago, the last hour holds 30 minutes";

    rules.sites[0].settings = settings(GrayTrigger::rightAway());
    EXPECT_EQ(status(3600), (SiteStatus{State::color, 0, std::nullopt, 0, std::nullopt, std::nullopt}));
}

TEST_F(Tracking, StatusStateGivesTheFirstReasonThatHolds) {
    SiteRule& rule = list("example.com", settings(GrayTrigger::rightAway(), StayGray::untilLeave(),
                                                  ActiveHours{{9, 0}, {17, 0}}, {Weekday::tuesday}));
    pass(0, {shown(1, "example.com")});
    VisitTracker before = tracker;
    auto state = [&](Instant when) { return tracker.status(rule, rules, when, calendar).state; };
    EXPECT_EQ(state(start), State::gray);
    EXPECT_EQ(state(start + 7 * 3600), State::outsideHours) << "17:00";
    EXPECT_EQ(state(start + 86400), State::notToday);
    rules.daysOff.push_back(DayOff{Uuid::random(), "Holiday", 5, 12, 2026});
    EXPECT_EQ(state(start), State::dayOff);
    rule.pin = SitePin::grayThisSite;
    EXPECT_EQ(state(start), State::keptGray);
    rule.pin = SitePin::showInColor;
    EXPECT_EQ(state(start), State::keptInColor);
    EXPECT_EQ(tracker, before) << "reading the status changes nothing";

    rule.pin = SitePin::followSettings;
    rules.daysOff.clear();
    pass(5, {});
    EXPECT_EQ(state(start + 5), State::color);
}

TEST_F(Tracking, StatusOfAnAppCountsItsDayWhereTheRuleSaysSession) {
    list("app:com.apple.Music", settings(GrayTrigger::afterLimit(std::nullopt, 5, CountPeriod::session)));
    BrowserWindow music{WindowKey{"com.apple.Music", 1}, "app:com.apple.Music", true};
    pass(0, {});
    pass(1, {music});
    tracker.browserQuit();
    tracker.restore(tracker.snapshot(start + 2, std::nullopt), start + 2, false);
    SiteStatus status = tracker.status(rules.sites[0], rules, start + 2, calendar);
    EXPECT_EQ(status.period, CountPeriod::day);
    EXPECT_EQ(status.opensUsed, 1) << "the day's open, though the session counts are gone";
}

}  // namespace
}  // namespace ashview
