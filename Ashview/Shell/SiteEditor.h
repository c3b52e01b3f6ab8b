// The editor of one listed site or app: its head, its summary and state, its
// pin, the way back to the defaults, and the rule form over its settings.
// Every edit is made on a copy of the model's rules and saved through the
// model; an edit that fails changes nothing and shows nothing. A short-lived
// object, made for each showing. Main thread only.
#pragma once

#include "Ashview/Shell/RuleEditor.h"
#include "Ashview/Shell/SettingsModel.h"
#include "AshviewCore/Rules/SitePin.h"

#include <string>
#include <vector>

namespace ashview {

class SiteEditor final {
public:
    struct PinChoice final {
        SitePin pin;
        std::string title;
    };

    /// `model` must outlive the editor.
    SiteEditor(SettingsModel& model, SiteRule site);

    const SiteRule& site() const { return site_; }
    std::string name() const { return site_.displayName(); }
    /// The rule's sentence, with its pin and whether it is off today.
    std::string summary() const;
    /// The state of the moment, for the row "Right now".
    std::string rightNow() const;
    /// "This app" or "This site".
    std::string pinLabel() const;
    static std::vector<PinChoice> pinChoices();
    void choosePin(SitePin pin);
    bool usesNewSiteDefaults() const { return site_.usesNewSiteDefaults; }
    void useNewSiteDefaultsAgain();
    void remove();
    /// The form over the settings that apply to the site now (the defaults'
    /// current values while it follows them, so that the form never shows a
    /// stale copy); each change takes the site off the defaults.
    RuleEditor ruleEditor();

    static constexpr const char* removeTitle = "Remove from list";
    static constexpr const char* overrideTitle = "Override the rule";
    static constexpr const char* usesDefaultsText = "Uses the defaults for new sites";
    static constexpr const char* useDefaultsAgainTitle = "Use the defaults for new sites again";

private:
    template <typename Edit>
    void edit(Edit&& apply);

    SettingsModel& model_;
    SiteRule site_;
};

}  // namespace ashview
