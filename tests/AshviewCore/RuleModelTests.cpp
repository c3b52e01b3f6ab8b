#include "AshviewCore/Rules/AppKey.h"
#include "AshviewCore/Rules/Host.h"
#include "AshviewCore/Rules/Policy.h"
#include "AshviewCore/Rules/RuleError.h"
#include "AshviewCore/Rules/RuleSet.h"
#include "AshviewCore/Rules/SiteLookup.h"
#include "AshviewCore/Foundation/Url.h"

#include <gtest/gtest.h>

#include <limits>

namespace ashview {
namespace {

constexpr std::int64_t int64Max = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t int64Min = std::numeric_limits<std::int64_t>::min();

SiteRule rule(std::string host, std::optional<std::string> name = std::nullopt) {
    return SiteRule{Uuid::random(), std::move(host), std::move(name), true, {}, SitePin::followSettings};
}

/// The words of the `invalidSettings` that `action` throws, or "" for none.
template <class Action>
std::string settingsWords(Action action) {
    try {
        action();
    } catch (const RuleError& error) {
        return error.message().value_or("<no words>");
    }
    return "";
}

TEST(Host, NormalizeReducesAnAddressToItsLowerCaseHost) {
    const std::pair<const char*, std::optional<std::string>> cases[] = {
        {"  Example.COM.\n", "example.com"},
        {"HTTPS://Example.com:8443/a/b?c=d#e", "example.com"},
        {"example.com/some/path?q=1", "example.com"},
        {"www.example.com", "www.example.com"},  // no label is dropped
        {"\u00A0\u3000example.org\u2029", "example.org"},
        {"exa mple.com", std::nullopt},
        {"...", std::nullopt},
        {" \t\n", std::nullopt},
        {"https://", std::nullopt},
        {"bad\xff\xfehost.com", std::nullopt},
        {"https://Example.com.:8080/", "example.com"},
    };
    for (const auto& [text, host] : cases) EXPECT_EQ(Host::normalize(text), host) << text;
    // As long as DNS allows: 253 in all, 63 to a label; plain or in an address.
    const std::string label(63, 'a');
    const std::string longest = label + "." + label + "." + label + "." + std::string(61, 'b');
    for (const std::string& fits : {label + ".com", longest}) {
        EXPECT_EQ(Host::normalize(fits), fits);
        EXPECT_EQ(Host::normalize("https://" + fits + "./"), fits);
    }
    for (const std::string& tooLong : {label + "a.com", longest + "b", std::string(1 << 20, 'a')}) {
        EXPECT_FALSE(Host::isPlainHost(tooLong));
        EXPECT_EQ(Host::normalize(tooLong), std::nullopt);
        EXPECT_EQ(Host::normalize("https://" + tooLong + "/"), std::nullopt);
    }
    EXPECT_TRUE(Host::matches("news.example.com", "example.com"));
    EXPECT_FALSE(Host::matches("badexample.com", "example.com"));
    EXPECT_FALSE(Host::matches("example.com", "news.example.com"));
}

TEST(Host, PlainHostsAreTheirOwnNormalForm) {
    // Text made of lower-case letters, digits, hyphens and dots skips the
    // address parser; the parser must agree that it is the host unchanged.
    for (const char* plain : {"example.com", "static.cdn.eu.site7.example.com", "localhost", "1.2.3.4",
                              "999.1.1.1", "-", "a-.b", ".example.com", "a..b", "xn--bcher-kva.example"}) {
        EXPECT_TRUE(Host::isPlainHost(plain)) << plain;
        EXPECT_EQ(Host::normalize(plain), plain) << plain;
        EXPECT_EQ(Url::host(std::string("https://") + plain), plain) << plain;
    }
    for (const char* other : {"", "Example.com", "example.com.", "a_b.example.com", "example.com:8080",
                              "user@example.com", "example.com/path", " example.com", "b\u00fccher.de"}) {
        EXPECT_FALSE(Host::isPlainHost(other)) << other;
    }
}

TEST(AppKey, MakesKeysOnlyFromPlainIdentifiers) {
    EXPECT_EQ(AppKey::make("com.Example-App_2.tool"), "app:com.Example-App_2.tool");
    for (const char* bad : {"", "com.example tool", "com.ex\u00E4mple", "app:com.x"})
        EXPECT_EQ(AppKey::make(bad), std::nullopt) << bad;
    EXPECT_EQ(AppKey::bundleID("app:com.ex ample"), "com.ex ample");  // unchecked
    EXPECT_EQ(AppKey::bundleID("example.com"), std::nullopt);
}

TEST(SiteLookup, LongestListedSuffixWinsAndAgreesWithTheLinearScan) {
    RuleSet rules = RuleSet::fresh();
    rules.sites = {rule("example.com"), rule("mail.example.com"), rule("app:com.example.mail", "Mail"),
                   rule("com"), rule("example.com")};
    SiteLookup lookup(rules.sites);
    const std::pair<const char*, std::optional<std::size_t>> cases[] = {
        {"www.example.com", 0},  // the first of two equal hosts
        {"https://Inbox.Mail.Example.com:443/x?y", 1},
        {"other.com", 3},
        {"example.org", std::nullopt},
        {"app:com.example.mail", 2},
        {"app:COM.example.mail", std::nullopt},  // app keys are looked up as they stand
        {"not a host", std::nullopt},
    };
    for (const auto& [host, index] : cases) {
        std::optional<SiteRule> expected;
        if (index) expected = rules.sites[*index];
        EXPECT_EQ(lookup.site(host), expected) << host;
        EXPECT_EQ(rules.site(host), expected) << host;
    }
}

TEST(SiteLookup, AgreesWithTheLinearScanOverManyRules) {
    // Enough rules that the table's probing wraps and collides: domains,
    // subdomains of some, a repeated host, apps; asked for deeper hosts,
    // hosts in other spellings and hosts nobody listed.
    RuleSet rules = RuleSet::fresh();
    for (int index = 0; index < 800; ++index) {
        std::string domain = "s" + std::to_string(index) + ".example.com";
        rules.sites.push_back(rule(domain));
        if (index % 7 == 0) rules.sites.push_back(rule("news." + domain));
        if (index % 50 == 0) rules.sites.push_back(rule("app:com.example.tool" + std::to_string(index), "Tool"));
    }
    rules.sites.push_back(rule("s3.example.com"));
    SiteLookup lookup(rules.sites);
    for (std::size_t index = 0; index < rules.sites.size(); ++index) {
        std::size_t first = lookup.firstIndexOfHostOf(index);
        EXPECT_EQ(rules.sites[first].host, rules.sites[index].host);
        EXPECT_EQ(lookup.firstIndexOfHost(rules.sites[index].host), first);
    }
    EXPECT_NE(lookup.firstIndexOfHostOf(rules.sites.size() - 1), rules.sites.size() - 1);
    for (int index = 0; index < 850; index += 4) {
        std::string number = std::to_string(index);
        for (const std::string& host :
             {"a.b.news.s" + number + ".example.com", "news.s" + number + ".example.com", "S" + number + ".Example.COM.",
              "https://www.s" + number + ".example.com/x", "s" + number + ".example.org", "app:com.example.tool" + number}) {
            std::optional<SiteRule> expected = rules.site(host);
            EXPECT_EQ(lookup.site(host), expected) << host;
            std::optional<std::size_t> position = lookup.indexOf(host);
            ASSERT_EQ(position.has_value(), expected.has_value()) << host;
            if (position) {
                EXPECT_EQ(rules.sites[*position], *expected) << host;
            }
        }
    }
    EXPECT_EQ(lookup.firstIndexOfHost("S3.example.com"), std::nullopt);  // exact text only
}

TEST(RuleSet, EffectiveSettingsTranslateBrowserOnlyChoicesForApps) {
    SiteSettings browserish = SiteSettings::forNewSites();
    browserish.trigger = GrayTrigger::afterLimit(10, std::nullopt, CountPeriod::session);
    browserish.stayGray = StayGray::untilChromeQuits();
    RuleSet rules = RuleSet::fresh();
    SiteRule app = rule("app:com.example.tool", "Tool");
    app.usesNewSiteDefaults = false;
    app.settings = browserish;
    SiteRule site = rule("example.com");
    site.settings = SiteSettings::forNewSites();

    SiteSettings forApp = rules.effectiveSettings(app);
    EXPECT_EQ(forApp.trigger, GrayTrigger::afterLimit(10, std::nullopt, CountPeriod::day));
    EXPECT_EQ(forApp.stayGray, StayGray::untilLeave());
    EXPECT_EQ(app.settings, browserish);  // the stored value keeps what the user chose
    rules.newSiteDefaults = browserish;
    EXPECT_EQ(rules.effectiveSettings(site), browserish);  // stale own settings are not consulted
}

TEST(Weekday, MapsCalendarNumbersAndSymbolsSundayFirst) {
    EXPECT_EQ(Weekday::fromCalendarNumber(1), Weekday::sunday);
    for (long outside : {0, 8}) EXPECT_EQ(Weekday::fromCalendarNumber(outside), std::nullopt);
    for (Weekday day : Weekday::allCases) EXPECT_EQ(Weekday::fromCalendarNumber(day.calendarNumber()), day);
    Calendar american("gregorian", "America/New_York", "en_US");
    EXPECT_EQ(Weekday::sunday.shortName(american), "Sun");
    EXPECT_EQ(Weekday::saturday.shortName(american), "Sat");
    // 03:00 UTC on a Monday is still Sunday evening in New York.
    Instant instant = *Calendar::gregorianUTC().date(2026, 11, 23, 3);
    EXPECT_EQ(Weekday::from(instant, american), Weekday::sunday);
    EXPECT_EQ(Weekday::from(instant, Calendar("buddhist", "Asia/Tokyo", "th_TH")), Weekday::monday);
}

TEST(ClockTime, SpansIncludeTheStartMinuteAndRunOverMidnight) {
    Calendar berlin("gregorian", "Europe/Berlin", "de_DE");
    auto at = [&](long hour, long minute, long second = 0) { return *berlin.date(2026, 11, 24, hour, minute, second); };
    const ClockTime ten{22, 0}, six{6, 0}, nine{9, 0}, five{17, 0};
    const std::tuple<ClockTime, ClockTime, Instant, bool> cases[] = {
        {ten, six, at(5, 59, 59), true},  {ten, six, at(6, 0), false},  {ten, six, at(21, 59, 59), false},
        {nine, five, at(9, 0), true},     {nine, five, at(17, 0), false}, {nine, five, at(8, 59), false},
        {nine, nine, at(0, 0), false},    {nine, nine, at(9, 0), false},  {nine, nine, at(23, 0), false}};
    for (const auto& [from, to, when, inside] : cases)
        EXPECT_EQ(from.contains(when, berlin, to), inside) << from.hour << "-" << to.hour << " at " << when.seconds;
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
    EXPECT_TRUE(rules.isSharedDayOff(*tokyo.date(1999, 12, 25, 23, 59), tokyo));
    // 20:00 UTC on December 24 is already December 25 in Tokyo.
    Instant lateEve = *Calendar::gregorianUTC().date(2031, 12, 24, 20);
    EXPECT_TRUE(rules.isSharedDayOff(lateEve, tokyo));
    EXPECT_FALSE(rules.isSharedDayOff(lateEve, Calendar::gregorianUTC()));
}

TEST(SiteSettings, ValidationReportsTheFirstProblemInItsWords) {
    const std::string clock = "Use an hour from 0 to 23 and a minute from 0 to 59.";
    const std::string minutes = "Minutes need to be at least 1.";
    const std::string opens = "Opens need to be at least 1.";
    const GrayTrigger fine = GrayTrigger::afterLimit(std::nullopt, 3, CountPeriod::hour);
    struct Case {
        std::optional<ActiveHours> hours;
        GrayTrigger trigger;
        StayGray stay;
        std::string words;
    };
    const Case cases[] = {
        {ActiveHours{{0, 0}, {23, 59}}, fine, StayGray::untilLeave(), ""},
        {ActiveHours{{9, 0}, {9, 0}}, fine, StayGray::untilLeave(), ""},
        {ActiveHours{{24, 0}, {6, 0}}, fine, StayGray::untilLeave(), clock},
        {ActiveHours{{1, 0}, {6, 60}}, fine, StayGray::untilLeave(), clock},
        {ActiveHours{{1, 0}, {int64Min, 0}}, GrayTrigger::afterLimit(0, 0, CountPeriod::day), StayGray::forMinutes(0),
         clock},
        {std::nullopt, GrayTrigger::afterLimit(0, 5, CountPeriod::day), StayGray::untilLeave(), minutes},
        {std::nullopt, GrayTrigger::afterLimit(std::nullopt, std::nullopt, CountPeriod::day), StayGray::untilLeave(),
         "Pick minutes, opens, or both."},
        {std::nullopt, GrayTrigger::afterLimit(5, 0, CountPeriod::day), StayGray::forMinutes(0), opens},
        {std::nullopt, GrayTrigger::rightAway(), StayGray::forMinutes(0), minutes},
        {std::nullopt, GrayTrigger::afterLimit(int64Max, int64Max, CountPeriod::session),
         StayGray::forMinutes(int64Max), ""},
    };
    for (const Case& item : cases) {
        SiteSettings settings{item.hours, {}, item.trigger, item.stay};
        EXPECT_EQ(settingsWords([&] { settings.validate(); }), item.words) << item.words;
    }
}

TEST(DayOff, OnlyRealDatesPassByReadingThemBack) {
    auto words = [](std::int64_t month, std::int64_t day, std::optional<std::int64_t> year) {
        return settingsWords([&] { DayOff{Uuid::random(), "Party", month, day, year}.validate(); });
    };
    EXPECT_EQ(words(2, 29, std::nullopt), "");
    for (auto [month, day, year] : {std::tuple<std::int64_t, std::int64_t, std::optional<std::int64_t>>{2, 29, 2023},
                                    {4, 31, {}}, {13, 1, {}}, {-1, 5, {}}, {1, 1, 0}, {1, int64Min, int64Max}}) {
        EXPECT_EQ(words(month, day, year), "Party is not a real date.") << month << "-" << day;
    }
}

}  // namespace
}  // namespace ashview
