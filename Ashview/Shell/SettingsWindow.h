// The owner of the settings window: one model for the life of the program,
// and a view made at the first showing and kept when closed, so that all
// typed state survives closing.
//
// While it lives, the controller's rule changes reload the model, each pass
// and each activation of the program refresh the statistic, and every change
// of the model sets the window's title. Main thread only; borrowed services
// must outlive it. Destroying it clears the controller callbacks it set.
#pragma once

#include "Ashview/Shell/SettingsModel.h"
#include "Ashview/Shell/Signal.h"
#include "Ashview/Shell/WindowView.h"
#include "Platform/SystemNotifications.h"

#include <memory>
#include <optional>

namespace ashview {

class Application;

class SettingsWindow final {
public:
    SettingsWindow(SettingsModel::Services services, Application& application, WindowViews& views);
    ~SettingsWindow();
    SettingsWindow(const SettingsWindow&) = delete;
    SettingsWindow& operator=(const SettingsWindow&) = delete;

    /// Takes the controller's state anew and shows the window, on `site`'s
    /// page when one is given.
    void show(const std::optional<SiteRule>& site);
    /// Shows the window on the statistics page.
    void showStats();

    SettingsModel& model() { return model_; }
    /// Absent until the first showing.
    WindowView* view() const { return view_.get(); }

private:
    SettingsModel model_;
    GrayController& controller_;
    Application& application_;
    WindowViews& views_;
    std::unique_ptr<WindowView> view_;
    Signal::Connection titleWatch_;
    std::unique_ptr<NotificationObservation> activationWatch_;
};

}  // namespace ashview
