// Which running processes a rule lists, as an app in its own right or as the
// web app of a listed site, and their on-screen windows in the same shape a
// browser's reading has. It also remembers the app the user last worked in,
// which the menu and the settings offer to add.
//
// Owned by the controller, which hands it the rules at every change; main
// thread only. A listed web app counts under its site's own rule.
#pragma once

#include "Ashview/Reading/AppSource.h"
#include "Ashview/Reading/WebAppHosts.h"
#include "AshviewCore/Rules/RuleSet.h"
#include "Platform/WindowServer.h"
#include "Platform/Workspace.h"

#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace ashview {

class AppMonitor final : public AppSource {
public:
    /// Apps that never count as the last used: the system's own utilities.
    static const std::set<std::string>& neverSuggested();
    /// A window narrower or lower than this many points is an auxiliary one.
    static constexpr double smallestWindow = 50.0;

    /// The adapters must outlive the monitor.
    AppMonitor(RuleSet rules, Workspace& workspace, WindowServer& server);
    AppMonitor(const AppMonitor&) = delete;
    AppMonitor& operator=(const AppMonitor&) = delete;
    ~AppMonitor() override;

    void start() override;
    void setRules(const RuleSet& rules) override { rules_ = rules; }
    const RuleSet& rules() const { return rules_; }

    /// The key of the rule covering `app`, or nothing: never for this program
    /// or a catalog browser; an app rule by bundle identifier first, then the
    /// site rule of the web app's host.
    std::optional<std::string> key(const RunningApplication& app) const;
    std::map<std::int32_t, ListedProcess> running() const override;
    /// The listed processes' windows of `in` that are of layer 0, visible,
    /// and at least `smallestWindow` each way, front to back.
    std::vector<ProbedWindow> windows(const std::vector<StackedWindow>& in) const override;

    /// The last regular app the user activated (a browser too), and the same
    /// without browsers. Never cleared: an app that quit stays the last used.
    const std::optional<RunningApplication>& lastUsed() const { return lastUsed_; }
    const std::optional<RunningApplication>& lastUsedNonBrowser() const { return lastUsedNonBrowser_; }
    WebAppHosts& webApps() { return *webApps_; }

private:
    void noteUsed(const RunningApplication& app);
    void notified(ApplicationEvent event, const std::optional<RunningApplication>& app, const std::string& word);

    RuleSet rules_;
    Workspace* workspace_;
    WindowServer* server_;
    // A first look at a possible web app fills its cache, also from a
    // const member.
    std::unique_ptr<WebAppHosts> webApps_;
    std::optional<RunningApplication> lastUsed_;
    std::optional<RunningApplication> lastUsedNonBrowser_;
    std::vector<std::unique_ptr<NotificationObservation>> subscriptions_;
};

}  // namespace ashview
