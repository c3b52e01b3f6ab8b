// What the shell's window owners (settings, setup, About) need of a window,
// with no toolkit type: the Qt views implement it, and the simulated desktop
// gives one that only records what happened to it.
//
// A view is made once, at the first showing, and kept when closed. Main
// thread only.
#pragma once

#include <functional>
#include <memory>
#include <string>

namespace ashview {

class WindowView {
public:
    WindowView() = default;
    WindowView(const WindowView&) = delete;
    WindowView& operator=(const WindowView&) = delete;
    virtual ~WindowView() = default;

    virtual void setTitle(const std::string& title) = 0;
    /// Makes the window key and orders it front, even while the program is
    /// not active (the owner activates the program first).
    virtual void present() = 0;
    /// Whether any part of the window can be seen now: shown, not covered
    /// whole, on the current Space.
    virtual bool isVisible() const = 0;
    /// Closes the window as its close button does.
    virtual void close() = 0;
};

class AboutPage;
class SettingsModel;
class SetupModel;

/// Makes the views of the three windows. The owner calls `onClose` when the
/// user closes the window in any way.
class WindowViews {
public:
    WindowViews() = default;
    WindowViews(const WindowViews&) = delete;
    WindowViews& operator=(const WindowViews&) = delete;
    virtual ~WindowViews() = default;

    virtual std::unique_ptr<WindowView> settingsView(SettingsModel& model) = 0;
    virtual std::unique_ptr<WindowView> setupView(SetupModel& model, std::function<void()> onClose) = 0;
    virtual std::unique_ptr<WindowView> aboutView(const AboutPage& page) = 0;
};

}  // namespace ashview
