#include "AshviewCore/Rules/RuleSet.h"
#include "AshviewCore/Rules/SiteSettings.h"
#include "AshviewCore/Tracking/SiteStatus.h"

#include <gtest/gtest.h>

namespace ashview {
namespace {

const Calendar usEastern("gregorian", "America/New_York", "en_US");
const Calendar german("gregorian", "Europe/Berlin", "de_DE");

SiteSettings settings(WeekdaySet days, GrayTrigger trigger = GrayTrigger::rightAway(),
                      StayGray stay = StayGray::untilLeave(), std::optional<ActiveHours> hours = std::nullopt) {
    return SiteSettings{hours, std::move(days), trigger, stay};
}
WeekdaySet allBut(Weekday missing) {
    WeekdaySet days = Weekday::all();
    days.erase(missing);
    return days;
}

const WeekdaySet weekdays{Weekday::monday, Weekday::tuesday, Weekday::wednesday, Weekday::thursday, Weekday::friday};

TEST(RuleSentences, TellTheWholeRuleWithLocaleTimesInPlainBlanks) {
    SiteSettings office = settings(weekdays, GrayTrigger::afterLimit(20, 5, CountPeriod::day), StayGray::untilLeave(),
                                   ActiveHours{{9, 0}, {17, 0}});
    // en_US writes a narrow no-break space before "AM"; the sentence holds a plain blank.
    EXPECT_EQ(office.sentence(usEastern),
              "Weekdays from 9:00 AM to 5:00 PM, it turns gray after 20 minutes or 5 opens in a day and stays gray "
              "until you leave it.");
}

TEST(RuleSentences, NameDayGroupsAndSingleDaysFromTheLocale) {
    const std::string rest = ", it turns gray as soon as you open it and stays gray until you leave it.";
    const Calendar french("gregorian", "Europe/Paris", "fr_FR");
    // Monday first, whatever the calendar takes as the first day of the week;
    // the first letter is raised even when the locale writes day names in lower case.
    const WeekdaySet some{Weekday::sunday, Weekday::wednesday, Weekday::monday};
    const std::tuple<WeekdaySet, const Calendar&, const char*> cases[] = {
        {Weekday::all(), usEastern, "Every day"},
        {{Weekday::saturday, Weekday::sunday}, usEastern, "Weekends"},
        {{}, usEastern, "No days"},
        {allBut(Weekday::wednesday), usEastern, "Every day except Wednesday"},
        {some, usEastern, "Monday, Wednesday, Sunday"},
        {some, french, "Lundi, mercredi, dimanche"},
    };
    for (const auto& [days, calendar, start] : cases) EXPECT_EQ(settings(days).sentence(calendar), start + rest);
}

TEST(RuleSentences, WriteEveryTriggerAndStayWithHandMadePlurals) {
    const StayGray leave = StayGray::untilLeave();
    const std::tuple<GrayTrigger, StayGray, const char*> cases[] = {
        {GrayTrigger::afterLimit(1, 1, CountPeriod::hour), leave,
         "turns gray after 1 minute or 1 open in an hour and stays gray until you leave it."},
        {GrayTrigger::afterLimit(std::nullopt, 3, CountPeriod::session), StayGray::untilChromeQuits(),
         "turns gray after 3 opens in one browsing session and stays gray until you quit your browsers."},
        {GrayTrigger::afterLimit(45, std::nullopt, CountPeriod::day), StayGray::forMinutes(1),
         "turns gray after 45 minutes in a day, stays gray for 1 minute, then color for the rest of that visit."},
        {GrayTrigger::rightAway(), StayGray::forMinutes(15),
         "turns gray as soon as you open it, stays gray for 15 minutes, then color for the rest of that visit."},
        {GrayTrigger::afterLimit(0, std::nullopt, CountPeriod::hour), leave,
         "turns gray after 0 minutes in an hour and stays gray until you leave it."},
    };
    for (const auto& [trigger, stay, middle] : cases)
        EXPECT_EQ(settings(Weekday::all(), trigger, stay).sentence(usEastern), std::string("Every day, it ") + middle);
}

TEST(RuleSentences, ClockTimesComeFromTheLocaleAndExistOnEveryDay) {
    // The locale's own formats are pinned with the whole sentence above.
    // 2:30 does not exist on the spring-forward night in New York; a rule's
    // time is no date and is shown as set.
    EXPECT_EQ((ClockTime{2, 30}).formatted(usEastern), "2:30 AM");
    EXPECT_EQ((ClockTime{0, 5}).formatted(german), "00:05");
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
    rules.addDayOff(DayOff{Uuid::random(), "Holiday", 3, 9, std::nullopt});
    EXPECT_EQ(rules.summary(rule, monday, usEastern), sentence + " Keep in color is on. Off today.");

    // The summary tells the settings that apply: an app's session count reads as a day.
    SiteRule app = rules.addApp("com.example.chat", "Chat");
    rules.updateSettings(app.id, settings(Weekday::all(), GrayTrigger::afterLimit({}, 2, CountPeriod::session),
                                          StayGray::untilChromeQuits()));
    EXPECT_EQ(rules.summary(*rules.app("com.example.chat"), sunday, usEastern),
              "Every day, it turns gray after 2 opens in a day and stays gray until you leave it.");
}

TEST(RuleSentences, DisplayNamesPreferTheRuleThenDropTheAppPrefix) {
    RuleSet rules = RuleSet::fresh();
    rules.addApp("com.example.chat", "Chat");
    rules.addSite("example.com");
    const std::pair<const char*, const char*> cases[] = {
        {"app:com.example.chat", "Chat"}, {"example.com", "example.com"}, {"app:com.example.tool", "com.example.tool"},
        {"www.example.com", "www.example.com"}, {"app:", ""}};
    for (const auto& [key, name] : cases) EXPECT_EQ(rules.displayName(key), name) << key;
}

TEST(SiteStatusText, ShowsTheUsedFiguresCappedAtTheLimitMinutesFirst) {
    using State = SiteStatus::State;
    const std::pair<SiteStatus, const char*> cases[] = {
        // Figures never change the words of the states that are not color.
        {{State::outsideHours, 2, 3, 4, 5, CountPeriod::hour}, "Off now: outside its hours"},
        {{State::color, 0, std::nullopt, 0, std::nullopt, std::nullopt}, "Turns gray when you open it"},
        {{State::color, 0, std::nullopt, 7, 5, CountPeriod::day}, "In color: 5 of 5 minutes today"},
        {{State::color, 1, 2, 3, 10, CountPeriod::hour}, "In color: 3 of 10 minutes and 1 of 2 opens this hour"},
        // The plural follows the limit, not the count used.
        {{State::color, 0, 1, 0, 1, CountPeriod::session},
         "In color: 0 of 1 minute and 0 of 1 open this browsing session"},
        {{State::color, 9, 3, 42, std::nullopt, CountPeriod::hour}, "In color: 3 of 3 opens this hour"},
    };
    for (const auto& [status, text] : cases) EXPECT_EQ(status.text(), text) << text;
}

}  // namespace
}  // namespace ashview
