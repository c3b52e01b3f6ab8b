// The setup window's owner: it shows the window over the setup model, keeps
// the model fresh once a second while the window can be seen, remembers in
// "SetupSeen" that the user has closed it, and decides at the start whether
// the window comes up by itself.
//
// The window itself is drawn by a toolkit: its view, made once at the first
// `show()` by the application's `WindowViews`, draws the model, runs a row's
// action when its button is pressed, closes itself for "Done", and calls
// `windowWillClose()` whenever it closes. Owned by the application's delegate
// for the life of the application. Main thread only.
#pragma once

#include "Ashview/Shell/SetupModel.h"
#include "Ashview/Shell/WindowView.h"
#include "Platform/AppServices.h"
#include "Platform/MainLoop.h"

#include <memory>
#include <vector>

namespace ashview {

class SetupWindow final {
public:
    /// The platform the window and its model reach; each must outlive it.
    struct Services {
        SetupModel::Services model;
        UserDefaults& defaults;
        Application& application;
        WindowViews& views;
    };

    /// True once the user has closed the window, in any way; never reset.
    static constexpr const char* seenKey = "SetupSeen";
    static constexpr double refreshInterval = 1.0;

    SetupWindow(Services services, std::vector<SetupModel::CatalogEntry> catalog);
    SetupWindow(const SetupWindow&) = delete;
    SetupWindow& operator=(const SetupWindow&) = delete;
    ~SetupWindow();

    /// Reads every state again, makes the view if there is none yet, starts
    /// the once-a-second refresh (which reads only while the window can be
    /// seen), brings the program and the window to the front.
    void show();
    /// The start's rule: reads every state, then shows the window unless it
    /// has been seen before and no browser lacks access. True when shown.
    bool showAtLaunchIfNeeded();
    /// "Done": closes the window, as its close button does.
    void done();
    /// The window is closing, in whatever way: the refresh stops, and the
    /// window counts as seen.
    void windowWillClose();

    SetupModel& model() { return model_; }
    /// The view; absent until the first `show()`.
    WindowView* view() const { return view_.get(); }

private:
    Services services_;
    SetupModel model_;
    std::shared_ptr<ScheduledTask> timer_;
    // Goes first, while everything it may call back into still stands.
    std::unique_ptr<WindowView> view_;
};

}  // namespace ashview
