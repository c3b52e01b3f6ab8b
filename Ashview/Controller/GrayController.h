// The one object in which the program meets: it owns the live rules, the
// visit tracker, the usage keeper and the overlay windows, and drives the
// browser and app readings.
//
// Its heartbeat is the read pass, `read()`: one fresh look at every browser
// window, every window of a listed app and the window server's stack, handed
// to the tracker, after which exactly the windows the tracker calls gray and
// that are on screen have an overlay directly above them. Passes are asked
// for by events through `scheduleRead()` (0.15 s later, coalesced: a burst of
// any size gives one pass) and, only while a browser or a listed app runs, by
// a 5-second backup timer; with nothing to read there is no timed wake-up at
// all. Commands of the user run `read()` at once. Between passes overlays
// follow their windows' moves and reorderings by window-server events alone.
//
// Lifecycle: construct (loads the rules, the counters' store and the usage
// history), `start()` once, `stop()` once at the end. While the displays
// sleep, the screen is locked or the user's session is switched away,
// counting pauses: no window counts as on screen and usage is not observed.
//
// Main thread only; no locks. Everything handed in through `Services` is
// borrowed and must outlive the controller. Destroying the controller
// cancels its queued pass and its timer and clears the callbacks it set.
#pragma once

#include "Ashview/Reading/AppSource.h"
#include "Ashview/Reading/BrowserSource.h"
#include "Ashview/Controller/Log.h"
#include "Ashview/Reading/ProbedWindow.h"
#include "Ashview/Usage/UsageKeeper.h"
#include "AshviewCore/Tracking/Appearance.h"
#include "AshviewCore/Rules/RuleSet.h"
#include "AshviewCore/Rules/RuleStore.h"
#include "AshviewCore/Tracking/TrackerSnapshotStore.h"
#include "AshviewCore/Usage/UsageSummary.h"
#include "AshviewCore/Tracking/VisitTracker.h"
#include "AshviewCore/Tracking/WindowKey.h"
#include "AshviewOverlay/ForeignWindow.h"
#include "AshviewOverlay/Geometry.h"
#include "AshviewOverlay/GrayOverlay.h"
#include "AshviewOverlay/SkyLight.h"
#include "AshviewOverlay/WindowList.h"
#include "Platform/MainLoop.h"
#include "Platform/OverlayWindows.h"
#include "Platform/SystemNotifications.h"
#include "Platform/WindowServer.h"

#include <cstdint>
#include <functional>
#include <iosfwd>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace ashview {

class GrayController final {
public:
    /// Why the rules file could not be used at start. While set, the rules
    /// file is never written: commands work in memory only.
    enum class RulesProblem { needsNewerApp, unreadable };

    /// Why counting is paused.
    enum class PauseReason { displaysAsleep, screenLocked, sessionSwitchedAway };

    /// The platform the controller runs on; all borrowed.
    struct Services final {
        MainLoop& loop;
        WindowServer& windowServer;
        OverlayWindowSystem& overlayWindows;
        /// The workspace's center: displays, session, Space, power-off.
        SystemNotificationCenter& workspace;
        /// The distributed center: screen lock and unlock.
        SystemNotificationCenter& distributed;
        BrowserSource& browsers;
        AppSource& apps;
        /// Where log lines go: standard error in the program.
        std::ostream& log;
    };

    /// Seconds from an event's request to its pass.
    static constexpr double readDelay = 0.15;
    /// Period of the backup timer.
    static constexpr double backupInterval = 5.0;
    /// A full pass saves the counters once this long has passed since the
    /// last successful save.
    static constexpr double saveInterval = 300.0;
    /// A running browser launched within this many seconds of the saved
    /// session's start continues that session over a restart.
    static constexpr double sameSessionTolerance = 2.0;

    /// Loads the rules (creating the file when there is none), and makes the
    /// counters' store and the usage keeper over the rules' folder. A rules
    /// file that cannot be used is left exactly as it is: the controller
    /// runs on fresh rules and `rulesProblem` tells why. Logs nothing.
    GrayController(RuleStore store, Services services);
    ~GrayController();
    GrayController(const GrayController&) = delete;
    GrayController& operator=(const GrayController&) = delete;

    /// Once: registers for window-server events, listens for Space changes
    /// and the three pause reasons, installs the readers' callbacks, restores
    /// the counters, then starts the usage keeper, the browsers and the apps.
    /// Asks for no pass itself.
    void start();
    /// Once, at the end: stops the usage keeper, saves counters and usage,
    /// then takes every overlay away ("window {number} back to color:
    /// quitting"). Runs no pass.
    void stop();

    /// Asks for a pass 0.15 s from now unless one is already queued.
    void scheduleRead();
    /// One whole pass, now.
    void read();

    // Commands of the menu and the settings; each shows its effect at once.

    /// Flips the window's "gray this window" request (memory only).
    void toggleGray(const ProbedWindow& window);
    /// Sets the rule's pin; nothing at all when the rule is not listed.
    void setPin(SitePin pin, const SiteRule& rule);
    /// Everything in color for `minutes`, or for the rest of this browsing
    /// session when absent. Replaces any earlier such wish.
    void showInColor(std::optional<int> minutes);
    /// Lists a site; nothing (no log, no save, no pass) when refused.
    std::optional<SiteRule> addSite(const std::string& host);
    /// Lists an app; nothing when refused.
    std::optional<SiteRule> addApp(const std::string& bundleID, const std::string& name);
    /// Takes the rule off the list.
    void removeSite(const SiteRule& rule);
    /// The settings' path, after the settings wrote `rules` to `store()`:
    /// they replace the live rules, "rules changed in settings" is logged,
    /// `onRulesChange` told and a pass run. Writes no file itself.
    void rulesChangedInSettings(RuleSet rules);
    /// The usage statistic as of now, over the listed rules; computed anew.
    UsageSummary usageSummary() const;

    // What the menu and the settings read.

    bool isGrayingAvailable() const { return isGrayingAvailable_; }
    const std::optional<RulesProblem>& rulesProblem() const { return rulesProblem_; }
    const RuleSet& rules() const { return rules_; }
    /// Where the rules are kept; the settings write through it.
    const RuleStore& store() const { return store_; }
    /// The browser windows of the last pass.
    const std::vector<ProbedWindow>& windows() const { return windows_; }
    const std::optional<Instant>& showInColorUntil() const { return showInColorUntil_; }
    /// The menu's "back to the rules": clears the show-in-color wish. Runs no
    /// pass; the caller does.
    void clearShowInColor() { showInColorUntil_.reset(); }
    /// True when the window's request is "gray this window".
    bool isGrayRequested(const WindowKey& key) const;
    const VisitTracker& tracker() const { return tracker_; }
    const UsageKeeper& usage() const { return usage_; }
    UsageKeeper& usage() { return usage_; }
    BrowserSource& browsers() { return browsers_; }
    AppSource& apps() { return apps_; }
    /// Target window numbers that have an overlay now, ascending.
    std::vector<std::int64_t> grayedWindows() const;
    /// True while at least one pause reason holds.
    bool isPaused() const { return !pauseReasons_.empty(); }
    /// True while a delayed pass waits.
    bool isReadScheduled() const { return readScheduled_; }
    /// True while the backup timer runs.
    bool hasBackupTimer() const { return backupTimer_ != nullptr; }

    /// Told after every change of `rules`.
    std::function<void()> onRulesChange;
    /// Told at the end of every full pass.
    std::function<void()> onRead;

    /// Writes one log line with the current time.
    void log(const std::string& text) const;

    /// A window-server event about window `window`: overlay upkeep between
    /// passes. Closed or hidden: its overlay goes and a pass is asked for.
    /// Moved or resized: its overlay takes the window's new bounds and goes
    /// directly above it. Reordered: its overlay goes directly above it.
    void handle(std::uint32_t event, std::int64_t window);

    /// The words of "window {number} back to color: {reason}" for a target
    /// window that is no longer one, given the last pass's appearances.
    std::string colorReason(std::int64_t number, const VisitTracker::Appearances& shown) const;

    /// The name of a pause reason as the log shows it.
    static std::string name(PauseReason reason);

private:
    static void windowEvent(std::uint32_t event, void* data, std::size_t length, void* context);

    void keepBackupRead(bool keep);
    void queueRead();
    void place(const ForeignWindow& target);
    void removeOverlay(std::int64_t number, const std::string& reason);
    void watch(PauseReason reason, SystemNotificationCenter& center, std::string_view starts, std::string_view ends);
    void setPaused(bool paused, PauseReason reason);
    void browserQuit(const Browser& browser);
    void sessionEnded();
    void restoreCounts();
    void saveCounts();
    void rulesChanged(std::optional<SitePin> pin);

    /// The controller whose window-server events are being handled.
    static GrayController* shared_;

    MainLoop& loop_;
    SystemNotificationCenter& workspace_;
    SystemNotificationCenter& distributed_;
    Log log_;
    WindowList windowList_;
    Geometry geometry_;
    SkyLight skyLight_;
    GrayOverlay grayOverlay_;
    std::int32_t processIdentifier_;

    bool isGrayingAvailable_;
    RuleStore store_;
    TrackerSnapshotStore snapshotStore_;
    UsageKeeper usage_;
    std::optional<RulesProblem> rulesProblem_;
    RuleSet rules_;
    std::vector<ProbedWindow> windows_;
    std::vector<ProbedWindow> appWindows_;
    std::optional<Instant> showInColorUntil_;
    VisitTracker tracker_;
    BrowserSource& browsers_;
    AppSource& apps_;
    std::shared_ptr<ScheduledTask> backupTimer_;
    std::shared_ptr<ScheduledTask> queuedRead_;
    VisitTracker::Requests requests_;
    std::set<PauseReason> pauseReasons_;
    std::map<std::int64_t, std::shared_ptr<OverlayWindow>> overlays_;
    bool readScheduled_ = false;
    Instant lastSnapshot_ = Instant::distantPast();
    /// True from a failed save of the counters to the next successful one.
    bool countsSaveFailing_ = false;
    std::vector<std::unique_ptr<NotificationObservation>> observations_;
};

}  // namespace ashview
