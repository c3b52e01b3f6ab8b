// The simulated desktop's applications: processes with bundle identifiers,
// launch dates and activation policies; the ten catalog browsers with their
// windows, tabs and scripting; the workspace's lifecycle notifications;
// Accessibility observers; the automation permission of each browser; the
// open panel, application bundles and icons.
//
// It builds on a `SimDesktop`: every window of an application is a window of
// that desktop's stack, owned by the application's process, and time (a
// script that takes a while, a timeout's 3 seconds) passes on its clock.
// It hands out the adapters (`workspace()`, `appleEvents()`,
// `accessibility()`, `openPanel()`) exactly as the Mac entry point hands out
// the real ones.
//
// A browser answers a script the way a real one of its dialect does, reading
// the script text: only a script that targets it by application id and asks
// for the front tab in its own dialect's words works; its reply is a list of
// items of six per window, front to back, with `missing value` for a window
// that shows no page. It can instead refuse (-1743), time out (-1712, after
// 3 seconds of virtual time), fail with another number, or report no windows.
// A browser whose permission is not yet decided would make the system ask the
// user; the simulation counts such a prompt and answers -1743.
//
// Notifications (workspace and Accessibility) are delivered synchronously,
// on the calling (main) thread, at the end of the change that causes them.
// Single-threaded. Deterministic: process identifiers count up from
// `firstProcessIdentifier`, scripting ids from `firstScriptingID`.
#pragma once

#include "AshviewCore/Foundation/Instant.h"
#include "AshviewCore/Foundation/Rect.h"
#include "Platform/Accessibility.h"
#include "Platform/AppleEvents.h"
#include "Platform/OpenPanel.h"
#include "Platform/Sim/SimDesktop.h"
#include "Platform/Workspace.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace ashview {

/// What a new process is made of.
struct SimAppSetup final {
    /// Empty: a process without a bundle identifier.
    std::string bundleIdentifier;
    std::string name;
    std::int64_t activationPolicy = 0;
    std::optional<std::string> bundlePath;
    /// When it began; absent means now, unless `undated`.
    std::optional<Instant> launchDate;
    /// The system does not know when it began.
    bool undated = false;
};

/// What a browser says when asked for its windows.
enum class SimScriptBehaviour { answer, refuse, timeOut, fail, noWindows };

/// Whether the user let this program control a browser.
enum class SimPermission { allowed, denied, notDecided };

/// One window of an application, as a test sees it.
struct SimAppWindow final {
    std::int64_t number = 0;
    std::int32_t ownerPID = 0;
    /// The browser's own id of the window; 0 for an ordinary app's window.
    std::int64_t scriptingID = 0;
    /// The front tab's address; absent when the window shows no page.
    std::optional<std::string> address;
    bool isMinimised = false;
    bool isOnAnotherSpace = false;
    /// False: the browser fails to report this one window.
    bool reports = true;

    friend bool operator==(const SimAppWindow&, const SimAppWindow&) = default;
};

class SimApplications final {
public:
    static constexpr std::int32_t firstProcessIdentifier = 501;
    static constexpr std::int64_t firstScriptingID = 1001;
    /// Seconds a timed-out script holds the main thread.
    static constexpr double timeoutSeconds = 3.0;
    static constexpr const char* defaultOwnBundleIdentifier = "app.drabwise.Drabwise";
    /// The permission query's status for a browser not yet decided on, and
    /// for one that is not running.
    static constexpr std::int32_t wouldRequireUserConsent = -1744;
    static constexpr std::int32_t processNotFound = -600;

    /// `desktop` must outlive this object; the program runs as the desktop's
    /// process.
    explicit SimApplications(SimDesktop& desktop);
    SimApplications(const SimApplications&) = delete;
    SimApplications& operator=(const SimApplications&) = delete;
    ~SimApplications();

    // The adapters, valid as long as this object lives.
    Workspace& workspace();
    AppleEvents& appleEvents();
    Accessibility& accessibility();
    OpenPanel& openPanel();

    // Processes. Calls naming a process or window that does not exist throw
    // std::out_of_range.
    /// Starts a process; didLaunch. Its identifier.
    std::int32_t launch(const SimAppSetup& setup);
    /// Starts an ordinary app, launched now.
    std::int32_t launchApp(const std::string& bundleID, const std::string& name, std::int64_t activationPolicy = 0,
                           std::optional<std::string> bundlePath = std::nullopt);
    /// Starts a catalog browser (throws std::invalid_argument for another
    /// identifier), launched `launchDate` or now.
    std::int32_t launchBrowser(const std::string& bundleID, std::optional<Instant> launchDate = std::nullopt);
    /// Ends a process: its windows close, it leaves the list (or stays listed
    /// as terminated), and didTerminate follows.
    void quit(std::int32_t pid, bool staysListedAsTerminated = false);
    /// Brings a process to the front; didActivate.
    void activate(std::int32_t pid);
    /// Makes the process frontmost, or none, without any notification.
    void setFrontmost(std::optional<std::int32_t> pid);
    /// Hides its windows; didHide. `unhide` shows them again; didUnhide.
    void hide(std::int32_t pid);
    void unhide(std::int32_t pid);
    /// Posts a lifecycle notification as is, with no application when
    /// `pid` is absent.
    void post(ApplicationEvent event, std::optional<std::int32_t> pid);
    std::optional<RunningApplication> application(std::int32_t pid) const;

    // Windows, in the desktop's stack. A browser window gets the next
    // scripting id; every new window posts AXWindowCreated.
    std::int64_t openWindow(std::int32_t pid, Rect quartzBounds, std::optional<std::string> address = std::nullopt,
                            std::int64_t layer = 0);
    /// A new front tab (or none): AXTitleChanged of the window.
    void showAddress(std::int64_t window, std::optional<std::string> address);
    /// Brings the window to the front of its app and focuses it:
    /// AXMainWindowChanged, AXFocusedWindowChanged.
    void focus(std::int64_t window);
    void minimise(std::int64_t window);
    void restore(std::int64_t window);
    void moveToAnotherSpace(std::int64_t window, bool away = true);
    void closeWindow(std::int64_t window);
    void setReports(std::int64_t window, bool reports);
    SimAppWindow appWindow(std::int64_t window) const;
    /// The windows of a process, in the order they were opened.
    std::vector<SimAppWindow> windowsOf(std::int32_t pid) const;

    // Scripting, per bundle identifier.
    void setScriptBehaviour(const std::string& bundleID, SimScriptBehaviour behaviour, std::int64_t errorNumber = 0);
    void setPermission(const std::string& bundleID, SimPermission permission);
    /// Virtual seconds every answered script takes (default 0.02).
    void setScriptTime(double seconds);
    /// The system gives no script object for any text.
    void setScriptsUnavailable(bool unavailable = true);
    /// Scripts that reached the browser (a running instance of it).
    std::size_t scriptsReceived(const std::string& bundleID) const;
    /// Permission queries made about the browser.
    std::size_t permissionQueries(const std::string& bundleID) const;
    /// Prompts the system would have shown the user for the browser.
    std::size_t consentPrompts(const std::string& bundleID) const;
    /// Script objects made so far, and runs of any script.
    std::size_t scriptsMade() const;
    std::size_t scriptRuns() const;

    // Accessibility.
    void setTrusted(bool trusted);
    /// Posts `notification` from process `pid` about an element of `role`
    /// (absent: the element has no role) to its observers.
    void postAccessibility(std::int32_t pid, const std::string& notification, std::optional<std::string> role);
    /// Observers of `pid` whose source is on the run loop.
    std::size_t liveObservers(std::int32_t pid) const;

    // Bundles, icons, the open panel.
    void registerBundle(const std::string& bundleID, const std::string& path);
    /// The bundle is deleted: the system no longer finds it.
    void removeBundle(const std::string& bundleID);
    void setOwnBundleIdentifier(std::optional<std::string> bundleID);
    std::size_t bundleLookups() const;
    std::size_t iconLookups() const;
    /// Every address given to the workspace to open, in order.
    const std::vector<std::string>& openedURLs() const;
    /// How often the program asked the system to prompt for Accessibility.
    std::size_t trustPrompts() const;
    /// The permission set for a browser, if any was set (unset counts as
    /// allowed).
    std::optional<SimPermission> permission(const std::string& bundleID) const;
    void setOpenPanelResult(OpenPanelResult result);
    /// The settings of the last panel shown, if any.
    std::optional<OpenPanelSettings> lastOpenPanel() const;

    struct State;

private:
    std::shared_ptr<State> state_;
};

/// The icon the simulated workspace hands out: the path it was made for.
class SimIcon final : public AppIcon {
public:
    explicit SimIcon(std::string path) : path(std::move(path)) {}
    const std::string path;
};

}  // namespace ashview
