#include "AshviewCore/RuleError.h"
#include "AshviewCore/RuleSet.h"

#include <gtest/gtest.h>

namespace ashview {
namespace {

/// The kind of `RuleError` that `action` throws, checking that the rules
/// are exactly as they were afterwards.
template <class Action>
std::optional<RuleError::Kind> failedKind(RuleSet& rules, Action action) {
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

TEST(RuleOperations, AddSiteNormalizesAndRefusesExactRepeats) {
    RuleSet rules = RuleSet::fresh();
    SiteRule added = rules.addSite("  https://Example.COM:8080/feed ");
    EXPECT_EQ(added.host, "example.com");
    EXPECT_EQ(added.name, std::nullopt);
    EXPECT_TRUE(added.usesNewSiteDefaults);
    EXPECT_EQ(added.settings, rules.newSiteDefaults);
    EXPECT_EQ(added.pin, SitePin::followSettings);
    ASSERT_EQ(rules.sites.size(), 1u);
    EXPECT_EQ(rules.sites[0], added);

    EXPECT_EQ(failedKind(rules, [&] { rules.addSite("EXAMPLE.com."); }), RuleError::Kind::duplicateHost);
    EXPECT_EQ(failedKind(rules, [&] { rules.addSite("exa mple.com"); }), RuleError::Kind::invalidHost);
    EXPECT_EQ(failedKind(rules, [&] { rules.addSite(" "); }), RuleError::Kind::invalidHost);
    SiteRule sub = rules.addSite("news.example.com");
    EXPECT_NE(sub.id, added.id);
    EXPECT_EQ(rules.sites.back().host, "news.example.com");
    EXPECT_NO_THROW(rules.validate());
}

TEST(RuleOperations, AddAppTrimsTheNameAndRefusesBadOrRepeatedApps) {
    RuleSet rules = RuleSet::fresh();
    SiteRule app = rules.addApp("com.example.Tool", "\t Tool Box \n");
    EXPECT_EQ(app.host, "app:com.example.Tool");
    EXPECT_EQ(app.name, "Tool Box");
    EXPECT_EQ(rules.app("com.example.Tool"), app);
    EXPECT_EQ(rules.app("com.example.tool"), std::nullopt);
    EXPECT_EQ(rules.app("com.example Tool"), std::nullopt);
    EXPECT_EQ(rules.app(""), std::nullopt);

    EXPECT_EQ(failedKind(rules, [&] { rules.addApp("com.other", "   "); }), RuleError::Kind::invalidApp);
    EXPECT_EQ(failedKind(rules, [&] { rules.addApp("", "Tool"); }), RuleError::Kind::invalidApp);
    EXPECT_EQ(failedKind(rules, [&] { rules.addApp("com/other", "Tool"); }), RuleError::Kind::invalidApp);
    EXPECT_EQ(failedKind(rules, [&] { rules.addApp("com.example.Tool", "Again"); }), RuleError::Kind::duplicateApp);
    EXPECT_NO_THROW(rules.validate());
}

TEST(RuleOperations, SettingsEditsTouchOnlyWhatTheyName) {
    RuleSet rules = RuleSet::fresh();
    Uuid id = rules.addSite("example.com").id;
    rules.setPin(id, SitePin::grayThisSite);

    SiteSettings broken = evenings();
    broken.trigger = GrayTrigger::afterLimit(0, 5, CountPeriod::hour);
    EXPECT_EQ(failedKind(rules, [&] { rules.updateSettings(id, broken); }), RuleError::Kind::invalidSettings);
    EXPECT_EQ(failedKind(rules, [&] { rules.updateSettings(Uuid::random(), broken); }),
              RuleError::Kind::unknownSite);
    EXPECT_EQ(failedKind(rules, [&] { rules.setPin(Uuid::random(), SitePin::showInColor); }),
              RuleError::Kind::unknownSite);
    EXPECT_EQ(failedKind(rules, [&] { rules.resetToNewSiteDefaults(Uuid::random()); }),
              RuleError::Kind::unknownSite);

    rules.updateSettings(id, evenings());
    EXPECT_FALSE(rules.sites[0].usesNewSiteDefaults);
    EXPECT_EQ(rules.sites[0].settings, evenings());
    EXPECT_EQ(rules.sites[0].pin, SitePin::grayThisSite);

    rules.newSiteDefaults.trigger = GrayTrigger::rightAway();
    rules.resetToNewSiteDefaults(id);
    EXPECT_TRUE(rules.sites[0].usesNewSiteDefaults);
    EXPECT_EQ(rules.sites[0].settings, rules.newSiteDefaults);
    EXPECT_EQ(rules.sites[0].pin, SitePin::grayThisSite);
}

TEST(RuleOperations, RemovalsKeepOrderAndIgnoreUnknownIDs) {
    RuleSet rules = RuleSet::fresh();
    Uuid a = rules.addSite("a.com").id;
    Uuid b = rules.addSite("b.com").id;
    Uuid c = rules.addSite("c.com").id;
    rules.sites.push_back(rules.sites[1]);  // a repeated id goes with its twin
    RuleSet before = rules;
    rules.removeSite(Uuid::random());
    EXPECT_EQ(rules, before);
    rules.removeSite(b);
    ASSERT_EQ(rules.sites.size(), 2u);
    EXPECT_EQ(rules.sites[0].id, a);
    EXPECT_EQ(rules.sites[1].id, c);

    DayOff christmas{Uuid::random(), "Christmas", 12, 25, std::nullopt};
    rules.addDayOff(christmas);
    DayOff again = christmas;
    again.id = Uuid::random();
    rules.addDayOff(again);  // the same date twice is allowed
    EXPECT_EQ(failedKind(rules, [&] { rules.addDayOff(DayOff{Uuid::random(), "Nope", 4, 31, {}}); }),
              RuleError::Kind::invalidSettings);
    rules.removeDayOff(Uuid::random());
    EXPECT_EQ(rules.daysOff.size(), 2u);
    rules.removeDayOff(christmas.id);
    ASSERT_EQ(rules.daysOff.size(), 1u);
    EXPECT_EQ(rules.daysOff[0].id, again.id);
}

TEST(RuleOperations, SavingSnapshotShowsWhatApplied) {
    RuleSet rules = RuleSet::fresh();
    Uuid following = rules.addSite("a.com").id;
    Uuid own = rules.addSite("b.com").id;
    rules.updateSettings(own, evenings());
    rules.newSiteDefaults.stayGray = StayGray::forMinutes(5);
    RuleSet snapshot = rules.savingSnapshot();
    EXPECT_EQ(snapshot.sites[0].settings, rules.newSiteDefaults);
    EXPECT_NE(rules.sites[0].settings, rules.newSiteDefaults);  // the original is left alone
    EXPECT_EQ(snapshot.sites[1].settings, evenings());
    EXPECT_EQ(snapshot.sites[0].id, following);
    snapshot.sites[0].settings = rules.sites[0].settings;
    EXPECT_EQ(snapshot, rules);
}

TEST(RuleOperations, ValidateReportsTheFirstProblemInDocumentOrder) {
    using Kind = RuleError::Kind;
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
    rules.newSiteDefaults.days.clear();
    rules.newSiteDefaults.trigger = GrayTrigger::afterLimit(0, 0, CountPeriod::day);
    EXPECT_EQ(check(rules), std::pair(std::optional(Kind::invalidSettings), std::string("Unsupported rules version 2.")));
    rules.schemaVersion = -7;
    EXPECT_EQ(check(rules).second, "Unsupported rules version -7.");
    rules.schemaVersion = 3;
    rules.sites = {site("Example.com")};
    EXPECT_EQ(check(rules).second, "Minutes need to be at least 1.");

    const std::pair<std::vector<SiteRule>, Kind> cases[] = {
        {{site("Example.com")}, Kind::invalidHost},
        {{site("example.com."), site("x y")}, Kind::invalidHost},
        {{site("example.com", "Example")}, Kind::invalidHost},
        {{site("example.com"), site("example.com")}, Kind::duplicateHost},
        {{site("app:com.x", " \n")}, Kind::invalidApp},
        {{site("app:com.x")}, Kind::invalidApp},
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

    // Own settings are judged only where they apply.
    rules = base;
    rules.sites = {site("example.com"), site("app:com.x", "X")};
    rules.sites[0].settings.stayGray = StayGray::forMinutes(0);
    EXPECT_EQ(check(rules), std::pair(std::optional(Kind::invalidSettings), std::string("Bad is not a real date.")));
    rules.sites[0].usesNewSiteDefaults = false;
    EXPECT_EQ(check(rules).second, "Minutes need to be at least 1.");
    rules.sites[0].settings = SiteSettings::forNewSites();
    rules.daysOff.clear();
    rules.sites[1].usesNewSiteDefaults = false;
    rules.sites[1].settings = SiteSettings::forNewSites();
    rules.sites[1].settings.trigger = GrayTrigger::afterLimit(std::nullopt, std::nullopt, CountPeriod::session);
    EXPECT_EQ(check(rules).second, "Pick minutes, opens, or both.");
    rules.sites[1].settings.trigger = GrayTrigger::afterLimit(std::nullopt, 1, CountPeriod::session);
    EXPECT_EQ(check(rules).first, std::nullopt);
}

}  // namespace
}  // namespace ashview
