#include "Ashview/Reading/BrowserMonitor.h"

#include <algorithm>

namespace ashview {

BrowserMonitor::BrowserMonitor(ReadingPlatform platform)
    : platform_(platform),
      probe_(platform.appleEvents, platform.windowServer, platform.mainLoop),
      self_(std::make_shared<BrowserMonitor*>(this)) {}

BrowserMonitor::~BrowserMonitor() = default;

void BrowserMonitor::change(const std::string& reason) const {
    if (onChange) onChange(reason);
}

std::optional<RunningApplication> BrowserMonitor::runningInstance(const Browser& browser) const {
    std::vector<RunningApplication> instances = platform_.workspace.runningApplications(browser.bundleID);
    std::vector<InstanceFacts> facts;
    facts.reserve(instances.size());
    for (const RunningApplication& app : instances) facts.push_back(InstanceFacts{app.isTerminated, app.launchDate});
    std::optional<std::size_t> chosen = BrowserCatalog::countingInstance(facts);
    if (!chosen) return std::nullopt;
    return instances[*chosen];
}

std::vector<std::pair<Browser, RunningApplication>> BrowserMonitor::running() const {
    std::vector<std::pair<Browser, RunningApplication>> pairs;
    for (const Browser& browser : BrowserCatalog::browsers())
        if (auto app = runningInstance(browser)) pairs.emplace_back(browser, std::move(*app));
    return pairs;
}

std::optional<Browser> BrowserMonitor::browser(const std::optional<RunningApplication>& app) const {
    if (!app || !app->bundleIdentifier) return std::nullopt;
    return BrowserCatalog::browser(*app->bundleIdentifier);
}

const BrowserAccessibility* BrowserMonitor::observer(const std::string& bundleID) const {
    auto found = observers_.find(bundleID);
    return found == observers_.end() ? nullptr : found->second.get();
}

void BrowserMonitor::start() {
    Workspace& workspace = platform_.workspace;
    // The subscriptions are owned here, so no handler outlives the monitor.
    subscriptions_.push_back(workspace.observe(ApplicationEvent::didLaunch, [this](const auto& app) {
        if (auto found = browser(app)) browserStarted(*found);
    }));
    subscriptions_.push_back(workspace.observe(ApplicationEvent::didTerminate, [this](const auto& app) {
        auto found = browser(app);
        if (!found) return;
        std::weak_ptr<BrowserMonitor*> weak = self_;
        platform_.mainLoop.runAfter(quitCheckDelay, [weak, quit = *found] {
            auto self = weak.lock();
            if (!self) return;
            BrowserMonitor& monitor = **self;
            if (!monitor.runningInstance(quit)) monitor.browserQuit(quit);
        });
    }));
    subscriptions_.push_back(workspace.observe(ApplicationEvent::didActivate, [this](const auto& app) {
        auto found = browser(app);
        if (!found) return;
        lastActive_ = found->bundleID;
        change(found->name + " became active");
    }));
    subscriptions_.push_back(workspace.observe(ApplicationEvent::didHide, [this](const auto& app) {
        if (auto found = browser(app)) change(found->name + " was hidden");
    }));
    subscriptions_.push_back(workspace.observe(ApplicationEvent::didUnhide, [this](const auto& app) {
        if (auto found = browser(app)) change(found->name + " was shown");
    }));
    for (const auto& [browser, app] : running()) browserStarted(browser);
}

void BrowserMonitor::browserStarted(const Browser& browser) {
    std::optional<RunningApplication> instance = runningInstance(browser);
    if (auto known = observers_.find(browser.bundleID); known != observers_.end()) {
        // Seen already, unless it quit and started again within the quit
        // check: then only its watcher follows it to the new process.
        if (!instance || known->second->pid() == instance->processIdentifier) return;
        known->second->start(instance->processIdentifier);
        change(browser.name + " is open");
        return;
    }
    if (!instance) return;
    std::weak_ptr<BrowserMonitor*> weak = self_;
    auto watcher = std::make_unique<BrowserAccessibility>(
        browser, platform_.accessibility, [weak, name = browser.name](const std::string&, const std::string& what) {
            if (auto self = weak.lock()) (*self)->change(name + " reported " + what);
        });
    watcher->start(instance->processIdentifier);
    observers_[browser.bundleID] = std::move(watcher);
    if (!sessionStart_) {
        std::optional<Instant> earliest;
        for (const auto& [other, app] : running())
            if (app.launchDate && (!earliest || *app.launchDate < *earliest)) earliest = app.launchDate;
        sessionStart_ = earliest.value_or(platform_.mainLoop.now());
    }
    change(browser.name + " is open");
}

void BrowserMonitor::browserQuit(const Browser& browser) {
    // A browser not seen running, or whose quit was told already, is not
    // told again: two quick quits of its instances give one.
    auto found = observers_.find(browser.bundleID);
    if (found == observers_.end()) return;
    found->second->stop();
    observers_.erase(found);
    readings_.erase(browser.bundleID);
    std::erase(notAllowed_, browser);
    std::vector<std::pair<Browser, RunningApplication>> stillRunning = running();
    std::set<std::int32_t> live;
    for (const auto& [other, app] : stillRunning) live.insert(app.processIdentifier);
    std::erase_if(allowed_, [&](std::int32_t pid) { return !live.count(pid); });
    if (onBrowserQuit) onBrowserQuit(browser);
    // The session ends once, also when the last two browsers quit together.
    if (stillRunning.empty() && sessionStart_) {
        sessionStart_.reset();
        if (onSessionEnd) onSessionEnd();
    }
}

void BrowserMonitor::read() {
    std::unordered_map<WindowKey, std::int64_t> previous;
    for (const auto& [bundleID, windows] : readings_)
        for (const ProbedWindow& window : windows)
            if (window.screenWindow) previous.emplace(window.key, window.screenWindow->number);

    // The window lists are fetched once for the whole read, when the first
    // browser answers, and handed to every browser after it. They are taken
    // anew after a browser that did not answer, as it may have held the
    // thread for its whole time limit.
    std::optional<ScreenWindows> screen;
    auto screenWindows = [&]() -> const ScreenWindows& {
        if (!screen) screen = ScreenWindows::take(platform_.windowServer);
        return *screen;
    };

    std::vector<Browser> refused;
    for (const auto& [browser, app] : running()) {
        // Permission given since, or a browser that started again in a new
        // process, gets its watcher now.
        if (auto found = observers_.find(browser.bundleID);
            found != observers_.end() &&
            (!found->second->hasObserver() || found->second->pid() != app.processIdentifier))
            found->second->start(app.processIdentifier);
        if (probe_.isCoolingDown(app)) continue;

        bool permitted = allowed_.count(app.processIdentifier) > 0;
        if (!permitted) {
            std::int32_t status = platform_.appleEvents.determinePermissionToAutomate(
                browser.bundleID, AppleEvents::anyEvent, AppleEvents::anyEvent, false);
            if (status == 0) {
                allowed_.insert(app.processIdentifier);
                permitted = true;
            }
        }
        if (permitted) {
            BrowserReading reading = probe_.read(browser, app, previous, screenWindows);
            if (reading.kind == BrowserReading::Kind::windows) {
                readings_[browser.bundleID] = std::move(reading.windows);
                continue;
            }
            if (reading.kind == BrowserReading::Kind::noAnswer) {
                screen.reset();
                change(browser.name + " did not answer");
                continue;
            }
            allowed_.erase(app.processIdentifier);
        }
        readings_[browser.bundleID] = {};
        refused.push_back(browser);
    }
    notAllowed_ = std::move(refused);
}

std::vector<Instant> BrowserMonitor::launchDates() const {
    std::vector<Instant> dates;
    for (const auto& [browser, app] : running())
        if (app.launchDate) dates.push_back(*app.launchDate);
    return dates;
}

BrowserStatus BrowserMonitor::status() const {
    std::vector<std::pair<Browser, RunningApplication>> pairs = running();
    if (pairs.empty()) return BrowserStatus{BrowserStatus::Kind::noBrowser, std::nullopt};
    if (notAllowed_.empty()) return BrowserStatus{BrowserStatus::Kind::running, std::nullopt};
    bool allRefused = std::all_of(pairs.begin(), pairs.end(), [&](const auto& pair) {
        return std::find(notAllowed_.begin(), notAllowed_.end(), pair.first) != notAllowed_.end();
    });
    if (allRefused) return BrowserStatus{BrowserStatus::Kind::notAllowed, notAllowed_.front()};
    return BrowserStatus{BrowserStatus::Kind::running, std::nullopt};
}

std::vector<ProbedWindow> BrowserMonitor::windows() const {
    std::optional<std::string> front;
    if (auto app = platform_.workspace.frontmostApplication()) front = app->bundleIdentifier;
    std::vector<std::pair<Browser, RunningApplication>> pairs = running();
    std::vector<std::pair<int, std::size_t>> order;
    for (std::size_t i = 0; i < pairs.size(); ++i) {
        const std::string& id = pairs[i].first.bundleID;
        int rank = front == id ? 0 : lastActive_ == id ? 1 : 2;
        order.emplace_back(rank, i);
    }
    std::stable_sort(order.begin(), order.end());
    std::vector<ProbedWindow> joined;
    for (const auto& [rank, index] : order) {
        auto reading = readings_.find(pairs[index].first.bundleID);
        if (reading == readings_.end()) continue;
        joined.insert(joined.end(), reading->second.begin(), reading->second.end());
    }
    return joined;
}

}  // namespace ashview
