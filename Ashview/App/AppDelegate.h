// The program's entry and exit: whether this process may run at all, the move
// of the older data folder, the objects built in their order, and the stop.
//
// The same object serves the Mac program (as the application's delegate,
// called by AppKit) and the Linux program (called by the scenario player).
// It owns the controller and, as they arrive, the menu and the windows.
// Main thread only; made once per process and never launched twice.
#pragma once

#include "Ashview/Shell/AboutWindow.h"
#include "Ashview/Shell/SettingsWindow.h"
#include "Ashview/Shell/SetupWindow.h"
#include "Ashview/Shell/StatusMenu.h"
#include "Ashview/Shell/WindowView.h"
#include "AshviewCore/Rules/RuleStore.h"
#include "Platform/Accessibility.h"
#include "Platform/AppServices.h"
#include "Platform/AppleEvents.h"
#include "Platform/MainLoop.h"
#include "Platform/OpenPanel.h"
#include "Platform/OverlayWindows.h"
#include "Platform/SystemNotifications.h"
#include "Platform/WindowServer.h"
#include "Platform/Workspace.h"

#include <filesystem>
#include <iosfwd>
#include <memory>
#include <optional>

namespace ashview {

class AppMonitor;
class BrowserMonitor;
class GrayController;

class AppDelegate final {
public:
    /// The desktop the engine reads and draws on.
    struct Desktop {
        MainLoop& loop;
        WindowServer& windowServer;
        OverlayWindowSystem& overlayWindows;
        /// The workspace's notification center and the distributed one.
        SystemNotificationCenter& workspaceNotifications;
        SystemNotificationCenter& distributedNotifications;
        Workspace& workspace;
        AppleEvents& appleEvents;
        Accessibility& accessibility;
        OpenPanel& openPanel;
    };

    /// Everything the delegate reaches outside itself; each must outlive it.
    struct Services {
        Updater& updater;
        LoginItemService& loginItems;
        UserDefaults& defaults;
        Application& application;
        /// The settings, setup and About windows' views.
        WindowViews& views;
        /// Standard error in the program: the log, and the lines written
        /// before the controller exists (those without a time).
        std::ostream& errors;
        Desktop desktop;
    };

    /// The alert of a second copy.
    static constexpr const char* alreadyRunningMessage = "Drabwise is already running";
    static constexpr const char* alreadyRunningInformation = "Look for it in the menu bar.";

    /// Makes the setup window over the catalog's browsers installed now.
    explicit AppDelegate(Services services);
    AppDelegate(const AppDelegate&) = delete;
    AppDelegate& operator=(const AppDelegate&) = delete;
    ~AppDelegate();

    /// Moves the older data folder (only for the normal data folder), takes
    /// the one-copy lock, removes the temporary files of saves cut short by
    /// a crash, starts the updater, builds the controller (which loads the
    /// rules) and starts it, registers the login item, and shows the setup
    /// window when it is needed. A second copy on the same data folder
    /// shows the alert, asks the application to terminate, and does nothing
    /// else: no updater, no controller.
    void applicationDidFinishLaunching();
    /// Stops the controller when there is one: counters and history are
    /// saved before any overlay is taken away.
    void applicationWillTerminate();

    /// The user's "Check for Updates…".
    void checkForUpdates();

    /// The data folder chosen at launch; absent before it.
    const std::optional<RuleStore>& store() const { return store_; }
    /// False before launch and for a second copy.
    bool isRunning() const { return running_; }
    /// The engine; absent until launch has finished, and for a second copy.
    GrayController* controller() const { return controller_.get(); }
    /// The status item's menu and the settings window; absent like the
    /// controller.
    StatusMenu* statusMenu() const { return statusMenu_.get(); }
    SettingsWindow* settingsWindow() const { return settingsWindow_.get(); }
    SetupWindow& setupWindow() { return *setupWindow_; }
    AboutWindow& aboutWindow() { return *aboutWindow_; }

private:
    void moveLegacyDataFolder(const std::filesystem::path& to);
    /// Removes what saves cut short by a crash left in the data folder; only
    /// while this process holds the folder's lock, so no save is under way.
    void removeLeftoverTemporaryFiles(const RuleStore& store);
    void startUpdater();
    void quitBecauseAnotherCopyIsRunning();
    /// The settings window and the status menu, between the controller and
    /// its start.
    void makeShell();

    Services services_;
    std::unique_ptr<SetupWindow> setupWindow_;
    std::unique_ptr<AboutWindow> aboutWindow_;
    std::optional<RuleStore> store_;
    bool running_ = false;
    // The controller goes first at destruction: it lets go of the monitors.
    std::unique_ptr<BrowserMonitor> browsers_;
    std::unique_ptr<AppMonitor> apps_;
    std::unique_ptr<GrayController> controller_;
    // The shell goes before the controller it refers to.
    std::unique_ptr<SettingsWindow> settingsWindow_;
    std::unique_ptr<StatusMenu> statusMenu_;
};

}  // namespace ashview
