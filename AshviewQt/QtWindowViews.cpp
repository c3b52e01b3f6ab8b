#include "AshviewQt/QtWindowViews.h"

#include "AshviewQt/AboutWidget.h"
#include "AshviewQt/QtWindowView.h"
#include "AshviewQt/SetupWidget.h"
#include "AshviewQt/SettingsWidget.h"

namespace ashview {

std::unique_ptr<WindowView> QtWindowViews::settingsView(SettingsModel& model) {
    return std::make_unique<QtWindowView>(std::make_unique<SettingsWidget>(model, iconImage_));
}

std::unique_ptr<WindowView> QtWindowViews::setupView(SetupModel& model, std::function<void()> onClose) {
    // "Done" closes the window as its close button does; the owner hears of
    // either through `onClose`.
    return std::make_unique<QtWindowView>(std::make_unique<SetupWidget>(model), std::move(onClose));
}

std::unique_ptr<WindowView> QtWindowViews::aboutView(const AboutPage& page) {
    return std::make_unique<QtWindowView>(std::make_unique<AboutWidget>(page, openURL_));
}

}  // namespace ashview
