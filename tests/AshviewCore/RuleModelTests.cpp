#include "AshviewCore/AppKey.h"
#include "AshviewCore/Host.h"
#include "AshviewCore/Policy.h"
#include "AshviewCore/RuleError.h"
#include "AshviewCore/RuleSet.h"
#include "AshviewCore/SiteLookup.h"

#include <gtest/gtest.h>

#include <limits>

namespace ashview {
namespace {

constexpr std::int64_t int64Max = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t int64Min = std::numeric_limits<std::int64_t>::min();

SiteRule rule(std::string host, std::optional<std::string> name = std::nullopt) {
    return SiteRule{Uuid::random(), std::move(host), std::move(name), true, SiteSettings::forNewSites(),
                    SitePin::followSettings};
}

/// The words of the `invalidSettings` that `action` throws, or "" when it
/// throws nothing.
template <class Action>
std::string settingsWords(Action action) {
    try {
        action();
    } catch (const RuleError& error) {
        EXPECT_EQ(error.kind(), RuleError::Kind::invalidSettings);
        return error.message().value_or("<no words>");
    }
    return "";
}

TEST(Host, NormalizeReducesAnAddressToItsLowerCaseHost) {
    struct Case {
        const char* text;
        std::optional<std::string> host;
    };
    const Case cases[] = {
        {"  Example.COM.\n", "example.com"},
        {"HTTPS://Example.com:8443/a/b?c=d#e", "example.com"},
        {"example.com/some/path?q=1", "example.com"},
        {"http://user@mail.example.com", "mail.example.com"},
        {"www.example.com", "www.example.com"},  // no label is dropped
        {"\u00A0\u3000example.org\u2029", "example.org"},
        {"localhost", "localhost"},
        {"exa mple.com", std::nullopt},
        {"...", std::nullopt},
        {"", std::nullopt},
        {" \t\n", std::nullopt},
        {"https://", std::nullopt},
        {"file:///tmp/x", std::nullopt},
        {"bad\xff\xfehost.com", std::nullopt},
        {"exa<mple.com", std::nullopt},
    };
    for (const Case& item : cases) EXPECT_EQ(Host::normalize(item.text), item.host) << item.text;
}

TEST(Host, MatchesWholeLabelsOnly) {
    EXPECT_TRUE(Host::matches("example.com", "example.com"));
    EXPECT_TRUE(Host::matches("news.example.com", "example.com"));
    EXPECT_TRUE(Host::matches("a.b.example.com", "example.com"));
    EXPECT_FALSE(Host::matches("badexample.com", "example.com"));
    EXPECT_FALSE(Host::matches("example.com", "news.example.com"));
    EXPECT_FALSE(Host::matches("example.com.evil.net", "example.com"));
    EXPECT_FALSE(Host::matches(".example.com", "example.com.org"));
}

TEST(AppKey, MakesKeysOnlyFromPlainIdentifiers) {
    EXPECT_EQ(AppKey::make("com.Example-App_2.tool"), "app:com.Example-App_2.tool");
    for (const char* bad : {"", "com.example tool", "com/example", "com.ex\u00E4mple", "app:com.x", "com.x\n"}) {
        EXPECT_EQ(AppKey::make(bad), std::nullopt) << bad;
    }
    EXPECT_TRUE(AppKey::isApp("app:x"));
    EXPECT_FALSE(AppKey::isApp("App:x"));
    EXPECT_EQ(AppKey::bundleID("app:com.ex ample"), "com.ex ample");  // unchecked
    EXPECT_EQ(AppKey::bundleID("app:"), "");
    EXPECT_EQ(AppKey::bundleID("example.com"), std::nullopt);

    SiteRule app = rule("app:com.example.tool", "Tool");
    EXPECT_TRUE(app.isApp());
    EXPECT_EQ(app.bundleID(), "com.example.tool");
    EXPECT_EQ(app.displayName(), "Tool");
    SiteRule site = rule("example.com");
    EXPECT_FALSE(site.isApp());
    EXPECT_EQ(site.bundleID(), std::nullopt);
    EXPECT_EQ(site.displayName(), "example.com");
}

TEST(SiteLookup, LongestListedSuffixWinsAndAgreesWithTheLinearScan) {
    RuleSet rules = RuleSet::fresh();
    rules.sites = {rule("example.com"), rule("mail.example.com"), rule("app:com.example.mail", "Mail"),
                   rule("com")};
    SiteLookup lookup(rules.sites);
    struct Case {
        const char* host;
        std::optional<std::size_t> index;
    };
    const Case cases[] = {
        {"example.com", 0},
        {"www.example.com", 0},
        {"mail.example.com", 1},
        {"inbox.mail.example.com", 1},
        {"https://Inbox.Mail.Example.com:443/x?y", 1},
        {"other.com", 3},
        {"example.org", std::nullopt},
        {"app:com.example.mail", 2},
        {"app:COM.example.mail", std::nullopt},  // app keys are looked up as they stand
        {"app:com.example", std::nullopt},
        {"", std::nullopt},
        {"not a host", std::nullopt},
    };
    for (const Case& item : cases) {
        std::optional<SiteRule> expected;
        if (item.index) expected = rules.sites[*item.index];
        EXPECT_EQ(lookup.site(item.host), expected) << item.host;
        EXPECT_EQ(rules.site(item.host), expected) << item.host;
    }
}

TEST(SiteLookup, FirstOfTwoEqualHostsStays) {
    std::vector<SiteRule> sites = {rule("example.com"), rule("example.com")};
    EXPECT_EQ(SiteLookup(sites).site("example.com")->id, sites[0].id);
    RuleSet rules = RuleSet::fresh();
    rules.sites = sites;
    EXPECT_EQ(rules.site("www.example.com")->id, sites[0].id);
}

TEST(RuleSet, EffectiveSettingsTranslateBrowserOnlyChoicesForApps) {
    SiteSettings browserish = SiteSettings::forNewSites();
    browserish.trigger = GrayTrigger::afterLimit(10, std::nullopt, CountPeriod::session);
    browserish.stayGray = StayGray::untilChromeQuits();

    RuleSet rules = RuleSet::fresh();
    SiteRule app = rule("app:com.example.tool", "Tool");
    app.usesNewSiteDefaults = false;
    app.settings = browserish;
    SiteRule site = app;
    site.host = "example.com";
    site.name.reset();

    SiteSettings forApp = rules.effectiveSettings(app);
    EXPECT_EQ(forApp.trigger, GrayTrigger::afterLimit(10, std::nullopt, CountPeriod::day));
    EXPECT_EQ(forApp.stayGray, StayGray::untilLeave());
    EXPECT_EQ(forApp.days, browserish.days);
    EXPECT_EQ(app.settings, browserish);  // the stored value keeps what the user chose
    EXPECT_EQ(rules.effectiveSettings(site), browserish);

    // Following the defaults: the stale own settings are not consulted.
    rules.newSiteDefaults = browserish;
    site.usesNewSiteDefaults = true;
    site.settings = SiteSettings::forNewSites();
    EXPECT_EQ(rules.effectiveSettings(site), browserish);
    app.usesNewSiteDefaults = true;
    EXPECT_EQ(rules.effectiveSettings(app).trigger.limit()->per, CountPeriod::day);
}

TEST(Weekday, MapsCalendarNumbersAndSymbolsSundayFirst) {
    EXPECT_EQ(Weekday::fromCalendarNumber(1), Weekday::sunday);
    EXPECT_EQ(Weekday::fromCalendarNumber(2), Weekday::monday);
    EXPECT_EQ(Weekday::fromCalendarNumber(7), Weekday::saturday);
    EXPECT_EQ(Weekday::fromCalendarNumber(0), std::nullopt);
    EXPECT_EQ(Weekday::fromCalendarNumber(8), std::nullopt);
    for (Weekday day : Weekday::allCases) {
        EXPECT_EQ(Weekday::fromCalendarNumber(day.calendarNumber()), day);
        EXPECT_EQ(Weekday::named(day.name()), day);
    }
    EXPECT_EQ(Weekday::allCases.front(), Weekday::monday);
    EXPECT_EQ(Weekday::all().size(), 7u);

    Calendar american("gregorian", "America/New_York", "en_US");
    EXPECT_EQ(Weekday::sunday.shortName(american), "Sun");
    EXPECT_EQ(Weekday::monday.shortName(american), "Mon");
    EXPECT_EQ(Weekday::saturday.shortName(american), "Sat");
    // 2026-11-23 03:00 UTC is still Sunday evening in New York, Monday in Tokyo.
    Instant instant = *Calendar::gregorianUTC().date(2026, 11, 23, 3);
    EXPECT_EQ(Weekday::from(instant, american), Weekday::sunday);
    EXPECT_EQ(Weekday::from(instant, Calendar("buddhist", "Asia/Tokyo", "th_TH")), Weekday::monday);
}

TEST(ClockTime, SpansIncludeTheStartMinuteAndRunOverMidnight) {
    Calendar berlin("gregorian", "Europe/Berlin", "de_DE");
    auto at = [&](long hour, long minute, long second = 0) { return *berlin.date(2026, 11, 24, hour, minute, second); };
    ClockTime ten{22, 0}, six{6, 0}, nine{9, 0}, five{17, 0};
    EXPECT_TRUE(ten.contains(at(23, 0), berlin, six));
    EXPECT_TRUE(ten.contains(at(5, 59, 59), berlin, six));
    EXPECT_TRUE(ten.contains(at(22, 0), berlin, six));
    EXPECT_FALSE(ten.contains(at(6, 0), berlin, six));
    EXPECT_FALSE(ten.contains(at(21, 59, 59), berlin, six));
    EXPECT_TRUE(nine.contains(at(9, 0), berlin, five));
    EXPECT_TRUE(nine.contains(at(16, 59), berlin, five));
    EXPECT_FALSE(nine.contains(at(17, 0), berlin, five));
    EXPECT_FALSE(nine.contains(at(8, 59), berlin, five));
    for (long hour : {0L, 9L, 23L}) EXPECT_FALSE(nine.contains(at(hour, 0), berlin, nine)) << hour;
    // Out-of-range values never overflow, whatever the file held.
    EXPECT_TRUE((ClockTime{int64Min, int64Min}).contains(at(12, 0), berlin, ClockTime{int64Max, int64Max}));
}

TEST(Policy, DaysOffWeekdaysAndHoursDecideTogether) {
    Calendar berlin("gregorian", "Europe/Berlin", "en_GB");
    RuleSet rules = RuleSet::fresh();
    SiteSettings settings = SiteSettings::forNewSites();
    Instant fridayNoon = *berlin.date(2026, 11, 27, 12);
    Instant saturdayDawn = *berlin.date(2026, 11, 28, 2);
    EXPECT_TRUE(Policy::ruleIsActive(settings, rules, fridayNoon, berlin));

    settings.days = {Weekday::friday};
    settings.hours = ActiveHours{{22, 0}, {6, 0}};
    // The small hours of Friday night belong to Saturday.
    EXPECT_FALSE(Policy::ruleIsActive(settings, rules, saturdayDawn, berlin));
    EXPECT_TRUE(Policy::ruleIsActive(settings, rules, *berlin.date(2026, 11, 27, 23), berlin));
    EXPECT_FALSE(Policy::ruleIsActive(settings, rules, fridayNoon, berlin));
    settings.days = {Weekday::saturday};
    EXPECT_TRUE(Policy::ruleIsActive(settings, rules, saturdayDawn, berlin));

    settings.days.clear();
    settings.hours.reset();
    EXPECT_FALSE(Policy::ruleIsActive(settings, rules, fridayNoon, berlin));

    settings.days = Weekday::all();
    rules.daysOff.push_back(DayOff{Uuid::random(), "Black Friday", 11, 27, std::nullopt});
    EXPECT_FALSE(Policy::ruleIsActive(settings, rules, fridayNoon, berlin));
    EXPECT_TRUE(Policy::ruleIsActive(settings, rules, saturdayDawn, berlin));
}

TEST(RuleSet, SharedDaysOffMatchTheLocalDateAndTheirYear) {
    Calendar tokyo("gregorian", "Asia/Tokyo", "ja_JP");
    RuleSet rules = RuleSet::fresh();
    rules.daysOff = {DayOff{Uuid::random(), "Trip", 5, 3, 2030}, DayOff{Uuid::random(), "Holiday", 12, 25, {}}};
    EXPECT_TRUE(rules.isSharedDayOff(*tokyo.date(2030, 5, 3, 8), tokyo));
    EXPECT_FALSE(rules.isSharedDayOff(*tokyo.date(2031, 5, 3, 8), tokyo));
    EXPECT_TRUE(rules.isSharedDayOff(*tokyo.date(2031, 12, 25, 8), tokyo));
    EXPECT_TRUE(rules.isSharedDayOff(*tokyo.date(1999, 12, 25, 23, 59), tokyo));
    // 20:00 UTC on December 24 is already December 25 in Tokyo.
    Instant lateEve = *Calendar::gregorianUTC().date(2031, 12, 24, 20);
    EXPECT_TRUE(rules.isSharedDayOff(lateEve, tokyo));
    EXPECT_FALSE(rules.isSharedDayOff(lateEve, Calendar::gregorianUTC()));
}

TEST(SiteSettings, ValidationReportsTheFirstProblemInItsWords) {
    const std::string clock = "Use an hour from 0 to 23 and a minute from 0 to 59.";
    const std::string minutes = "Minutes need to be at least 1.";
    const std::string pick = "Pick minutes, opens, or both.";
    const std::string opens = "Opens need to be at least 1.";
    struct Case {
        std::optional<ActiveHours> hours;
        GrayTrigger trigger;
        StayGray stay;
        std::string words;
    };
    const GrayTrigger fine = GrayTrigger::afterLimit(std::nullopt, 3, CountPeriod::hour);
    const Case cases[] = {
        {ActiveHours{{0, 0}, {23, 59}}, fine, StayGray::untilLeave(), ""},
        {ActiveHours{{9, 0}, {9, 0}}, fine, StayGray::untilLeave(), ""},
        {ActiveHours{{24, 0}, {6, 0}}, fine, StayGray::untilLeave(), clock},
        {ActiveHours{{-1, 0}, {6, 0}}, fine, StayGray::untilLeave(), clock},
        {ActiveHours{{1, 0}, {6, 60}}, fine, StayGray::untilLeave(), clock},
        {ActiveHours{{1, 0}, {int64Min, 0}}, GrayTrigger::afterLimit(0, 0, CountPeriod::day), StayGray::forMinutes(0),
         clock},
        {std::nullopt, GrayTrigger::afterLimit(0, 5, CountPeriod::day), StayGray::untilLeave(), minutes},
        {std::nullopt, GrayTrigger::afterLimit(std::nullopt, std::nullopt, CountPeriod::day), StayGray::untilLeave(),
         pick},
        {std::nullopt, GrayTrigger::afterLimit(5, 0, CountPeriod::day), StayGray::untilLeave(), opens},
        {std::nullopt, GrayTrigger::afterLimit(std::nullopt, -3, CountPeriod::day), StayGray::untilLeave(), opens},
        {std::nullopt, GrayTrigger::rightAway(), StayGray::forMinutes(0), minutes},
        {std::nullopt, GrayTrigger::afterLimit(5, 0, CountPeriod::day), StayGray::forMinutes(0), opens},
        {std::nullopt, GrayTrigger::afterLimit(int64Max, int64Max, CountPeriod::session),
         StayGray::forMinutes(int64Max), ""},
    };
    for (const Case& item : cases) {
        SiteSettings settings{item.hours, {}, item.trigger, item.stay};
        EXPECT_EQ(settingsWords([&] { settings.validate(); }), item.words) << item.words;
    }
    EXPECT_EQ(settingsWords([] { SiteSettings::forNewSites().validate(); }), "");
}

TEST(DayOff, OnlyRealDatesPassByReadingThemBack) {
    auto words = [](std::int64_t month, std::int64_t day, std::optional<std::int64_t> year) {
        return settingsWords([&] { DayOff{Uuid::random(), "Party", month, day, year}.validate(); });
    };
    const std::string unreal = "Party is not a real date.";
    EXPECT_EQ(words(2, 29, std::nullopt), "");
    EXPECT_EQ(words(2, 29, 2028), "");
    EXPECT_EQ(words(12, 31, 2026), "");
    EXPECT_EQ(words(2, 29, 2023), unreal);
    EXPECT_EQ(words(4, 31, std::nullopt), unreal);
    EXPECT_EQ(words(13, 1, std::nullopt), unreal);
    EXPECT_EQ(words(0, 10, std::nullopt), unreal);
    EXPECT_EQ(words(1, 0, std::nullopt), unreal);
    EXPECT_EQ(words(-1, 5, std::nullopt), unreal);
    EXPECT_EQ(words(1, 1, 0), unreal);
    EXPECT_EQ(words(1, 1, -2024), unreal);
    EXPECT_EQ(words(int64Max, 1, std::nullopt), unreal);
    EXPECT_EQ(words(1, int64Min, int64Max), unreal);
}

TEST(RuleSet, FreshHoldsTheBuiltInDefaults) {
    RuleSet fresh = RuleSet::fresh();
    EXPECT_EQ(fresh.schemaVersion, 3);
    EXPECT_TRUE(fresh.sites.empty());
    EXPECT_TRUE(fresh.daysOff.empty());
    const SiteSettings& defaults = fresh.newSiteDefaults;
    EXPECT_EQ(defaults.hours, std::nullopt);
    EXPECT_EQ(defaults.days, Weekday::all());
    EXPECT_EQ(defaults.trigger, GrayTrigger::afterLimit(std::nullopt, 3, CountPeriod::hour));
    EXPECT_EQ(defaults.stayGray, StayGray::untilLeave());
    EXPECT_NO_THROW(fresh.validate());
}

}  // namespace
}  // namespace ashview
