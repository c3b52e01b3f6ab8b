#include "Ashview/Shell/SettingsModel.h"

#include "Ashview/Reading/AppMonitor.h"
#include "Ashview/Shell/AppChooser.h"
#include "AshviewCore/Foundation/Text.h"
#include "AshviewCore/Rules/RuleError.h"
#include "AshviewCore/Tracking/SiteStatus.h"
#include "Platform/AppServices.h"
#include "Platform/MainLoop.h"
#include "Platform/OpenPanel.h"
#include "Platform/Workspace.h"

namespace ashview {

namespace {

std::optional<std::string> pageText(const std::optional<SettingsModel::Page>& page) {
    if (!page) return std::nullopt;
    switch (page->kind) {
        case SettingsModel::Page::Kind::stats: return "stats";
        case SettingsModel::Page::Kind::newSites: return "newSites";
        case SettingsModel::Page::Kind::daysOff: return "daysOff";
        case SettingsModel::Page::Kind::site: return page->site.text();
    }
    return std::nullopt;
}

std::optional<SettingsModel::Page> firstSitePage(const RuleSet& rules) {
    if (rules.sites.empty()) return std::nullopt;
    return SettingsModel::Page::forSite(rules.sites.front().id);
}

const SiteRule* findSite(const RuleSet& rules, const Uuid& id) {
    for (const SiteRule& rule : rules.sites)
        if (rule.id == id) return &rule;
    return nullptr;
}

}  // namespace

SettingsModel::SettingsModel(Services services)
    : services_(services),
      rules_(services.controller.rules()),
      dayOffDate_(services.loop.now()),
      usageSummary_(services.controller.usageSummary()),
      problem_(services.controller.rulesProblem()),
      historyProblem_(services.controller.usage().problem()),
      appIcons_(services.workspace) {
    page_ = restoredPage();
    storePage();
}

Calendar SettingsModel::calendar() const { return services_.loop.calendar(); }
Instant SettingsModel::now() const { return services_.loop.now(); }

std::optional<SettingsModel::Page> SettingsModel::restoredPage() const {
    std::optional<std::string> text = services_.defaults.stringValue(pageKey);
    if (text == "stats") return Page::stats();
    if (text == "newSites") return Page::newSites();
    if (text == "daysOff") return Page::daysOff();
    if (text) {
        for (const SiteRule& rule : rules_.sites)
            if (rule.id.text() == *text) return Page::forSite(rule.id);
    }
    return firstSitePage(rules_);
}

void SettingsModel::storePage() {
    if (std::optional<std::string> text = pageText(page_))
        services_.defaults.setString(pageKey, *text);
    else
        services_.defaults.remove(pageKey);
}

void SettingsModel::setPage(std::optional<Page> page) {
    page_ = page;
    showsCustomDays_ = false;
    storePage();
    changed.emit();
}

void SettingsModel::setShowsCustomDays(bool shows) {
    showsCustomDays_ = shows;
    changed.emit();
}

void SettingsModel::setNewHost(std::string text) {
    newHost_ = std::move(text);
    changed.emit();
}

void SettingsModel::setDayOffName(std::string name) {
    dayOffName_ = std::move(name);
    changed.emit();
}

void SettingsModel::setDayOffDate(Instant date) {
    dayOffDate_ = date;
    changed.emit();
}

void SettingsModel::setDayOffEveryYear(bool everyYear) {
    dayOffEveryYear_ = everyYear;
    changed.emit();
}

void SettingsModel::setShowsClearConfirmation(bool shows) {
    showsClearConfirmation_ = shows;
    changed.emit();
}

void SettingsModel::reload() {
    rules_ = services_.controller.rules();
    usageSummary_ = services_.controller.usageSummary();
    if (page_ && page_->kind == Page::Kind::site && !findSite(rules_, page_->site)) {
        setPage(firstSitePage(rules_));
        return;
    }
    changed.emit();
}

void SettingsModel::refreshStatistics() {
    usageSummary_ = services_.controller.usageSummary();
    changed.emit();
}

std::string SettingsModel::title() const {
    if (!page_) return "Drabwise Settings";
    switch (page_->kind) {
        case Page::Kind::stats: return "Last 7 Days";
        case Page::Kind::newSites: return "Defaults for New Sites";
        case Page::Kind::daysOff: return "Days Off";
        case Page::Kind::site:
            if (const SiteRule* rule = findSite(rules_, page_->site)) return rule->displayName();
            return "Drabwise Settings";
    }
    return "Drabwise Settings";
}

std::string SettingsModel::statusText(const SiteRule& rule) const {
    GrayController& controller = services_.controller;
    Instant now = services_.loop.now();
    SiteStatus status = controller.tracker().status(rule, controller.rules(), now, services_.loop.calendar());
    const auto& colorUntil = controller.showInColorUntil();
    if (colorUntil && now < *colorUntil &&
        (status.state == SiteStatus::State::gray || status.state == SiteStatus::State::color))
        return "Showing in color for now";
    return status.text();
}

std::optional<std::string> SettingsModel::frontSiteToAdd() const {
    GrayController& controller = services_.controller;
    if (controller.browsers().status().kind != BrowserStatus::Kind::running) return std::nullopt;
    if (controller.windows().empty() || !controller.windows().front().host) return std::nullopt;
    const std::string& host = *controller.windows().front().host;
    if (rules_.site(host)) return std::nullopt;
    constexpr std::string_view prefix = "www.";
    return host.starts_with(prefix) ? host.substr(prefix.size()) : host;
}

std::optional<SettingsModel::AppToAdd> SettingsModel::appToAdd() const {
    const std::optional<RunningApplication>& app = services_.apps.lastUsedNonBrowser();
    if (!app || !app->bundleIdentifier || app->localizedName.empty()) return std::nullopt;
    // The same test as the menu's: an app whose key names a listed rule is
    // on the list already.
    if (std::optional<std::string> key = services_.apps.key(*app); key && rules_.site(*key)) return std::nullopt;
    return AppToAdd{*app->bundleIdentifier, app->localizedName};
}

void SettingsModel::addedRule(const SiteRule& rule) {
    page_ = Page::forSite(rule.id);
    showsCustomDays_ = false;
    storePage();
    addMessage_.reset();
}

void SettingsModel::addFrontSite() {
    std::optional<std::string> host = frontSiteToAdd();
    if (!host) return;
    if (std::optional<SiteRule> rule = services_.controller.addSite(*host)) {
        rules_ = services_.controller.rules();
        addedRule(*rule);
        changed.emit();
    }
}

void SettingsModel::addTypedSite() {
    RuleSet edited = rules_;
    SiteRule rule;
    try {
        rule = edited.addSite(newHost_);
    } catch (const RuleError& error) {
        addMessage_ = error.kind() == RuleError::Kind::duplicateHost ? "That site is already on your list."
                                                                      : "Type a web address such as example.com.";
        changed.emit();
        return;
    }
    if (save(edited)) {
        addedRule(rule);
        newHost_.clear();
    } else {
        addMessage_ = "Could not save.";
    }
    changed.emit();
}

void SettingsModel::chooseApp() {
    std::optional<std::string> path = AppChooser::chooseApp(services_.openPanel);
    if (!path) return;
    std::optional<std::string> bundleID = services_.workspace.bundleIdentifier(*path);
    if (!bundleID) {
        addMessage_ = "That app can't be added.";
        changed.emit();
        return;
    }
    addApp(*bundleID, services_.workspace.displayName(*path));
}

void SettingsModel::addApp(const std::string& bundleID, const std::string& name) {
    if (std::optional<std::string> refusal =
            AppChooser::refusal(bundleID, services_.workspace.mainBundleIdentifier())) {
        addMessage_ = *refusal;
        changed.emit();
        return;
    }
    RuleSet edited = rules_;
    SiteRule rule;
    try {
        rule = edited.addApp(bundleID, name);
    } catch (const RuleError& error) {
        addMessage_ = error.kind() == RuleError::Kind::duplicateApp ? "That app is already on your list."
                                                                    : "That app can't be added.";
        changed.emit();
        return;
    }
    if (save(edited))
        addedRule(rule);
    else
        addMessage_ = "Could not save.";
    changed.emit();
}

void SettingsModel::addTypedDayOff() {
    DateComponents parts = services_.loop.calendar().components(dayOffDate_);
    DayOff dayOff;
    dayOff.id = Uuid::random();
    dayOff.name = Text::trimmed(dayOffName_);
    dayOff.month = parts.month > 0 ? parts.month : 1;
    dayOff.day = parts.day > 0 ? parts.day : 1;
    if (!dayOffEveryYear_) dayOff.year = parts.year;
    RuleSet edited = rules_;
    try {
        edited.addDayOff(dayOff);
    } catch (const RuleError&) {
        return;
    }
    if (save(edited)) {
        dayOffName_.clear();
        changed.emit();
    }
}

void SettingsModel::clearHistory() {
    services_.controller.usage().clearHistory();
    usageSummary_ = services_.controller.usageSummary();
    showsClearConfirmation_ = false;
    changed.emit();
}

bool SettingsModel::save(const RuleSet& rules) {
    GrayController& controller = services_.controller;
    if (controller.rulesProblem()) return false;
    try {
        controller.store().save(rules);
    } catch (const std::exception&) {
        return false;
    }
    controller.rulesChangedInSettings(rules);
    rules_ = controller.rules();
    changed.emit();
    return true;
}

}  // namespace ashview
