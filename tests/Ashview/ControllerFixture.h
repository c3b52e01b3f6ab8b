// A simulated desktop with a gray controller on it, a simple reader that
// reports browser windows at chosen addresses, and the real reader of listed
// apps over simulated processes. Tests tell the user's story on it: open windows,
// advance the clock, then look at the log, the overlays and the counts.
#pragma once

#include "Ashview/AppMonitor.h"
#include "Ashview/BrowserSource.h"
#include "Ashview/GrayController.h"
#include "AshviewCore/BrowserCatalog.h"
#include "AshviewCore/RuleStore.h"
#include "AshviewOverlay/Geometry.h"
#include "Platform/Sim/SimNotificationCenter.h"
#include "ReadingFixture.h"
#include "TempFolder.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

namespace ashview {

/// Browsers as a script would read them: each tab is a window of the
/// simulated desktop showing a host. A window that closed is no longer read.
class SimBrowsers final : public BrowserSource {
public:
    struct Tab final {
        WindowKey key;
        std::int64_t screenWindow = 0;
        std::optional<std::string> host;
    };

    explicit SimBrowsers(SimDesktop& desktop) : desktop_(desktop), geometry_(desktop.windowServer()) {}

    void start() override {
        started = true;
        if (isRunning && onChange) onChange("Google Chrome is open");
    }
    void read() override {
        ++reads;
        readings_.clear();
        if (refused) return;
        for (const Tab& tab : tabs) {
            std::optional<SimWindow> window = desktop_.window(tab.screenWindow);
            if (!window) continue;
            readings_.push_back(ProbedWindow{
                tab.key, ForeignWindow{window->number, geometry_.cocoa(window->bounds), window->isOnScreen}, tab.host});
        }
    }
    BrowserStatus status() const override {
        if (!isRunning) return BrowserStatus{};
        if (refused) return BrowserStatus{BrowserStatus::Kind::notAllowed, chrome()};
        return BrowserStatus{BrowserStatus::Kind::running, std::nullopt};
    }
    std::vector<ProbedWindow> windows() const override { return readings_; }
    std::vector<Browser> notAllowed() const override {
        if (isRunning && refused) return {chrome()};
        return {};
    }
    std::optional<Instant> sessionStart() const override { return session; }
    std::vector<Instant> launchDates() const override { return launches; }

    static Browser chrome() { return *BrowserCatalog::browser("com.google.Chrome"); }

    /// Opens a Chrome window at `bounds` (Quartz) showing `host`; its number.
    std::int64_t open(const std::string& host, Rect bounds) {
        std::int64_t number = desktop_.openWindow(SimWindowSetup{pid, "Google Chrome", bounds});
        tabs.push_back(Tab{WindowKey{"com.google.Chrome", nextID++}, number, host});
        isRunning = true;
        return number;
    }
    Tab& tab(std::int64_t screenWindow) {
        for (Tab& tab : tabs) {
            if (tab.screenWindow == screenWindow) return tab;
        }
        throw std::out_of_range("no such tab");
    }

    static constexpr std::int32_t pid = 401;  // below the simulated processes' numbers
    std::vector<Tab> tabs;
    bool isRunning = false;
    bool refused = false;
    bool started = false;
    int reads = 0;
    std::optional<Instant> session;
    std::vector<Instant> launches;

private:
    SimDesktop& desktop_;
    Geometry geometry_;
    std::vector<ProbedWindow> readings_;
    std::int64_t nextID = 1;
};

/// The controller reads browsers through the stand-in above, or through the
/// real monitor over the simulated applications once `browserMonitor` is set.
class ControllerTest : public ReadingFixture {
protected:
    static constexpr std::int32_t otherPID = 777;

    GrayController& make() {
        controller = std::make_unique<GrayController>(
            RuleStore(folder.path()),
            GrayController::Services{desktop.mainLoop(), desktop.windowServer(), desktop.overlayWindows(), workspace,
                                     distributed, browserMonitor ? static_cast<BrowserSource&>(*browserMonitor) : browsers,
                                     appMonitor, out});
        controller->onRead = [this] { ++fullPasses; };
        return *controller;
    }
    GrayController& start() {
        if (!controller) make();
        controller->start();
        return *controller;
    }
    /// Rules with one listed site that turns gray after `minutes` on screen
    /// in an hour (none: as soon as it is open).
    void listSite(const std::string& host, std::optional<std::int64_t> minutes = std::nullopt) {
        RuleSet rules = controller->rules();
        rules.newSiteDefaults.trigger = minutes ? GrayTrigger::afterLimit(*minutes, std::nullopt, CountPeriod::hour)
                                                : GrayTrigger::rightAway();
        rules.addSite(host);
        controller->rulesChangedInSettings(rules);
    }
    /// An unrelated window, in front of everything of layer 0.
    std::int64_t openOther(Rect bounds) { return desktop.openWindow(SimWindowSetup{otherPID, "Notes", bounds}); }
    /// Launches the app "Game" with one window at `bounds` (Quartz); the
    /// window's number.
    std::int64_t openGame(Rect bounds) {
        if (!gamePID) gamePID = apps.launchApp("com.example.Game", "Game");
        return apps.openWindow(gamePID, bounds);
    }
    void advance(double seconds) { desktop.clock().advance(seconds); }

    /// Log lines without their time stamps; the log is then emptied.
    std::vector<std::string> takeLines() {
        std::vector<std::string> result;
        std::istringstream in(out.str());
        for (std::string line; std::getline(in, line);) result.push_back(line.substr(9));
        out.str("");
        return result;
    }
    std::filesystem::path snapshotFile() const { return folder.path() / "running.json"; }
    std::filesystem::path historyFile() const { return folder.path() / "history.json"; }

    TempFolder folder;
    SimNotificationCenter& workspace = desktop.workspaceNotifications();
    SimNotificationCenter& distributed = desktop.distributedNotifications();
    SimBrowsers browsers{desktop};
    std::unique_ptr<BrowserMonitor> browserMonitor;
    AppMonitor appMonitor{RuleSet::fresh(), apps.workspace(), desktop.windowServer()};
    std::int32_t gamePID = 0;
    std::ostringstream out;
    std::unique_ptr<GrayController> controller;
    int fullPasses = 0;
};

}  // namespace ashview
