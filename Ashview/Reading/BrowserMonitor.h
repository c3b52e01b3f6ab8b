// The controller's one view of the browsers: which catalog browsers run, the
// last good reading of each, which may be asked at all, and a word to the
// controller whenever something may have changed.
//
// Change signals (an application started, quit, was hidden or came forward;
// a browser's focused window or title changed) carry no address; they only
// ask for another read, and the address always comes from `BrowserProbe`.
// A browser whose permission the user has not given, or not yet decided on,
// is never sent a script from here, so the read pass never raises the
// system's prompt. A browser that does not answer keeps its last reading, so
// a stall never takes an overlay away.
//
// Owned by the controller and living as long as it; main thread only.
#pragma once

#include "Ashview/Reading/BrowserAccessibility.h"
#include "Ashview/Reading/BrowserProbe.h"
#include "Ashview/Reading/BrowserSource.h"
#include "Ashview/Reading/ProbedWindow.h"
#include "AshviewCore/Reading/BrowserCatalog.h"
#include "AshviewCore/Foundation/Instant.h"
#include "Platform/Accessibility.h"
#include "Platform/AppleEvents.h"
#include "Platform/MainLoop.h"
#include "Platform/WindowServer.h"
#include "Platform/Workspace.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace ashview {

/// The adapters the monitors work through; each must outlive the monitors.
struct ReadingPlatform final {
    Workspace& workspace;
    AppleEvents& appleEvents;
    Accessibility& accessibility;
    WindowServer& windowServer;
    MainLoop& mainLoop;
};

class BrowserMonitor final : public BrowserSource {
public:
    /// Seconds between an application's quit and the check whether its
    /// browser still runs; a quit followed by a relaunch within it is none.
    static constexpr double quitCheckDelay = 1.0;

    explicit BrowserMonitor(ReadingPlatform platform);
    BrowserMonitor(const BrowserMonitor&) = delete;
    BrowserMonitor& operator=(const BrowserMonitor&) = delete;
    ~BrowserMonitor();

    /// Subscribes to the workspace and takes stock of what runs. Once.
    void start() override;
    /// Reads every running browser once, in catalog order, skipping those
    /// cooling down and those without permission. Blocks for as long as the
    /// browsers' scripts take. Fetches each window list once for all the
    /// browsers that answer, and again only after one that did not.
    void read() override;
    BrowserStatus status() const override;
    /// Every current reading joined: the frontmost browser's first, then the
    /// browser that last became active, then the rest in catalog order.
    std::vector<ProbedWindow> windows() const override;
    /// When the browsing session began: the launch of the oldest browser
    /// running when it began. Absent while no browser runs.
    std::optional<Instant> sessionStart() const override { return sessionStart_; }
    std::vector<Instant> launchDates() const override;

    /// Running browsers refused or not permitted, as of the last `read`.
    std::vector<Browser> notAllowed() const override { return notAllowed_; }
    /// The last good reading of each browser, by bundle identifier.
    const std::map<std::string, std::vector<ProbedWindow>>& readings() const { return readings_; }
    /// Processes whose permission was confirmed.
    const std::set<std::int32_t>& allowed() const { return allowed_; }
    std::optional<std::string> lastActive() const { return lastActive_; }
    /// The watcher of a browser seen running, if any.
    const BrowserAccessibility* observer(const std::string& bundleID) const;
    /// The running catalog browsers, in catalog order, each with the
    /// instance that counts for it.
    std::vector<std::pair<Browser, RunningApplication>> running() const;
    /// The instance that counts for `browser`: the earliest launched live one.
    std::optional<RunningApplication> runningInstance(const Browser& browser) const;
    BrowserProbe& probe() { return probe_; }

private:
    std::optional<Browser> browser(const std::optional<RunningApplication>& app) const;
    void browserStarted(const Browser& browser);
    void browserQuit(const Browser& browser);
    void change(const std::string& reason) const;

    ReadingPlatform platform_;
    std::optional<Instant> sessionStart_;
    BrowserProbe probe_;
    std::vector<Browser> notAllowed_;
    std::map<std::string, std::vector<ProbedWindow>> readings_;
    std::map<std::string, std::unique_ptr<BrowserAccessibility>> observers_;
    std::set<std::int32_t> allowed_;
    std::optional<std::string> lastActive_;
    std::vector<std::unique_ptr<NotificationObservation>> subscriptions_;
    /// Let go at destruction; delayed checks hold it weakly.
    std::shared_ptr<BrowserMonitor*> self_;
};

}  // namespace ashview
