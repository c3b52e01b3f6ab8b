#include "Ashview/Shell/StatusMenu.h"

#include "Ashview/App/LoginItem.h"
#include "Ashview/Controller/GrayController.h"
#include "Ashview/Reading/AppMonitor.h"
#include "AshviewCore/Reading/BrowserCatalog.h"
#include "AshviewCore/Tracking/SiteStatus.h"
#include "Platform/MainLoop.h"

namespace ashview {

namespace {

/// The host as the add item offers it: without one leading "www.".
std::string withoutWWW(const std::string& host) {
    constexpr std::string_view prefix = "www.";
    return host.starts_with(prefix) ? host.substr(prefix.size()) : host;
}

}  // namespace

StatusMenu::StatusMenu(GrayController& controller, AppMonitor& apps, LoginItemService& loginItems, MainLoop& loop,
                       std::ostream& errors, Actions actions)
    : controller_(controller),
      apps_(apps),
      loginItems_(loginItems),
      loop_(loop),
      errors_(errors),
      actions_(std::move(actions)) {}

std::vector<MenuItem> StatusMenu::menuNeedsUpdate() {
    controller_.read();
    std::vector<MenuItem> menu;
    menu.push_back(MenuItem::disabled(statusText()));

    BrowserSource& browsers = controller_.browsers();
    bool running = browsers.status().kind == BrowserStatus::Kind::running;
    std::vector<Browser> refusing = browsers.notAllowed();
    if (running && !refusing.empty())
        menu.push_back(MenuItem::disabled(refusing.front().name + " isn't allowed yet: choose Set Up Drabwise…"));

    menu.push_back(MenuItem::action(controller_.usageSummary().menuLine(), [this] { actions_.openStats(); }));

    if (running && !controller_.windows().empty()) {
        ProbedWindow front = controller_.windows().front();
        menu.push_back(MenuItem::separator());
        addSiteItems(front, menu);
        menu.push_back(MenuItem::action("Gray this window, all tabs", [this, front] { controller_.toggleGray(front); },
                                        controller_.isGrayRequested(front.key)));
    }
    addUsedAppItems(menu);

    menu.push_back(MenuItem::separator());
    addColorItems(menu);
    menu.push_back(MenuItem::separator());
    menu.push_back(sitesItem());
    addAppItems(menu);
    menu.push_back(MenuItem::system("Check for Updates…", SystemAction::checkForUpdates));
    MenuItem settings = MenuItem::action("Settings…", [this] { actions_.openSettings(std::nullopt); });
    settings.keyEquivalent = ",";
    menu.push_back(std::move(settings));
    menu.push_back(MenuItem::separator());
    menu.push_back(MenuItem::system("Quit Drabwise", SystemAction::quit, "q"));
    return menu;
}

std::string StatusMenu::statusText() const {
    using Problem = GrayController::RulesProblem;
    const auto& problem = controller_.rulesProblem();
    if (problem == Problem::unreadable) return "Your rules file couldn't be read, so it was left as it is";
    if (problem == Problem::needsNewerApp) return "Your rules file needs a newer version of this app";
    if (!controller_.isGrayingAvailable()) return "Graying isn't available on this version of macOS";

    BrowserStatus status = controller_.browsers().status();
    if (status.kind == BrowserStatus::Kind::noBrowser) return "No supported browser is open";
    if (status.kind == BrowserStatus::Kind::notAllowed && status.browser)
        return "Allow control of " + status.browser->name +
               " in System Settings › Privacy & Security › Automation";

    Instant now = loop_.now();
    const auto& colorUntil = controller_.showInColorUntil();
    if (colorUntil && now < *colorUntil) return "Showing every site in color";

    const RuleSet& rules = controller_.rules();
    const auto& windows = controller_.windows();
    if (!windows.empty() && windows.front().host) {
        if (std::optional<SiteRule> rule = rules.site(*windows.front().host))
            return rule->host + ": " + ruleStatusText(*rule);
    }
    if (rules.sites.empty()) return "No sites on your list yet";
    std::size_t count = rules.sites.size();
    return loop_.calendar().integerText(static_cast<long long>(count)) + (count == 1 ? " site" : " sites") +
           " on your list";
}

std::string StatusMenu::ruleStatusText(const SiteRule& rule) const {
    return controller_.tracker().status(rule, controller_.rules(), loop_.now(), loop_.calendar()).text();
}

void StatusMenu::addSiteItems(const ProbedWindow& window, std::vector<MenuItem>& menu) {
    if (!window.host) return;
    if (std::optional<SiteRule> rule = controller_.rules().site(*window.host)) {
        addRuleItems(*rule, menu);
        return;
    }
    std::string host = withoutWWW(*window.host);
    menu.push_back(MenuItem::action("Add " + host + " to your list", [this, host] {
        if (std::optional<SiteRule> added = controller_.addSite(host)) actions_.openSettings(added);
    }));
}

void StatusMenu::addRuleItems(const SiteRule& rule, std::vector<MenuItem>& menu) {
    const std::string& name = rule.displayName();
    bool keptGray = rule.pin == SitePin::grayThisSite;
    menu.push_back(MenuItem::action(
        "Keep " + name + " gray",
        [this, rule, keptGray] { controller_.setPin(keptGray ? SitePin::followSettings : SitePin::grayThisSite, rule); },
        keptGray));
    menu.push_back(MenuItem::action("Edit " + name + "'s rule…", [this, rule] { actions_.openSettings(rule); }));
}

void StatusMenu::addUsedAppItems(std::vector<MenuItem>& menu) {
    const std::optional<RunningApplication>& app = apps_.lastUsed();
    if (!app || !app->bundleIdentifier || BrowserCatalog::browser(*app->bundleIdentifier)) return;

    const RuleSet& rules = controller_.rules();
    std::optional<SiteRule> rule;
    if (std::optional<std::string> key = apps_.key(*app)) rule = rules.site(*key);
    if (rule && controller_.browsers().status().kind == BrowserStatus::Kind::running &&
        !controller_.windows().empty() && controller_.windows().front().host) {
        std::optional<SiteRule> shown = rules.site(*controller_.windows().front().host);
        if (shown && shown->id == rule->id) return;
    }
    menu.push_back(MenuItem::separator());
    if (rule) {
        addRuleItems(*rule, menu);
        return;
    }
    std::string bundleID = *app->bundleIdentifier;
    std::string name = app->localizedName.empty() ? bundleID : app->localizedName;
    menu.push_back(MenuItem::action("Add " + name + " to your list", [this, bundleID, name] {
        if (std::optional<SiteRule> added = controller_.addApp(bundleID, name)) actions_.openSettings(added);
    }));
}

void StatusMenu::addColorItems(std::vector<MenuItem>& menu) {
    const auto& until = controller_.showInColorUntil();
    if (until && loop_.now() < *until) {
        std::string when = *until == Instant::distantFuture() ? std::string("you quit your browsers")
                                                             : loop_.calendar().shortTimeText(*until);
        menu.push_back(MenuItem::action("Resume graying (color until " + when + ")", [this] {
            controller_.clearShowInColor();
            controller_.log("resume graying");
            controller_.read();
        }));
        return;
    }
    std::vector<MenuItem> choices;
    for (int minutes : colorMinutes)
        choices.push_back(MenuItem::action(std::to_string(minutes) + " minutes",
                                           [this, minutes] { controller_.showInColor(minutes); }));
    choices.push_back(MenuItem::action("Rest of this browsing session", [this] { controller_.showInColor(std::nullopt); }));
    menu.push_back(MenuItem::withSubmenu("Show in color for", std::move(choices)));
}

MenuItem StatusMenu::sitesItem() {
    std::vector<MenuItem> sites;
    const RuleSet& rules = controller_.rules();
    if (rules.sites.empty()) sites.push_back(MenuItem::disabled("Add a website: open it in your browser, then choose Add"));
    for (const SiteRule& rule : rules.sites) {
        std::vector<MenuItem> items;
        items.push_back(MenuItem::disabled(ruleStatusText(rule)));
        items.push_back(MenuItem::action("Edit rule…", [this, rule] { actions_.openSettings(rule); }));
        items.push_back(MenuItem::action("Remove", [this, rule] { controller_.removeSite(rule); }));
        sites.push_back(MenuItem::withSubmenu(rule.displayName(), std::move(items)));
    }
    return MenuItem::withSubmenu("Your sites and apps", std::move(sites));
}

void StatusMenu::addAppItems(std::vector<MenuItem>& menu) {
    menu.push_back(MenuItem::action("About Drabwise", [this] { actions_.openAbout(); }));
    menu.push_back(MenuItem::action("Set Up Drabwise…", [this] { actions_.openSetup(); }));
    if (LoginItem::isAvailable(loginItems_)) {
        menu.push_back(MenuItem::action(
            "Open at Login", [this] { LoginItem::setEnabled(!loginItems_.isEnabled(), loginItems_, errors_); },
            loginItems_.isEnabled()));
    }
}

}  // namespace ashview
