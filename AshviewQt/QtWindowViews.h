// The windows of the program drawn with Qt: what the shell's window owners
// ask for when they first show a window. Main thread only; the models handed
// in must outlive the views made over them.
#pragma once

#include "Ashview/Shell/WindowView.h"
#include "AshviewQt/AppGlyph.h"

#include <functional>
#include <string>

namespace ashview {

class QtWindowViews final : public WindowViews {
public:
    /// `openURL` opens an address with the application the system chooses
    /// (the platform's workspace), for the About page's links; `iconImage`
    /// draws apps' own icons in the settings (a drawn badge without it).
    explicit QtWindowViews(std::function<void(const std::string&)> openURL, IconImage iconImage = {})
        : openURL_(std::move(openURL)), iconImage_(std::move(iconImage)) {}

    std::unique_ptr<WindowView> settingsView(SettingsModel& model) override;
    std::unique_ptr<WindowView> setupView(SetupModel& model, std::function<void()> onClose) override;
    std::unique_ptr<WindowView> aboutView(const AboutPage& page) override;

private:
    std::function<void(const std::string&)> openURL_;
    IconImage iconImage_;
};

}  // namespace ashview
