#include "Ashview/Shell/SettingsText.h"

#include "Ashview/Shell/SettingsModel.h"

namespace ashview::SettingsText {

std::string addFrontSiteTitle(const std::string& host) { return "Add " + host; }
std::string addFrontSiteToolTip(const std::string& host) { return "Add " + host + " from your browser to your list"; }
std::string addAppTitle(const std::string& name) { return "Add " + name; }
std::string addAppToolTip(const std::string& name) { return "Add " + name + ", the app you used last, to your list"; }

std::string problemText(GrayController::RulesProblem problem) {
    switch (problem) {
        case GrayController::RulesProblem::unreadable:
            return "Your rules file couldn't be read, so it was left exactly as it is.";
        case GrayController::RulesProblem::needsNewerApp:
            break;
    }
    return "Your rules file was saved by a newer version of this app, so it can't be changed here.";
}

std::string emptyDefaults(const SettingsModel& model) {
    return "New sites start with: " + model.rules().newSiteDefaults.sentence(model.calendar());
}

std::string emptyAddTitle(const std::string& host) { return "Add " + host + " from your browser"; }

RuleEditor newSiteDefaultsEditor(SettingsModel& model) {
    SettingsModel* owner = &model;
    return RuleEditor(
        model.rules().newSiteDefaults, model.showsCustomDays(), false, model.calendar(),
        [owner](const SiteSettings& settings) {
            RuleSet edited = owner->rules();
            edited.newSiteDefaults = settings;
            owner->save(edited);
        },
        [owner](bool shows) { owner->setShowsCustomDays(shows); });
}

}  // namespace ashview::SettingsText
