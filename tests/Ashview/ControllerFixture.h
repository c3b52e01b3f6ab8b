// A simulated desktop with simulated applications and a gray controller on
// it, reading through the real browser and app monitors. Tests tell the
// user's story on it: open windows, advance the clock, then look at the log,
// the overlays and the counts.
#pragma once

#include "Ashview/Reading/AppMonitor.h"
#include "Ashview/Controller/GrayController.h"
#include "AshviewCore/Rules/RuleStore.h"
#include "Platform/Sim/SimNotificationCenter.h"
#include "ReadingFixture.h"
#include "TempFolder.h"

#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace ashview {

class ControllerTest : public ReadingFixture {
protected:
    static constexpr std::int32_t otherPID = 777;

    /// Scripts answer at once, so a pass takes no time and the clock moves
    /// only when a test moves it.
    ControllerTest() { apps.setScriptTime(0); }

    /// A controller over `directory`, by default the test's own folder.
    GrayController& make(const std::filesystem::path& directory = {}) {
        controller = std::make_unique<GrayController>(
            RuleStore(directory.empty() ? folder.path() : directory),
            GrayController::Services{desktop.mainLoop(), desktop.windowServer(), desktop.overlayWindows(), workspace,
                                     distributed, browsers, appMonitor, out});
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
    /// Opens a Chrome window at `bounds` (Quartz) showing `host`, launching
    /// Chrome first if it is not running; the window's number.
    std::int64_t open(const std::string& host, Rect bounds) {
        if (!chromePID) chromePID = apps.launchBrowser(chrome);
        return apps.openWindow(chromePID, bounds, "https://" + host + "/");
    }
    /// Reads of Chrome so far: each pass that reads browsers asks it once.
    std::size_t reads() const { return apps.scriptsReceived(chrome); }
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
    BrowserMonitor browsers{platform()};
    std::int32_t chromePID = 0;
    AppMonitor appMonitor{RuleSet::fresh(), apps.workspace(), desktop.windowServer()};
    std::int32_t gamePID = 0;
    std::ostringstream out;
    std::unique_ptr<GrayController> controller;
    int fullPasses = 0;
};

}  // namespace ashview
