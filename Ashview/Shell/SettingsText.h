// The fixed words of the settings window that no other model gives: the
// sidebar's rows and section, the add area, the empty-list screen, the texts
// that replace the editors while the rules file has a problem, the page of
// defaults for new sites, and the heads and labels of the rule form and the
// day-off form. A view shows these words and no others of its own.
#pragma once

#include "Ashview/Controller/GrayController.h"
#include "Ashview/Shell/RuleEditor.h"

#include <string>

namespace ashview {

class SettingsModel;

namespace SettingsText {

// The sidebar.
inline constexpr const char* statsRow = "Last 7 days";
inline constexpr const char* sitesSection = "Your sites and apps";
inline constexpr const char* newSitesRow = "Defaults for new sites";
inline constexpr const char* daysOffRow = "Days off";

// The add area, below the list.
std::string addFrontSiteTitle(const std::string& host);
std::string addFrontSiteToolTip(const std::string& host);
std::string addAppTitle(const std::string& name);
std::string addAppToolTip(const std::string& name);
inline constexpr const char* chooseAppTitle = "Add an app…";
inline constexpr const char* hostPlaceholder = "Type a site, like example.com";

// The detail area.
/// The one text shown instead of every editor.
std::string problemText(GrayController::RulesProblem problem);
inline constexpr const char* emptyTitle = "Add a website";
/// "New sites start with: {sentence}".
std::string emptyDefaults(const SettingsModel& model);
inline constexpr const char* emptyHint = "Open the site in your browser, or type it in the box on the left.";
std::string emptyAddTitle(const std::string& host);
inline constexpr const char* newSitesFooter =
    "Copied onto each site and app you add. The ones you haven't changed keep following these.";
/// The form over the defaults for new sites: each change saves the rules
/// with the new defaults.
RuleEditor newSiteDefaultsEditor(SettingsModel& model);

// The site editor's rows.
inline constexpr const char* rightNowLabel = "Right now";
inline constexpr const char* ruleLabel = "Rule";

// The rule form.
inline constexpr const char* whenSection = "When does this apply?";
inline constexpr const char* timeOfDayLabel = "Time of day";
inline constexpr const char* fromLabel = "From";
inline constexpr const char* toLabel = "To";
inline constexpr const char* daysLabel = "Days";
inline constexpr const char* turnSection = "When does it turn gray?";
inline constexpr const char* turnGrayLabel = "Turn gray";
inline constexpr const char* countedLabel = "Counted";
inline constexpr const char* staySection = "How long does it stay gray?";
inline constexpr const char* stayGrayLabel = "Stay gray";

// The day-off form.
inline constexpr const char* dayOffNameLabel = "Name";
inline constexpr const char* dayOffDateLabel = "Date";
inline constexpr const char* dayOffRepeatsLabel = "Repeats";
inline constexpr const char* dayOffRemoveTitle = "Remove";

}  // namespace SettingsText
}  // namespace ashview
