// The status item's menu: the program's face. Rebuilt from nothing at each
// opening, after a fresh read pass, so that every word in it is true at that
// moment; it keeps no state of its own between openings.
//
// `menuNeedsUpdate()` answers a toolkit-free tree of `MenuItem`s that a view
// turns into the platform's menu. Items' handlers call the controller's
// commands and the four `Actions`; they hold this object, which must outlive
// the tree. Main thread only. The pass of each opening blocks for as long as
// the browsers take to answer.
#pragma once

#include "Ashview/Shell/MenuItem.h"
#include "AshviewCore/Rules/SiteRule.h"

#include <functional>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

namespace ashview {

class AppMonitor;
class GrayController;
class LoginItemService;
class MainLoop;
struct ProbedWindow;

class StatusMenu final {
public:
    /// What the menu opens; each is set by the application.
    struct Actions final {
        /// The settings, on this rule's page when one is given.
        std::function<void(const std::optional<SiteRule>&)> openSettings;
        std::function<void()> openSetup;
        std::function<void()> openStats;
        std::function<void()> openAbout;
    };

    /// Everything is borrowed and must outlive the menu. `errors` takes the
    /// login item's failure lines.
    StatusMenu(GrayController& controller, AppMonitor& apps, LoginItemService& loginItems, MainLoop& loop,
               std::ostream& errors, Actions actions);
    StatusMenu(const StatusMenu&) = delete;
    StatusMenu& operator=(const StatusMenu&) = delete;

    /// Runs a full pass, then builds the whole menu as it stands now.
    std::vector<MenuItem> menuNeedsUpdate();

    /// The first line of the menu: where the program stands, the first case
    /// that applies.
    std::string statusText() const;

    /// The choices of "Show in color for", in minutes.
    static constexpr int colorMinutes[] = {2, 5, 10, 15, 30};

private:
    void addSiteItems(const ProbedWindow& window, std::vector<MenuItem>& menu);
    void addRuleItems(const SiteRule& rule, std::vector<MenuItem>& menu);
    void addUsedAppItems(std::vector<MenuItem>& menu);
    void addColorItems(std::vector<MenuItem>& menu);
    MenuItem sitesItem();
    void addAppItems(std::vector<MenuItem>& menu);
    std::string ruleStatusText(const SiteRule& rule) const;

    GrayController& controller_;
    AppMonitor& apps_;
    LoginItemService& loginItems_;
    MainLoop& loop_;
    std::ostream& errors_;
    Actions actions_;
};

}  // namespace ashview
