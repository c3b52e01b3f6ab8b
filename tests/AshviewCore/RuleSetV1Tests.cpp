#include "AshviewCore/Foundation/Json.h"
#include "AshviewCore/Rules/RuleSetV1.h"

#include <gtest/gtest.h>

namespace ashview {
namespace {

using When = RuleSetV1::When;

RuleSetV1::Settings old(When when, std::optional<std::int64_t> opens, SitePin pin = SitePin::followSettings) {
    return RuleSetV1::Settings{{Weekday::monday, Weekday::friday}, opens, pin, when};
}

When gray(std::int64_t minutes) { return When{When::Kind::grayForMinutes, {}, {}, minutes}; }
When colorThen(std::int64_t minutes) { return When{When::Kind::colorThenGray, {}, {}, minutes}; }

/// The conversion of one old settings value, as a rule's own settings.
std::pair<SiteSettings, std::vector<std::string>> convertOne(RuleSetV1::Settings settings) {
    RuleSetV1 rules{old(When{}, std::nullopt), {{Uuid::random(), "example.com", settings, false}}, {}};
    auto [converted, notes] = rules.converted();
    return {converted.sites.at(0).settings, notes};
}

/// New settings on Monday and Friday, as every old settings value of these tests had.
SiteSettings now(GrayTrigger trigger, StayGray stay = StayGray::untilLeave(), std::optional<ActiveHours> hours = {}) {
    return SiteSettings{hours, {Weekday::monday, Weekday::friday}, trigger, stay};
}

TEST(RuleSetV1, EveryOldChoiceMapsByTheTable) {
    const auto hour = CountPeriod::hour;
    const std::pair<RuleSetV1::Settings, SiteSettings> cases[] = {
        {old(When{}, 2), now(GrayTrigger::afterLimit(std::nullopt, 2, hour))},
        {old(When{}, 0), now(GrayTrigger::rightAway())},
        {old(When{When::Kind::duringHours, {21, 0}, {7, 30}, 0}, 4),
         now(GrayTrigger::afterLimit(std::nullopt, 4, hour), StayGray::untilLeave(), ActiveHours{{21, 0}, {7, 30}})},
        {old(gray(20), -2), now(GrayTrigger::rightAway(), StayGray::forMinutes(20))},
        {old(colorThen(5), 3), now(GrayTrigger::afterLimit(5, 3, hour))},
        {old(colorThen(5), std::nullopt), now(GrayTrigger::afterLimit(5, std::nullopt, hour))},
        {old(colorThen(5), -1), now(GrayTrigger::afterLimit(5, std::nullopt, hour))},
        {old(colorThen(5), 0), now(GrayTrigger::rightAway())},
        {old(When{When::Kind::untilBrowserQuits, {}, {}, 0}, 1),
         now(GrayTrigger::afterLimit(std::nullopt, 1, hour), StayGray::untilChromeQuits())},
    };
    for (std::size_t row = 0; row < std::size(cases); ++row) {
        auto [converted, notes] = convertOne(cases[row].first);
        EXPECT_EQ(converted, cases[row].second) << "row " << row;
        EXPECT_TRUE(notes.empty()) << "row " << row;
    }
}

TEST(RuleSetV1, KeepsIdentitiesAndPinsAndNotesWhatIsLost) {
    Uuid followerID = Uuid::random();
    Uuid ownID = Uuid::random();
    DayOff dayOff{Uuid::random(), "Holiday", 12, 26, std::nullopt};
    RuleSetV1 rules{old(gray(10), 3, SitePin::grayThisSite),
                    {{followerID, "news.example.org", old(gray(99), 7, SitePin::showInColor), true},
                     {ownID, "example.com", old(gray(20), 2, SitePin::grayThisSite), false}},
                    {dayOff}};
    auto [converted, notes] = rules.converted();
    EXPECT_EQ(converted.schemaVersion, 3);
    EXPECT_EQ(converted.newSiteDefaults, now(GrayTrigger::rightAway(), StayGray::forMinutes(10)));
    EXPECT_EQ(converted.daysOff, std::vector<DayOff>{dayOff});
    SiteSettings own = now(GrayTrigger::rightAway(), StayGray::forMinutes(20));
    EXPECT_EQ(converted.sites,
              (std::vector<SiteRule>{
                  {followerID, "news.example.org", {}, true, converted.newSiteDefaults, SitePin::showInColor},
                  {ownID, "example.com", {}, false, own, SitePin::grayThisSite}}));
    // The follower's own old settings are never converted, so they add no note.
    EXPECT_EQ(notes, (std::vector<std::string>{
                         "Defaults for new sites: kept gray for 10 minutes; its limit of 3 opens an hour could not "
                         "be carried over.",
                         "example.com: kept gray for 20 minutes; its limit of 2 opens an hour could not be carried "
                         "over.",
                     }));
}

TEST(RuleSetV1, ReadsOnlyThePayloadOfItsKind) {
    const char* text = R"({"schemaVersion": 1, "daysOff": [], "sites": [],
        "newSiteDefaults": {"days": ["monday"], "pin": "followSettings", "opensInColorPerHour": null,
                            "when": {"kind": "duringHours", "start": {"hour": 9, "minute": 0},
                                     "end": {"hour": 17, "minute": 0}, "minutes": "ignored"}}})";
    RuleSetV1 rules = RuleSetV1::decode(text);
    EXPECT_EQ(rules.newSiteDefaults.when, (When{When::Kind::duringHours, {9, 0}, {17, 0}, 0}));
    EXPECT_EQ(rules.newSiteDefaults.opensInColorPerHour, std::nullopt);
    Json::Value document = Json::parse(text);
    document["newSiteDefaults"]["when"] = {{"kind", "grayForMinutes"}, {"start", 5}};
    EXPECT_THROW(RuleSetV1::decode(document.dump()), Json::DecodingError);
    document["newSiteDefaults"]["when"] = {{"kind", "sometimes"}};
    EXPECT_THROW(RuleSetV1::decode(document.dump()), Json::DecodingError);
}

}  // namespace
}  // namespace ashview
