#include "Ashview/Shell/SiteEditor.h"

#include "AshviewCore/Rules/RuleError.h"

namespace ashview {

SiteEditor::SiteEditor(SettingsModel& model, SiteRule site) : model_(model), site_(std::move(site)) {}

template <typename Edit>
void SiteEditor::edit(Edit&& apply) {
    RuleSet edited = model_.rules();
    try {
        apply(edited);
    } catch (const RuleError&) {
        return;
    }
    model_.save(edited);
}

std::string SiteEditor::summary() const { return model_.rules().summary(site_, model_.now(), model_.calendar()); }

std::string SiteEditor::rightNow() const { return model_.statusText(site_); }

std::string SiteEditor::pinLabel() const { return site_.isApp() ? "This app" : "This site"; }

std::vector<SiteEditor::PinChoice> SiteEditor::pinChoices() {
    return {{SitePin::followSettings, "Follow the rule"},
            {SitePin::grayThisSite, "Keep gray"},
            {SitePin::showInColor, "Keep in color"}};
}

void SiteEditor::choosePin(SitePin pin) {
    edit([&](RuleSet& rules) { rules.setPin(site_.id, pin); });
}

void SiteEditor::useNewSiteDefaultsAgain() {
    edit([&](RuleSet& rules) { rules.resetToNewSiteDefaults(site_.id); });
}

void SiteEditor::remove() {
    edit([&](RuleSet& rules) { rules.removeSite(site_.id); });
}

RuleEditor SiteEditor::ruleEditor() {
    Uuid id = site_.id;
    SettingsModel* model = &model_;
    return RuleEditor(
        model_.rules().effectiveSettings(site_), model_.showsCustomDays(), site_.isApp(), model_.calendar(),
        [model, id](const SiteSettings& settings) {
            RuleSet edited = model->rules();
            try {
                edited.updateSettings(id, settings);
            } catch (const RuleError&) {
                return;
            }
            model->save(edited);
        },
        [model](bool shows) { model->setShowsCustomDays(shows); });
}

}  // namespace ashview
