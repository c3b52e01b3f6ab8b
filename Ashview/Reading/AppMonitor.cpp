#include "Ashview/Reading/AppMonitor.h"

#include "AshviewCore/Reading/BrowserCatalog.h"
#include "AshviewOverlay/Geometry.h"

namespace ashview {

const std::set<std::string>& AppMonitor::neverSuggested() {
    static const std::set<std::string> ids{"com.apple.systempreferences", "com.apple.finder",
                                           "com.apple.keychainaccess", "com.apple.installer"};
    return ids;
}

AppMonitor::AppMonitor(RuleSet rules, Workspace& workspace, WindowServer& server)
    : rules_(std::move(rules)),
      workspace_(&workspace),
      server_(&server),
      webApps_(std::make_unique<WebAppHosts>(workspace)) {}

AppMonitor::~AppMonitor() = default;

std::optional<std::string> AppMonitor::key(const RunningApplication& app) const {
    if (!app.bundleIdentifier) return std::nullopt;
    if (app.processIdentifier == workspace_->ownProcessIdentifier()) return std::nullopt;
    const std::string& bundleID = *app.bundleIdentifier;
    if (BrowserCatalog::browser(bundleID)) return std::nullopt;
    if (auto rule = rules_.app(bundleID)) return rule->host;
    if (auto host = webApps_->host(app))
        if (auto rule = rules_.site(*host)) return rule->host;
    return std::nullopt;
}

std::map<std::int32_t, ListedProcess> AppMonitor::running() const {
    std::map<std::int32_t, ListedProcess> listed;
    for (const RunningApplication& app : workspace_->runningApplications()) {
        if (app.isTerminated || !app.bundleIdentifier) continue;
        if (auto found = key(app)) listed[app.processIdentifier] = ListedProcess{*app.bundleIdentifier, *found};
    }
    return listed;
}

std::vector<ProbedWindow> AppMonitor::windows(const std::vector<StackedWindow>& in) const {
    std::vector<ProbedWindow> found;
    if (in.empty()) return found;
    std::map<std::int32_t, ListedProcess> listed = running();
    if (listed.empty()) return found;
    Geometry geometry(*server_);
    for (const StackedWindow& window : in) {
        auto owner = listed.find(window.ownerPID);
        if (owner == listed.end()) continue;
        if (window.layer != 0 || !(window.alpha > 0.0)) continue;
        if (!(window.bounds.maxX() - window.bounds.minX() >= smallestWindow)) continue;
        if (!(window.bounds.maxY() - window.bounds.minY() >= smallestWindow)) continue;
        found.push_back(ProbedWindow{WindowKey{owner->second.bundleID, window.number},
                                     ForeignWindow{window.number, geometry.cocoa(window.bounds), true},
                                     owner->second.key});
    }
    return found;
}

void AppMonitor::noteUsed(const RunningApplication& app) {
    if (app.activationPolicy != 0) return;
    if (app.processIdentifier == workspace_->ownProcessIdentifier()) return;
    if (!app.bundleIdentifier) return;
    if (neverSuggested().count(*app.bundleIdentifier)) return;
    lastUsed_ = app;
    if (!BrowserCatalog::browser(*app.bundleIdentifier)) lastUsedNonBrowser_ = app;
}

void AppMonitor::notified(ApplicationEvent event, const std::optional<RunningApplication>& app,
                          const std::string& word) {
    if (!app) return;
    if (event == ApplicationEvent::didActivate) noteUsed(*app);
    std::optional<std::string> listedKey = key(*app);
    if (event == ApplicationEvent::didTerminate && app->bundleIdentifier) webApps_->forget(*app->bundleIdentifier);
    if (listedKey && onChange) onChange("a listed app " + word);
}

void AppMonitor::start() {
    const std::pair<ApplicationEvent, const char*> words[] = {
        {ApplicationEvent::didLaunch, "opened"},       {ApplicationEvent::didTerminate, "quit"},
        {ApplicationEvent::didActivate, "became active"}, {ApplicationEvent::didHide, "was hidden"},
        {ApplicationEvent::didUnhide, "was shown"},
    };
    // The subscriptions are owned here, so no handler outlives the monitor.
    for (const auto& [event, word] : words)
        subscriptions_.push_back(workspace_->observe(
            event, [this, event = event, word = std::string(word)](const std::optional<RunningApplication>& app) {
                notified(event, app, word);
            }));
    if (auto front = workspace_->frontmostApplication()) noteUsed(*front);
    if (!running().empty() && onChange) onChange("a listed app is open");
}

}  // namespace ashview
