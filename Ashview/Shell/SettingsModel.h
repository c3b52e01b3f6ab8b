// The state behind the settings window: the copy of the rules the window
// edits, the open page, the text typed into its small forms, the statistic it
// shows, and the user's commands.
//
// The model never changes the running rules directly: an edit is made on a
// copy of the rules and goes through `save`, which writes the rules file
// first and only then hands the rules to the controller. While the rules file
// has a problem nothing can be saved. Every change of a field is followed by
// `changed`. Everything handed in is borrowed and must outlive the model.
// Main thread only.
#pragma once

#include "Ashview/Controller/GrayController.h"
#include "Ashview/Shell/AppIcons.h"
#include "Ashview/Shell/Signal.h"
#include "Ashview/Usage/UsageKeeper.h"
#include "AshviewCore/Foundation/Uuid.h"
#include "AshviewCore/Rules/RuleSet.h"
#include "AshviewCore/Usage/UsageSummary.h"

#include <optional>
#include <string>
#include <string_view>

namespace ashview {

class AppMonitor;
class MainLoop;
class OpenPanel;
class UserDefaults;
class Workspace;

class SettingsModel final {
public:
    /// One page of the window.
    struct Page final {
        enum class Kind { site, stats, newSites, daysOff };
        Kind kind = Kind::stats;
        /// The site's id with `site`.
        Uuid site;

        static Page forSite(const Uuid& id) { return Page{Kind::site, id}; }
        static Page stats() { return Page{Kind::stats, {}}; }
        static Page newSites() { return Page{Kind::newSites, {}}; }
        static Page daysOff() { return Page{Kind::daysOff, {}}; }
        friend bool operator==(const Page&, const Page&) = default;
    };

    struct Services final {
        GrayController& controller;
        AppMonitor& apps;
        UserDefaults& defaults;
        Workspace& workspace;
        OpenPanel& openPanel;
        MainLoop& loop;
    };

    /// The app that the "Add {name}" button would add.
    struct AppToAdd final {
        std::string bundleID;
        std::string name;
        friend bool operator==(const AppToAdd&, const AppToAdd&) = default;
    };

    /// Where the open page is kept between runs.
    static constexpr std::string_view pageKey = "SettingsPage";

    /// Takes the controller's state and restores the page kept in the
    /// defaults, writing it back as it now stands.
    explicit SettingsModel(Services services);
    SettingsModel(const SettingsModel&) = delete;
    SettingsModel& operator=(const SettingsModel&) = delete;

    /// Told after every change of any field below.
    Signal changed;

    const RuleSet& rules() const { return rules_; }
    const std::optional<Page>& page() const { return page_; }
    /// Sets the page, clears `showsCustomDays` and keeps the page in the
    /// defaults (removing the key for no page).
    void setPage(std::optional<Page> page);
    bool showsCustomDays() const { return showsCustomDays_; }
    void setShowsCustomDays(bool shows);
    const std::string& newHost() const { return newHost_; }
    void setNewHost(std::string text);
    const std::optional<std::string>& addMessage() const { return addMessage_; }
    const std::string& dayOffName() const { return dayOffName_; }
    void setDayOffName(std::string name);
    Instant dayOffDate() const { return dayOffDate_; }
    void setDayOffDate(Instant date);
    bool dayOffEveryYear() const { return dayOffEveryYear_; }
    void setDayOffEveryYear(bool everyYear);
    const UsageSummary& usageSummary() const { return usageSummary_; }
    bool showsClearConfirmation() const { return showsClearConfirmation_; }
    void setShowsClearConfirmation(bool shows);
    /// Set: the rules cannot be edited at all.
    const std::optional<GrayController::RulesProblem>& problem() const { return problem_; }
    /// Set: the statistic is not kept, and the page says why.
    const std::optional<UsageKeeper::Problem>& historyProblem() const { return historyProblem_; }
    AppIcons& appIcons() { return appIcons_; }
    GrayController& controller() { return services_.controller; }
    /// The calendar of the moment, for dates and clock times.
    Calendar calendar() const;
    Instant now() const;

    /// Takes the controller's rules and statistic anew; a site page whose
    /// site is gone moves to the first site, or to no page.
    void reload();
    /// Takes the controller's statistic anew (after each pass, and when the
    /// program becomes active).
    void refreshStatistics();
    /// The window's title for the open page.
    std::string title() const;
    /// Where `rule` stands, as its row says it.
    std::string statusText(const SiteRule& rule) const;
    /// The site of the front browser window that the add button would add,
    /// without a leading "www.".
    std::optional<std::string> frontSiteToAdd() const;
    /// The app last used that is no browser and not yet listed.
    std::optional<AppToAdd> appToAdd() const;

    // The user's commands.
    void addFrontSite();
    void addTypedSite();
    void chooseApp();
    void addApp(const std::string& bundleID, const std::string& name);
    void addTypedDayOff();
    /// Forgets the counted history, then shows the statistic anew.
    void clearHistory();

    /// Writes `rules` and, only once that has worked, hands them to the
    /// controller. False, with nothing changed, while the rules file has a
    /// problem or when the write fails.
    bool save(const RuleSet& rules);

private:
    std::optional<Page> restoredPage() const;
    void storePage();
    void addedRule(const SiteRule& rule);

    Services services_;
    RuleSet rules_;
    std::optional<Page> page_;
    bool showsCustomDays_ = false;
    std::string newHost_;
    std::optional<std::string> addMessage_;
    std::string dayOffName_;
    Instant dayOffDate_;
    bool dayOffEveryYear_ = true;
    UsageSummary usageSummary_;
    bool showsClearConfirmation_ = false;
    std::optional<GrayController::RulesProblem> problem_;
    std::optional<UsageKeeper::Problem> historyProblem_;
    AppIcons appIcons_;
};

}  // namespace ashview
