// What the settings window shows besides the editors: the sidebar, the add
// area below it, which detail the open page shows, the empty-list screen and
// the form over the defaults for new sites. Plain content built from the
// model, so that a view only draws it and forwards each action to the model.
#pragma once

#include "Ashview/Shell/RuleEditor.h"
#include "Ashview/Shell/SettingsModel.h"

#include <optional>
#include <string>
#include <vector>

namespace ashview::SettingsContent {

struct SidebarRow final {
    enum class Kind { row, section };
    Kind kind = Kind::row;
    /// The row's words: a site's display name, or a fixed title.
    std::string title;
    /// A site's state of the moment; empty for the other rows.
    std::string subtitle;
    /// The page the row selects; absent for a section head.
    std::optional<SettingsModel::Page> page;
    /// An app's bundle identifier, for its icon.
    std::optional<std::string> appBundleID;
};

/// "Last 7 days", the section "Your sites and apps" with one row per site in
/// the user's order, "Defaults for new sites", "Days off".
std::vector<SidebarRow> sidebar(const SettingsModel& model);

struct AddButton final {
    std::string title;
    std::string toolTip;
};

struct AddArea final {
    /// "Add {host}": runs `addFrontSite`.
    std::optional<AddButton> frontSite;
    /// "Add {name}": adds `appToAdd`.
    std::optional<AddButton> app;
    static constexpr const char* chooseAppTitle = "Add an app…";
    static constexpr const char* placeholder = "Type a site, like example.com";
};

AddArea addArea(const SettingsModel& model);

enum class Detail { problem, emptyList, site, stats, newSites, daysOff };

/// Which screen the detail area shows: a rules-file problem hides every
/// editor, whichever page is open.
Detail detail(const SettingsModel& model);
/// The only text of the detail area while the rules file has a problem.
std::optional<std::string> problemText(const SettingsModel& model);
/// The open site's rule, if the page is a site that is still listed.
std::optional<SiteRule> openSite(const SettingsModel& model);

struct EmptyList final {
    static constexpr const char* title = "Add a website";
    /// "New sites start with: {sentence}".
    std::string defaults;
    /// The hint when no site is offered from the browser.
    std::optional<std::string> hint;
    /// "Add {host} from your browser", when one is offered.
    std::optional<std::string> addButton;
};

EmptyList emptyList(const SettingsModel& model);

inline constexpr const char* newSitesFooter =
    "Copied onto each site and app you add. The ones you haven't changed keep following these.";

/// The form over the defaults for new sites; each change is saved.
RuleEditor newSitesEditor(SettingsModel& model);

}  // namespace ashview::SettingsContent
