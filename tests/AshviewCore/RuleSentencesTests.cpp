#include "AshviewCore/RuleSet.h"
#include "AshviewCore/SiteSettings.h"
#include "AshviewCore/SiteStatus.h"

#include <gtest/gtest.h>

namespace ashview {
namespace {

const Calendar usEastern("gregorian", "America/New_York", "en_US");

SiteSettings settings(WeekdaySet days, GrayTrigger trigger, StayGray stay,
                      std::optional<ActiveHours> hours = std::nullopt) {
    return SiteSettings{hours, std::move(days), trigger, stay};
}

const WeekdaySet weekdays{Weekday::monday, Weekday::tuesday, Weekday::wednesday, Weekday::thursday,
                          Weekday::friday};

TEST(RuleSentences, TellTheWholeRuleWithLocaleTimesInPlainBlanks) {
    SiteSettings office = settings(weekdays, GrayTrigger::afterLimit(20, 5, CountPeriod::day), StayGray::untilLeave(),
                                   ActiveHours{{9, 0}, {17, 0}});
    // en_US writes a narrow no-break space before "AM"; the sentence holds a plain blank.
    EXPECT_EQ(office.sentence(usEastern),
              "Weekdays from 9:00 AM to 5:00 PM, it turns gray after 20 minutes or 5 opens in a day and stays gray "
              "until you leave it.");
    EXPECT_EQ(office.sentence(Calendar("gregorian", "Europe/London", "en_GB")),
              "Weekdays from 09:00 to 17:00, it turns gray after 20 minutes or 5 opens in a day and stays gray "
              "until you leave it.");
    EXPECT_EQ(office.sentence(usEastern).find("\u202F"), std::string::npos);
    EXPECT_EQ(office.sentence(usEastern).find("\u00A0"), std::string::npos);
}

TEST(RuleSentences, NameDayGroupsAndSingleDaysFromTheLocale) {
    GrayTrigger now = GrayTrigger::rightAway();
    StayGray leave = StayGray::untilLeave();
    const std::string rest = ", it turns gray as soon as you open it and stays gray until you leave it.";
    EXPECT_EQ(settings(Weekday::all(), now, leave).sentence(usEastern), "Every day" + rest);
    EXPECT_EQ(settings({Weekday::saturday, Weekday::sunday}, now, leave).sentence(usEastern), "Weekends" + rest);
    EXPECT_EQ(settings({}, now, leave).sentence(usEastern), "No days" + rest);

    WeekdaySet allButSunday = Weekday::all();
    allButSunday.erase(Weekday::sunday);
    EXPECT_EQ(settings(allButSunday, now, leave).sentence(usEastern), "Every day except Sunday" + rest);
    WeekdaySet allButMonday = Weekday::all();
    allButMonday.erase(Weekday::monday);
    EXPECT_EQ(settings(allButMonday, now, leave).sentence(Calendar("gregorian", "Europe/Berlin", "de_DE")),
              "Every day except Montag" + rest);

    // Monday first, whatever the calendar takes as the first day of the week;
    // the first letter is raised even when the locale writes day names in lower case.
    WeekdaySet some{Weekday::sunday, Weekday::wednesday, Weekday::monday};
    EXPECT_EQ(settings(some, now, leave).sentence(usEastern), "Monday, Wednesday, Sunday" + rest);
    EXPECT_EQ(settings(some, now, leave).sentence(Calendar("gregorian", "Europe/Berlin", "de_DE")),
              "Montag, Mittwoch, Sonntag" + rest);
    EXPECT_EQ(settings(some, now, leave).sentence(Calendar("gregorian", "Europe/Paris", "fr_FR")),
              "Lundi, mercredi, dimanche" + rest);
    // Six days that do not start with Monday still name the missing one.
    WeekdaySet allButWednesday = Weekday::all();
    allButWednesday.erase(Weekday::wednesday);
    EXPECT_EQ(settings(allButWednesday, now, leave).sentence(usEastern), "Every day except Wednesday" + rest);
}

TEST(RuleSentences, WriteEveryTriggerAndStayWithHandMadePlurals) {
    StayGray leave = StayGray::untilLeave();
    auto middle = [&](GrayTrigger trigger, StayGray stay) {
        std::string text = settings(Weekday::all(), trigger, stay).sentence(usEastern);
        return text.substr(std::string("Every day, it ").size());
    };
    EXPECT_EQ(middle(GrayTrigger::afterLimit(1, 1, CountPeriod::hour), leave),
              "turns gray after 1 minute or 1 open in an hour and stays gray until you leave it.");
    EXPECT_EQ(middle(GrayTrigger::afterLimit(std::nullopt, 3, CountPeriod::session), StayGray::untilChromeQuits()),
              "turns gray after 3 opens in one browsing session and stays gray until you quit your browsers.");
    EXPECT_EQ(middle(GrayTrigger::afterLimit(45, std::nullopt, CountPeriod::day), StayGray::forMinutes(1)),
              "turns gray after 45 minutes in a day, stays gray for 1 minute, then color for the rest of that "
              "visit.");
    EXPECT_EQ(middle(GrayTrigger::rightAway(), StayGray::forMinutes(15)),
              "turns gray as soon as you open it, stays gray for 15 minutes, then color for the rest of that "
              "visit.");
    EXPECT_EQ(middle(GrayTrigger::afterLimit(0, std::nullopt, CountPeriod::hour), leave),
              "turns gray after 0 minutes in an hour and stays gray until you leave it.");
}

TEST(RuleSentences, ClockTimesComeFromTheLocaleAndExistOnEveryDay) {
    Calendar british("gregorian", "Europe/London", "en_GB");
    Calendar german("gregorian", "Europe/Berlin", "de_DE");
    EXPECT_EQ((ClockTime{0, 5}).formatted(usEastern), "12:05 AM");
    EXPECT_EQ((ClockTime{23, 59}).formatted(usEastern), "11:59 PM");
    EXPECT_EQ((ClockTime{7, 30}).formatted(british), "07:30");
    EXPECT_EQ((ClockTime{7, 30}).formatted(german), "07:30");
    // 2:30 does not exist in New York on the spring-forward night, nor does
    // 1:30 in Berlin; a rule's time is no date and is shown as set.
    EXPECT_EQ((ClockTime{2, 30}).formatted(usEastern), "2:30 AM");
    EXPECT_EQ((ClockTime{2, 30}).formatted(german), "02:30");
    // Fields that no validated rule holds carry over like a clock's.
    EXPECT_EQ((ClockTime{25, 0}).formatted(german), "01:00");
    EXPECT_EQ((ClockTime{-1, 0}).formatted(german), "23:00");
    EXPECT_EQ((ClockTime{INT64_MAX, INT64_MIN}).formatted(german).size(), 5U);
}

TEST(RuleSentences, SummaryAddsThePinAndWhetherTheRuleIsOffToday) {
    RuleSet rules = RuleSet::fresh();
    rules.newSiteDefaults.days = weekdays;
    SiteRule rule = rules.addSite("news.example");
    Instant monday = *usEastern.date(2026, 3, 9, 10);  // the day after the clocks moved
    Instant sunday = *usEastern.date(2026, 3, 8, 10);
    const std::string sentence = rules.newSiteDefaults.sentence(usEastern);

    EXPECT_EQ(rules.summary(rule, monday, usEastern), sentence);
    EXPECT_EQ(rules.summary(rule, sunday, usEastern), sentence + " Off today.");

    rule.pin = SitePin::grayThisSite;
    EXPECT_EQ(rules.summary(rule, monday, usEastern), sentence + " Keep gray is on.");
    rule.pin = SitePin::showInColor;
    EXPECT_EQ(rules.summary(rule, sunday, usEastern), sentence + " Keep in color is on. Off today.");

    // A shared day off silences the rule, in the user's local date: 02:00 UTC
    // on March 10 is still March 9 in New York.
    rules.addDayOff(DayOff{Uuid::random(), "Holiday", 3, 9, std::nullopt});
    rule.pin = SitePin::followSettings;
    EXPECT_EQ(rules.summary(rule, *Calendar::gregorianUTC().date(2026, 3, 10, 2), usEastern),
              sentence + " Off today.");
    EXPECT_EQ(rules.summary(rule, *usEastern.date(2026, 3, 10, 10), usEastern), sentence);

    // The summary tells the settings that apply: an app's session count reads as a day.
    SiteRule app = rules.addApp("com.example.chat", "Chat");
    rules.updateSettings(app.id, settings(Weekday::all(), GrayTrigger::afterLimit(std::nullopt, 2, CountPeriod::session),
                                          StayGray::untilChromeQuits()));
    app = *rules.app("com.example.chat");
    EXPECT_EQ(rules.summary(app, usEastern.addingDays(monday, 7), usEastern),
              "Every day, it turns gray after 2 opens in a day and stays gray until you leave it.");
}

TEST(RuleSentences, DisplayNamesPreferTheRuleThenDropTheAppPrefix) {
    RuleSet rules = RuleSet::fresh();
    rules.addApp("com.example.chat", "Chat");
    rules.addSite("example.com");
    EXPECT_EQ(rules.displayName("app:com.example.chat"), "Chat");
    EXPECT_EQ(rules.displayName("example.com"), "example.com");
    EXPECT_EQ(rules.displayName("app:com.example.tool"), "com.example.tool");
    EXPECT_EQ(rules.displayName("www.example.com"), "www.example.com");
    EXPECT_EQ(rules.displayName("app:"), "");
}

}  // namespace
}  // namespace ashview

namespace ashview {
namespace {

TEST(SiteStatusText, NamesWhyASiteLooksAsItDoes) {
    using State = SiteStatus::State;
    const std::vector<std::pair<State, std::string>> words{
        {State::keptGray, "Kept gray"},   {State::keptInColor, "Kept in color"},
        {State::dayOff, "Off today: day off"}, {State::notToday, "Off today"},
        {State::outsideHours, "Off now: outside its hours"}, {State::gray, "Gray now"},
    };
    for (const auto& [state, text] : words) {
        // The figures don't change the words of these states.
        EXPECT_EQ((SiteStatus{state, 2, 3, 4, 5, CountPeriod::hour}).text(), text);
    }
    EXPECT_EQ((SiteStatus{State::color, 0, std::nullopt, 0, std::nullopt, std::nullopt}).text(),
              "Turns gray when you open it");
}

TEST(SiteStatusText, ShowsTheUsedFiguresCappedAtTheLimitMinutesFirst) {
    using State = SiteStatus::State;
    EXPECT_EQ((SiteStatus{State::color, 0, std::nullopt, 7, 5, CountPeriod::day}).text(),
              "In color: 5 of 5 minutes today");
    EXPECT_EQ((SiteStatus{State::color, 1, 2, 3, 10, CountPeriod::hour}).text(),
              "In color: 3 of 10 minutes and 1 of 2 opens this hour");
    // The plural follows the limit, not the count used.
    EXPECT_EQ((SiteStatus{State::color, 0, 1, 0, 1, CountPeriod::session}).text(),
              "In color: 0 of 1 minute and 0 of 1 open this browsing session");
    EXPECT_EQ((SiteStatus{State::color, 9, 3, 42, std::nullopt, CountPeriod::hour}).text(),
              "In color: 3 of 3 opens this hour");
}

}  // namespace
}  // namespace ashview
