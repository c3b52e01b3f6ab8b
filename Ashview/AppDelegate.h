// The program's entry and exit: whether this process may run at all, the move
// of the older data folder, the objects built in their order, and the stop.
//
// The same object serves the Mac program (as the application's delegate,
// called by AppKit) and the Linux program (called by the scenario player).
// It owns the controller and, as they arrive, the menu and the windows.
// Main thread only; made once per process and never launched twice.
#pragma once

#include "AshviewCore/RuleStore.h"
#include "Platform/AppServices.h"

#include <filesystem>
#include <iosfwd>
#include <optional>

namespace ashview {

class AppDelegate final {
public:
    /// Everything the delegate reaches outside itself; each must outlive it.
    struct Services {
        Updater& updater;
        LoginItemService& loginItems;
        UserDefaults& defaults;
        Application& application;
        /// Standard error in the program: lines written before the
        /// controller's log exists, without a time.
        std::ostream& errors;
    };

    /// The alert of a second copy.
    static constexpr const char* alreadyRunningMessage = "Drabwise is already running";
    static constexpr const char* alreadyRunningInformation = "Look for it in the menu bar.";

    explicit AppDelegate(Services services);
    AppDelegate(const AppDelegate&) = delete;
    AppDelegate& operator=(const AppDelegate&) = delete;
    ~AppDelegate();

    /// Moves the older data folder (only for the normal data folder), takes
    /// the one-copy lock, starts the updater and registers the login item. A second copy on the same data folder
    /// shows the alert, asks the application to terminate, and does nothing
    /// else.
    void applicationDidFinishLaunching();
    /// The end of the run.
    void applicationWillTerminate();

    /// The user's "Check for Updates…".
    void checkForUpdates();

    /// The data folder chosen at launch; absent before it.
    const std::optional<RuleStore>& store() const { return store_; }
    /// False before launch and for a second copy.
    bool isRunning() const { return running_; }

private:
    void moveLegacyDataFolder(const std::filesystem::path& to);
    void startUpdater();
    void quitBecauseAnotherCopyIsRunning();

    Services services_;
    std::optional<RuleStore> store_;
    bool running_ = false;
};

}  // namespace ashview
