#include "AshviewCore/Rules/RuleError.h"
#include "AshviewCore/Rules/RulesDocument.h"

#include <gtest/gtest.h>

namespace ashview {
namespace {

const Uuid siteID = *Uuid::parse("11111111-2222-4333-8444-555555555555");
const Uuid appID = *Uuid::parse("aaaaaaaa-bbbb-4ccc-8ddd-eeeeeeeeeeee");
const Uuid dayID = *Uuid::parse("00000000-0000-4000-8000-000000000001");

/// One rule of every shape the file can hold.
RuleSet sampleRules() {
    RuleSet rules = RuleSet::fresh();
    SiteSettings evenings{ActiveHours{{22, 30}, {6, 0}}, {Weekday::sunday, Weekday::monday},
                          GrayTrigger::afterLimit(20, std::nullopt, CountPeriod::session), StayGray::forMinutes(15)};
    rules.sites.push_back(SiteRule{siteID, "example.com", std::nullopt, false, evenings, SitePin::grayThisSite});
    rules.sites.push_back(SiteRule{appID, "app:com.example.tool", "Tool", true, rules.newSiteDefaults,
                                   SitePin::followSettings});
    rules.daysOff.push_back(DayOff{dayID, "New Year", 1, 1, std::nullopt});
    return rules;
}

TEST(RulesDocument, WritesTheAgreedForm) {
    // Keys, case names, upper-case UUIDs and left-out optionals.
    Json::Value expected = Json::parse(R"({
      "daysOff": [{"day": 1, "id": "00000000-0000-4000-8000-000000000001", "month": 1, "name": "New Year"}],
      "newSiteDefaults": {"days": ["monday", "tuesday", "wednesday", "thursday", "friday", "saturday", "sunday"],
                          "stayGray": {"kind": "untilLeave"}, "trigger": {"kind": "afterLimit", "opens": 3, "per": "hour"}},
      "schemaVersion": 3,
      "sites": [
        {"host": "example.com", "id": "11111111-2222-4333-8444-555555555555", "pin": "grayThisSite",
         "settings": {"days": ["monday", "sunday"],
                      "hours": {"end": {"hour": 6, "minute": 0}, "start": {"hour": 22, "minute": 30}},
                      "stayGray": {"kind": "forMinutes", "minutes": 15},
                      "trigger": {"kind": "afterLimit", "minutes": 20, "per": "session"}},
         "usesNewSiteDefaults": false},
        {"host": "app:com.example.tool", "id": "AAAAAAAA-BBBB-4CCC-8DDD-EEEEEEEEEEEE", "name": "Tool",
         "pin": "followSettings",
         "settings": {"days": ["monday", "tuesday", "wednesday", "thursday", "friday", "saturday", "sunday"],
                      "stayGray": {"kind": "untilLeave"}, "trigger": {"kind": "afterLimit", "opens": 3, "per": "hour"}},
         "usesNewSiteDefaults": true}]})");
    // Key order and indentation are the shared encoder's.
    EXPECT_EQ(RulesDocument::encode(sampleRules()), Json::encode(expected));
}

TEST(RulesDocument, ReadsBackEveryCaseItWrites) {
    RuleSet rules = sampleRules();
    rules.schemaVersion = 2;
    rules.newSiteDefaults.trigger = GrayTrigger::rightAway();
    rules.newSiteDefaults.stayGray = StayGray::untilChromeQuits();
    rules.newSiteDefaults.days.clear();
    SiteRule third = rules.sites[0];
    third.id = Uuid::random();
    third.host = "news.example.com";
    third.pin = SitePin::showInColor;
    third.settings.trigger = GrayTrigger::afterLimit(-5, 9'000'000'000'000, CountPeriod::day);
    third.settings.stayGray = StayGray::forMinutes(0);
    rules.sites.push_back(third);
    rules.daysOff.push_back(DayOff{Uuid::random(), "\u00C9t\u00E9 \U0001F334", 8, 15, 2030});
    std::string bytes = RulesDocument::encode(rules);
    EXPECT_EQ(RulesDocument::decode(bytes), rules);

    // The same days added in another order give the same bytes.
    rules.newSiteDefaults.days = {Weekday::sunday, Weekday::monday};
    RuleSet backward = rules;
    backward.newSiteDefaults.days.clear();
    for (Weekday day : {Weekday::monday, Weekday::sunday, Weekday::monday}) backward.newSiteDefaults.days.insert(day);
    EXPECT_EQ(RulesDocument::encode(backward), RulesDocument::encode(rules));
    EXPECT_EQ(RulesDocument::toJson(rules.newSiteDefaults.days), Json::Value({"monday", "sunday"}));
}

/// The sample document with `change` applied to its JSON form.
template <class Change>
std::string edited(Change change) {
    Json::Value document = RulesDocument::toJson(sampleRules());
    change(document);
    return document.dump();
}

TEST(RulesDocument, ToleratesWhatItPromisesToIgnore) {
    std::string bytes = edited([](Json::Value& document) {
        document["comment"] = "written by hand";
        Json::Value& site = document["sites"][0];
        site["extra"] = {{"nested", true}};
        site["name"] = nullptr;
        site["settings"]["hours"] = nullptr;
        site["settings"]["days"] = {"sunday", "monday", "sunday"};
        site["settings"]["trigger"] = {{"kind", "rightAway"}, {"minutes", "not even a number"}, {"per", 7}};
        site["settings"]["stayGray"] = {{"kind", "untilLeave"}, {"minutes", -3}};
        document["daysOff"][0]["year"] = nullptr;
    });
    RuleSet read = RulesDocument::decode(bytes);
    EXPECT_EQ(read.sites[0].name, std::nullopt);
    EXPECT_EQ(read.sites[0].settings, (SiteSettings{std::nullopt, {Weekday::monday, Weekday::sunday},
                                                    GrayTrigger::rightAway(), StayGray::untilLeave()}));
    EXPECT_EQ(read.daysOff[0].year, std::nullopt);

    // Decoding checks no ranges; validation does.
    RuleSet limitless = RulesDocument::decode(edited([](Json::Value& document) {
        document["newSiteDefaults"]["trigger"] = {{"kind", "afterLimit"}, {"per", "day"}};
        document["newSiteDefaults"]["days"] = Json::Value::array();
    }));
    EXPECT_TRUE(limitless.newSiteDefaults.days.empty());
    EXPECT_THROW(limitless.validate(), RuleError);
    limitless.newSiteDefaults.trigger = GrayTrigger::afterLimit(std::nullopt, 1, CountPeriod::day);
    EXPECT_NO_THROW(limitless.validate());
}

TEST(RulesDocument, RefusesTheWholeDocumentForAnyFault) {
    using Change = void (*)(Json::Value&);
    const std::pair<const char*, Change> faults[] = {
        {"pin outside the cases", [](Json::Value& d) { d["sites"][0]["pin"] = "sometimes"; }},
        {"unknown weekday", [](Json::Value& d) { d["newSiteDefaults"]["days"][2] = "Wednesday"; }},
        {"unknown trigger kind", [](Json::Value& d) { d["sites"][0]["settings"]["trigger"]["kind"] = "later"; }},
        {"trigger as a bare name", [](Json::Value& d) { d["sites"][0]["settings"]["trigger"] = "rightAway"; }},
        {"afterLimit without per", [](Json::Value& d) { d["newSiteDefaults"]["trigger"].erase("per"); }},
        {"opens with a fraction", [](Json::Value& d) { d["newSiteDefaults"]["trigger"]["opens"] = 2.5; }},
        {"forMinutes without minutes", [](Json::Value& d) { d["sites"][0]["settings"]["stayGray"].erase("minutes"); }},
        {"id not a UUID", [](Json::Value& d) { d["sites"][1]["id"] = "AAAAAAAA-BBBB-4CCC-8DDD"; }},
        {"host null", [](Json::Value& d) { d["sites"][0]["host"] = nullptr; }},
        {"sites not an array", [](Json::Value& d) { d["sites"] = Json::Value::object(); }},
        {"daysOff missing", [](Json::Value& d) { d.erase("daysOff"); }},
        {"schemaVersion as text", [](Json::Value& d) { d["schemaVersion"] = "3"; }},
        {"document is an array", [](Json::Value& d) { d = Json::Value::array({d}); }},
    };
    for (const auto& [what, change] : faults)
        EXPECT_THROW(RulesDocument::decode(edited(change)), Json::DecodingError) << what;
    std::string good = RulesDocument::encode(sampleRules());
    for (std::string bytes : {good.substr(0, good.size() / 2),
                              std::string("{\"schemaVersion\": 3, \"sites\": [\"\xff\xfe\"]}"),
                              std::string("{\"schemaVersion\": 99999999999999999999999}"), good + "{}"}) {
        EXPECT_THROW(RulesDocument::decode(bytes), Json::DecodingError) << bytes;
    }
}

}  // namespace
}  // namespace ashview
