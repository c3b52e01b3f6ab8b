#include "AshviewCore/Rules/RuleError.h"
#include "AshviewCore/Rules/RuleSet.h"

#include <gtest/gtest.h>

namespace ashview {
namespace {

using Kind = RuleError::Kind;

/// The kind of `RuleError` that `action` throws, checking that the rules
/// are exactly as they were afterwards.
template <class Action>
std::optional<Kind> failedKind(RuleSet& rules, Action action) {
    RuleSet before = rules;
    try {
        action();
    } catch (const RuleError& error) {
        EXPECT_EQ(rules, before) << "a failed edit changed the rules";
        return error.kind();
    }
    return std::nullopt;
}

SiteSettings evenings() {
    return SiteSettings{ActiveHours{{18, 0}, {23, 0}}, {Weekday::saturday},
                        GrayTrigger::afterLimit(30, std::nullopt, CountPeriod::day), StayGray::forMinutes(10)};
}

TEST(RuleOperations, AddingNormalizesAndRefusesBadOrRepeatedEntries) {
    RuleSet rules = RuleSet::fresh();
    SiteRule added = rules.addSite("  https://Example.COM:8080/feed ");
    EXPECT_EQ(rules.sites, std::vector<SiteRule>{added});
    EXPECT_EQ(added, (SiteRule{added.id, "example.com", {}, true, rules.newSiteDefaults, SitePin::followSettings}));
    EXPECT_EQ(failedKind(rules, [&] { rules.addSite("EXAMPLE.com."); }), Kind::duplicateHost);
    EXPECT_EQ(failedKind(rules, [&] { rules.addSite("exa mple.com"); }), Kind::invalidHost);
    EXPECT_NO_THROW(rules.addSite("news.example.com"));

    SiteRule app = rules.addApp("com.example.Tool", "\t Tool Box \n");
    EXPECT_EQ(app.host, "app:com.example.Tool");
    EXPECT_EQ(app.name, "Tool Box");
    EXPECT_EQ(rules.app("com.example.Tool"), app);
    EXPECT_EQ(rules.app("com.example Tool"), std::nullopt);
    EXPECT_EQ(failedKind(rules, [&] { rules.addApp("com.other", "   "); }), Kind::invalidApp);
    EXPECT_EQ(failedKind(rules, [&] { rules.addApp("", "Tool"); }), Kind::invalidApp);
    EXPECT_EQ(failedKind(rules, [&] { rules.addApp("com.example.Tool", "Again"); }), Kind::duplicateApp);
    EXPECT_NO_THROW(rules.validate());
}

TEST(RuleOperations, SettingsEditsTouchOnlyWhatTheyName) {
    RuleSet rules = RuleSet::fresh();
    Uuid id = rules.addSite("example.com").id;
    rules.setPin(id, SitePin::grayThisSite);
    SiteSettings broken = evenings();
    broken.trigger = GrayTrigger::afterLimit(0, 5, CountPeriod::hour);
    EXPECT_EQ(failedKind(rules, [&] { rules.updateSettings(id, broken); }), Kind::invalidSettings);
    EXPECT_EQ(failedKind(rules, [&] { rules.updateSettings(Uuid::random(), broken); }), Kind::unknownSite);
    EXPECT_EQ(failedKind(rules, [&] { rules.setPin(Uuid::random(), SitePin::showInColor); }), Kind::unknownSite);
    EXPECT_EQ(failedKind(rules, [&] { rules.resetToNewSiteDefaults(Uuid::random()); }), Kind::unknownSite);

    rules.updateSettings(id, evenings());
    EXPECT_FALSE(rules.sites[0].usesNewSiteDefaults);
    EXPECT_EQ(rules.sites[0].settings, evenings());
    rules.newSiteDefaults.trigger = GrayTrigger::rightAway();
    rules.resetToNewSiteDefaults(id);
    EXPECT_TRUE(rules.sites[0].usesNewSiteDefaults);
    EXPECT_EQ(rules.sites[0].settings, rules.newSiteDefaults);
    EXPECT_EQ(rules.sites[0].pin, SitePin::grayThisSite);
}

TEST(RuleOperations, RemovalsKeepOrderAndTheSnapshotShowsWhatApplied) {
    RuleSet rules = RuleSet::fresh();
    Uuid a = rules.addSite("a.com").id;
    Uuid b = rules.addSite("b.com").id;
    rules.updateSettings(rules.addSite("c.com").id, evenings());
    rules.sites.push_back(rules.sites[1]);  // a repeated id goes with its twin
    rules.removeSite(Uuid::random());
    rules.removeSite(b);
    ASSERT_EQ(rules.sites.size(), 2u);
    EXPECT_EQ(rules.sites[0].id, a);

    rules.newSiteDefaults.stayGray = StayGray::forMinutes(5);
    RuleSet snapshot = rules.savingSnapshot();
    EXPECT_EQ(snapshot.sites[0].settings, rules.newSiteDefaults);
    EXPECT_EQ(snapshot.sites[1].settings, evenings());
    snapshot.sites[0].settings = rules.sites[0].settings;
    EXPECT_EQ(snapshot, rules);  // nothing else differs, and the original is untouched

    DayOff christmas{Uuid::random(), "Christmas", 12, 25, std::nullopt};
    DayOff again{Uuid::random(), "Again", 12, 25, std::nullopt};
    rules.addDayOff(christmas);
    rules.addDayOff(again);  // the same date twice is allowed
    EXPECT_EQ(failedKind(rules, [&] { rules.addDayOff(DayOff{Uuid::random(), "Nope", 4, 31, {}}); }),
              Kind::invalidSettings);
    rules.removeDayOff(Uuid::random());
    rules.removeDayOff(christmas.id);
    EXPECT_EQ(rules.daysOff, std::vector<DayOff>{again});
}

TEST(RuleOperations, ValidateReportsTheFirstProblemInDocumentOrder) {
    auto site = [](std::string host, std::optional<std::string> name = std::nullopt) {
        return SiteRule{Uuid::random(), std::move(host), std::move(name), true, {}, SitePin::followSettings};
    };
    auto check = [](const RuleSet& rules) -> std::pair<std::optional<Kind>, std::string> {
        try {
            rules.validate();
        } catch (const RuleError& error) {
            return {error.kind(), error.message().value_or("")};
        }
        return {std::nullopt, ""};
    };
    RuleSet base = RuleSet::fresh();
    base.daysOff.push_back(DayOff{Uuid::random(), "Bad", 2, 30, {}});
    RuleSet rules = base;
    rules.schemaVersion = 2;
    rules.newSiteDefaults.trigger = GrayTrigger::afterLimit(0, 0, CountPeriod::day);
    rules.sites = {site("Example.com")};
    EXPECT_EQ(check(rules).second, "Unsupported rules version 2.");
    rules.schemaVersion = 3;
    EXPECT_EQ(check(rules).second, "Minutes need to be at least 1.");

    const std::pair<std::vector<SiteRule>, Kind> cases[] = {
        {{site("example.com."), site("x y")}, Kind::invalidHost},
        {{site("example.com", "Example")}, Kind::invalidHost},
        {{site("example.com"), site("example.com")}, Kind::duplicateHost},
        {{site("app:com.x", " \n")}, Kind::invalidApp},
        {{site("app:", "Empty")}, Kind::invalidApp},
        {{site("app:com x", "Blank")}, Kind::invalidApp},
        {{site("app:com.x", "X"), site("app:com.x", "X again")}, Kind::duplicateApp},
        {{site("app:com.x", "X"), site("example.com"), site("Bad.com")}, Kind::invalidHost},
    };
    for (const auto& [sites, kind] : cases) {
        rules = base;
        rules.sites = sites;
        EXPECT_EQ(check(rules).first, kind) << sites.back().host;
    }

    // Own settings are judged only where they apply; days off come last.
    rules = base;
    rules.sites = {site("example.com")};
    rules.sites[0].settings.stayGray = StayGray::forMinutes(0);
    EXPECT_EQ(check(rules).second, "Bad is not a real date.");
    rules.sites[0].usesNewSiteDefaults = false;
    EXPECT_EQ(check(rules).second, "Minutes need to be at least 1.");
}

}  // namespace
}  // namespace ashview
