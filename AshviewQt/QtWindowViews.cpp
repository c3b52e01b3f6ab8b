#include "AshviewQt/QtWindowViews.h"

#include "AshviewQt/QtWindowView.h"
#include "AshviewQt/SettingsWidget.h"

namespace ashview {

std::unique_ptr<WindowView> QtWindowViews::settingsView(SettingsModel& model) {
    return std::make_unique<QtWindowView>(std::make_unique<SettingsWidget>(model));
}

std::unique_ptr<WindowView> QtWindowViews::setupView(SetupModel&, std::function<void()> onClose) {
    // The setup window's rows are drawn once its model is part of the shell;
    // until then its owner gets a plain window it can show and close.
    return std::make_unique<QtWindowView>(std::make_unique<QWidget>(), std::move(onClose));
}

std::unique_ptr<WindowView> QtWindowViews::aboutView(const AboutPage&) {
    return std::make_unique<QtWindowView>(std::make_unique<QWidget>());
}

}  // namespace ashview
