#include "AshviewCore/Rules/RuleSet.h"

#include "AshviewCore/Rules/AppKey.h"
#include "AshviewCore/Rules/Host.h"
#include "AshviewCore/Rules/RuleError.h"
#include "AshviewCore/Foundation/Text.h"

#include <algorithm>
#include <unordered_set>

namespace ashview {

namespace {

SiteRule* findRule(std::vector<SiteRule>& sites, const Uuid& id) {
    auto found = std::find_if(sites.begin(), sites.end(), [&](const SiteRule& rule) { return rule.id == id; });
    return found == sites.end() ? nullptr : &*found;
}

bool hostIsListed(const std::vector<SiteRule>& sites, std::string_view host) {
    return std::any_of(sites.begin(), sites.end(), [&](const SiteRule& rule) { return rule.host == host; });
}

}  // namespace

RuleSet RuleSet::fresh() { return RuleSet{currentSchemaVersion, SiteSettings::forNewSites(), {}, {}}; }

std::optional<SiteRule> RuleSet::site(std::string_view matchingHost) const {
    if (AppKey::isApp(matchingHost)) {
        for (const SiteRule& rule : sites) {
            if (rule.host == matchingHost) return rule;
        }
        return std::nullopt;
    }
    auto normalized = Host::normalize(matchingHost);
    if (!normalized) return std::nullopt;
    const SiteRule* best = nullptr;
    for (const SiteRule& rule : sites) {
        if (!Host::matches(*normalized, rule.host)) continue;
        if (!best || rule.host.size() > best->host.size()) best = &rule;
    }
    if (!best) return std::nullopt;
    return *best;
}

SiteSettings RuleSet::effectiveSettings(const SiteRule& rule) const {
    SiteSettings translated;
    return effectiveSettings(rule, translated);
}

const SiteSettings& RuleSet::effectiveSettings(const SiteRule& rule, SiteSettings& translated) const {
    const SiteSettings& followed = rule.usesNewSiteDefaults ? newSiteDefaults : rule.settings;
    if (!rule.isApp()) return followed;
    // What only browsers give meaning to is read in the nearest sense an app
    // has, so defaults chosen with sites in mind apply without fuss.
    const GrayTrigger::AfterLimit* limit = followed.trigger.limit();
    bool sessionPeriod = limit != nullptr && limit->per == CountPeriod::session;
    bool untilQuit = followed.stayGray.kind() == StayGray::Kind::untilChromeQuits;
    if (!sessionPeriod && !untilQuit) return followed;
    translated = followed;
    if (sessionPeriod) translated.trigger.limit()->per = CountPeriod::day;
    if (untilQuit) translated.stayGray = StayGray::untilLeave();
    return translated;
}

bool RuleSet::isSharedDayOff(Instant date, const Calendar& calendar) const {
    if (daysOff.empty()) return false;
    DateComponents local = calendar.components(date);
    return std::any_of(daysOff.begin(), daysOff.end(), [&](const DayOff& dayOff) {
        return dayOff.month == local.month && dayOff.day == local.day && (!dayOff.year || *dayOff.year == local.year);
    });
}

std::optional<SiteRule> RuleSet::app(std::string_view bundleID) const {
    auto key = AppKey::make(bundleID);
    if (!key) return std::nullopt;
    return site(*key);
}

SiteRule RuleSet::addSite(std::string_view host) {
    auto normalized = Host::normalize(host);
    if (!normalized) throw RuleError(RuleError::Kind::invalidHost);
    if (hostIsListed(sites, *normalized)) throw RuleError(RuleError::Kind::duplicateHost);
    SiteRule rule{Uuid::random(), std::move(*normalized), std::nullopt, true, newSiteDefaults, SitePin::followSettings};
    sites.push_back(rule);
    return rule;
}

SiteRule RuleSet::addApp(std::string_view bundleID, std::string_view name) {
    std::string trimmedName = Text::trimmed(name);
    auto key = AppKey::make(bundleID);
    if (!key || trimmedName.empty()) throw RuleError(RuleError::Kind::invalidApp);
    if (hostIsListed(sites, *key)) throw RuleError(RuleError::Kind::duplicateApp);
    SiteRule rule{Uuid::random(), std::move(*key), std::move(trimmedName), true, newSiteDefaults,
                  SitePin::followSettings};
    sites.push_back(rule);
    return rule;
}

void RuleSet::removeSite(const Uuid& id) {
    std::erase_if(sites, [&](const SiteRule& rule) { return rule.id == id; });
}

void RuleSet::setPin(const Uuid& siteID, SitePin pin) {
    SiteRule* rule = findRule(sites, siteID);
    if (!rule) throw RuleError(RuleError::Kind::unknownSite);
    rule->pin = pin;
}

void RuleSet::updateSettings(const Uuid& siteID, const SiteSettings& settings) {
    SiteRule* rule = findRule(sites, siteID);
    if (!rule) throw RuleError(RuleError::Kind::unknownSite);
    settings.validate();
    rule->settings = settings;
    rule->usesNewSiteDefaults = false;
}

void RuleSet::resetToNewSiteDefaults(const Uuid& siteID) {
    SiteRule* rule = findRule(sites, siteID);
    if (!rule) throw RuleError(RuleError::Kind::unknownSite);
    rule->settings = newSiteDefaults;
    rule->usesNewSiteDefaults = true;
}

void RuleSet::addDayOff(const DayOff& dayOff) {
    dayOff.validate();
    daysOff.push_back(dayOff);
}

void RuleSet::removeDayOff(const Uuid& id) {
    std::erase_if(daysOff, [&](const DayOff& dayOff) { return dayOff.id == id; });
}

RuleSet RuleSet::savingSnapshot() const {
    RuleSet snapshot = *this;
    for (SiteRule& rule : snapshot.sites) {
        if (rule.usesNewSiteDefaults) rule.settings = newSiteDefaults;
    }
    return snapshot;
}

void RuleSet::validate() const {
    if (schemaVersion != currentSchemaVersion) {
        throw RuleError::invalidSettings("Unsupported rules version " + std::to_string(schemaVersion) + ".");
    }
    newSiteDefaults.validate();
    std::unordered_set<std::string> seen;
    for (const SiteRule& rule : sites) {
        bool isApp = rule.isApp();
        if (isApp) {
            bool usableID = AppKey::isValidBundleID(rule.host.substr(AppKey::prefix.size()));
            bool named = rule.name && !Text::trimmed(*rule.name).empty();
            if (!usableID || !named) throw RuleError(RuleError::Kind::invalidApp);
        } else {
            auto normalized = Host::normalize(rule.host);
            if (!normalized || *normalized != rule.host || rule.name) throw RuleError(RuleError::Kind::invalidHost);
        }
        if (!seen.insert(rule.host).second) {
            throw RuleError(isApp ? RuleError::Kind::duplicateApp : RuleError::Kind::duplicateHost);
        }
        effectiveSettings(rule).validate();
    }
    for (const DayOff& dayOff : daysOff) dayOff.validate();
}

}  // namespace ashview
