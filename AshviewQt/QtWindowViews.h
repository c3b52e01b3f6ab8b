// The windows of the program drawn with Qt: what the shell's window owners
// ask for when they first show a window. Main thread only; the models handed
// in must outlive the views made over them.
#pragma once

#include "Ashview/Shell/WindowView.h"

#include <functional>
#include <string>

namespace ashview {

class QtWindowViews final : public WindowViews {
public:
    /// `openURL` opens an address with the application the system chooses
    /// (the platform's workspace), for the About page's links.
    explicit QtWindowViews(std::function<void(const std::string&)> openURL) : openURL_(std::move(openURL)) {}

    std::unique_ptr<WindowView> settingsView(SettingsModel& model) override;
    std::unique_ptr<WindowView> setupView(SetupModel& model, std::function<void()> onClose) override;
    std::unique_ptr<WindowView> aboutView(const AboutPage& page) override;

private:
    std::function<void(const std::string&)> openURL_;
};

}  // namespace ashview
