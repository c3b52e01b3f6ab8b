#include "Ashview/Controller/GrayController.h"

#include "AshviewCore/Rules/RuleError.h"
#include "AshviewCore/Reading/Visibility.h"

#include <algorithm>
#include <cmath>
#include <exception>
#include <utility>

namespace ashview {

GrayController* GrayController::shared_ = nullptr;

namespace {

std::string pinName(SitePin pin) {
    switch (pin) {
        case SitePin::followSettings: return "followSettings";
        case SitePin::grayThisSite: return "grayThisSite";
        case SitePin::showInColor: return "showInColor";
    }
    return "followSettings";
}

std::optional<GrayController::RulesProblem> problemOf(const RuleStoreError& error) {
    if (error.kind() == RuleStoreError::Kind::newerSchema) return GrayController::RulesProblem::needsNewerApp;
    return GrayController::RulesProblem::unreadable;
}

}  // namespace

GrayController::GrayController(RuleStore store, Services services)
    : loop_(services.loop),
      workspace_(services.workspace),
      distributed_(services.distributed),
      log_(services.log, services.loop),
      windowList_(services.windowServer),
      geometry_(services.windowServer),
      skyLight_(services.windowServer),
      grayOverlay_(services.overlayWindows),
      processIdentifier_(services.windowServer.processIdentifier()),
      isGrayingAvailable_(skyLight_.isAvailable() && grayOverlay_.isAvailable()),
      store_(std::move(store)),
      snapshotStore_{store_.directory},
      usage_(store_.directory, services.loop, services.workspace, log_),
      browsers_(services.browsers),
      apps_(services.apps) {
    try {
        rules_ = store_.loadOrCreate();
    } catch (const RuleStoreError& error) {
        rules_ = RuleSet::fresh();
        rulesProblem_ = problemOf(error);
    } catch (const std::exception&) {
        rules_ = RuleSet::fresh();
        rulesProblem_ = RulesProblem::unreadable;
    }
}

GrayController::~GrayController() {
    if (shared_ == this) shared_ = nullptr;
    if (queuedRead_) queuedRead_->cancel();
    if (backupTimer_) backupTimer_->cancel();
    browsers_.onChange = nullptr;
    browsers_.onBrowserQuit = nullptr;
    browsers_.onSessionEnd = nullptr;
    apps_.onChange = nullptr;
}

void GrayController::log(const std::string& text) const { log_(text); }

std::string GrayController::name(PauseReason reason) {
    switch (reason) {
        case PauseReason::displaysAsleep: return "displaysAsleep";
        case PauseReason::screenLocked: return "screenLocked";
        case PauseReason::sessionSwitchedAway: return "sessionSwitchedAway";
    }
    return "";
}

// MARK: - Lifecycle

void GrayController::start() {
    shared_ = this;
    if (!isGrayingAvailable_) log("graying is not available on this macOS version");
    for (std::uint32_t event : {SkyLight::windowClosed, SkyLight::windowMoved, SkyLight::windowResized,
                                SkyLight::windowReordered, SkyLight::windowHidden}) {
        skyLight_.onEvent(event, &GrayController::windowEvent);
    }
    observations_.push_back(workspace_.observe(SystemNotification::activeSpaceDidChange, [this] {
        log("Space changed");
        for (auto& [number, overlay] : overlays_) grayOverlay_.rearm(*overlay);
        scheduleRead();
    }));
    watch(PauseReason::displaysAsleep, workspace_, SystemNotification::screensDidSleep,
          SystemNotification::screensDidWake);
    watch(PauseReason::sessionSwitchedAway, workspace_, SystemNotification::sessionDidResignActive,
          SystemNotification::sessionDidBecomeActive);
    watch(PauseReason::screenLocked, distributed_, SystemNotification::screenIsLocked,
          SystemNotification::screenIsUnlocked);

    // The readers' callbacks are cleared when the controller goes, so they
    // never reach a controller that is gone.
    browsers_.onChange = [this](const std::string& text) {
        log(text);
        scheduleRead();
    };
    browsers_.onBrowserQuit = [this](const Browser& browser) { browserQuit(browser); };
    browsers_.onSessionEnd = [this] { sessionEnded(); };
    apps_.setRules(rules_);
    apps_.onChange = [this](const std::string& text) {
        log(text);
        scheduleRead();
    };

    restoreCounts();
    usage_.start();
    browsers_.start();
    apps_.start();
}

void GrayController::stop() {
    usage_.stop();
    saveCounts();
    std::vector<std::int64_t> numbers = grayedWindows();
    for (std::int64_t number : numbers) removeOverlay(number, "quitting");
}

void GrayController::watch(PauseReason reason, SystemNotificationCenter& center, std::string_view starts,
                           std::string_view ends) {
    observations_.push_back(center.observe(starts, [this, reason] { setPaused(true, reason); }));
    observations_.push_back(center.observe(ends, [this, reason] { setPaused(false, reason); }));
}

void GrayController::setPaused(bool paused, PauseReason reason) {
    bool wasEmpty = pauseReasons_.empty();
    if (paused) {
        pauseReasons_.insert(reason);
    } else {
        pauseReasons_.erase(reason);
    }
    if (pauseReasons_.empty() == wasEmpty) return;
    if (paused) {
        log("counting paused: " + name(reason));
    } else {
        log("counting resumed");
    }
    scheduleRead();
    if (paused) saveCounts();
}

void GrayController::browserQuit(const Browser& browser) {
    log(browser.name + " quit");
    std::set<std::int64_t> numbers;
    for (const ProbedWindow& window : windows_) {
        if (window.key.browser == browser.bundleID && window.screenWindow) numbers.insert(window.screenWindow->number);
    }
    for (std::int64_t number : grayedWindows()) {
        if (numbers.contains(number)) removeOverlay(number, browser.name + " quit");
    }
    std::erase_if(windows_, [&](const ProbedWindow& window) { return window.key.browser == browser.bundleID; });
    std::erase_if(requests_, [&](const auto& entry) { return entry.first.browser == browser.bundleID; });
    scheduleRead();
}

void GrayController::sessionEnded() {
    log("every browser quit");
    std::set<std::int64_t> keep;
    for (const ProbedWindow& window : appWindows_) {
        if (window.screenWindow) keep.insert(window.screenWindow->number);
    }
    for (std::int64_t number : grayedWindows()) {
        if (!keep.contains(number)) removeOverlay(number, "every browser quit");
    }
    tracker_.browserQuit();
    usage_.recorder().record(tracker_.sightings(), loop_.now(), pauseReasons_.empty(), loop_.calendar());
    requests_.clear();
    if (showInColorUntil_ == Instant::distantFuture()) showInColorUntil_.reset();
    windows_.clear();
    saveCounts();
}

void GrayController::restoreCounts() {
    std::optional<TrackerSnapshot> snapshot = snapshotStore_.load();
    if (!snapshot) return;
    std::vector<Instant> launches = browsers_.launchDates();
    bool continues = false;
    if (!launches.empty() && snapshot->sessionStart) {
        Instant earliest = *std::min_element(launches.begin(), launches.end());
        continues = std::fabs(earliest - *snapshot->sessionStart) < sameSessionTolerance;
    }
    tracker_.restore(*snapshot, loop_.now(), continues);
    log(continues ? "restored counts, including this browsing session" : "restored hour and day counts");
}

void GrayController::saveCounts() {
    try {
        snapshotStore_.save(tracker_.snapshot(loop_.now(), browsers_.sessionStart()));
        lastSnapshot_ = loop_.now();
        if (std::exchange(countsSaveFailing_, false)) log("saving counts works again");
    } catch (const std::exception&) {
        // Tried again at every full pass: only the first of a run is told.
        if (!std::exchange(countsSaveFailing_, true)) log("could not save counts");
    }
    usage_.saveIfChanged();
}

// MARK: - Asking for a pass

void GrayController::scheduleRead() {
    if (readScheduled_) return;
    queueRead();
}

void GrayController::queueRead() {
    readScheduled_ = true;
    queuedRead_ = loop_.runAfter(readDelay, [this] {
        // Cleared first, so that what happens in the pass may ask for the next.
        readScheduled_ = false;
        read();
    });
}

void GrayController::keepBackupRead(bool keep) {
    if (keep) {
        if (backupTimer_) return;
        backupTimer_ = loop_.repeatEvery(backupInterval, [this] {
            if (!readScheduled_) queueRead();
        });
    } else if (backupTimer_) {
        backupTimer_->cancel();
        backupTimer_.reset();
    }
}

// MARK: - The pass

void GrayController::read() {
    browsers_.read();
    bool appsRun = !apps_.running().empty();
    BrowserStatus status = browsers_.status();
    keepBackupRead(appsRun || status.kind != BrowserStatus::Kind::noBrowser);
    if (status.kind == BrowserStatus::Kind::noBrowser && !appsRun && appWindows_.empty()) return;

    windows_ = browsers_.windows();
    std::vector<StackedWindow> stack = windowList_.stack();
    appWindows_ = apps_.windows(stack);
    std::vector<const ProbedWindow*> all;
    all.reserve(windows_.size() + appWindows_.size());
    for (const ProbedWindow& window : windows_) all.push_back(&window);
    for (const ProbedWindow& window : appWindows_) all.push_back(&window);

    std::vector<Visibility::Window> visible;
    visible.reserve(stack.size());
    for (const StackedWindow& entry : stack) {
        visible.push_back(Visibility::Window{entry.number, entry.bounds, entry.ownerPID, entry.layer, entry.alpha});
    }

    Instant now = loop_.now();
    bool counting = pauseReasons_.empty();
    std::vector<BrowserWindow> seen;
    seen.reserve(all.size());
    for (const ProbedWindow* window : all) {
        bool onScreen = false;
        if (counting && window->screenWindow) {
            std::optional<double> fraction =
                Visibility::uncoveredFraction(window->screenWindow->number, visible, processIdentifier_);
            onScreen = fraction && *fraction >= Visibility::visibleFraction;
        }
        seen.push_back(BrowserWindow{window->key, window->host, onScreen});
    }

    RuleSet rules = rules_;
    VisitTracker::Appearances appearances =
        tracker_.update(rules, seen, now, loop_.calendar(), requests_, showInColorUntil_);
    usage_.recorder().record(tracker_.sightings(), now, counting, loop_.calendar());

    std::vector<ForeignWindow> targets;
    if (isGrayingAvailable_) {
        for (const ProbedWindow* window : all) {
            auto found = appearances.find(window->key);
            if (found == appearances.end() || found->second != Appearance::gray) continue;
            if (window->screenWindow && window->screenWindow->isOnScreen) targets.push_back(*window->screenWindow);
        }
    }
    std::set<std::int64_t> wanted;
    for (const ForeignWindow& target : targets) wanted.insert(target.number);
    for (std::int64_t number : grayedWindows()) {
        if (!wanted.contains(number)) removeOverlay(number, colorReason(number, appearances));
    }
    for (const ForeignWindow& target : targets) place(target);

    std::vector<std::int64_t> subscribed;
    subscribed.reserve(all.size());
    for (const ProbedWindow* window : all) {
        if (window->screenWindow) subscribed.push_back(window->screenWindow->number);
    }
    skyLight_.requestEvents(subscribed);

    if (now - lastSnapshot_ >= saveInterval) saveCounts();
    if (onRead) onRead();
}

void GrayController::place(const ForeignWindow& target) {
    std::shared_ptr<OverlayWindow>& overlay = overlays_[target.number];
    if (!overlay) {
        log("graying window " + std::to_string(target.number));
        overlay = grayOverlay_.make(target.frame);
    }
    if (!(overlay->frame() == target.frame)) overlay->setFrame(target.frame, true);
    std::vector<int> positions = windowList_.positions({overlay->windowNumber(), target.number});
    if (positions[0] < 0 || positions[1] < positions[0]) {
        overlay->orderWindow(WindowOrderingMode::above, target.number);
    }
}

void GrayController::removeOverlay(std::int64_t number, const std::string& reason) {
    auto found = overlays_.find(number);
    if (found == overlays_.end()) return;
    std::shared_ptr<OverlayWindow> overlay = std::move(found->second);
    overlays_.erase(found);
    overlay->orderOut();
    log("window " + std::to_string(number) + " back to color: " + reason);
}

std::vector<std::int64_t> GrayController::grayedWindows() const {
    std::vector<std::int64_t> numbers;
    numbers.reserve(overlays_.size());
    for (const auto& [number, overlay] : overlays_) numbers.push_back(number);
    return numbers;
}

std::string GrayController::colorReason(std::int64_t number, const VisitTracker::Appearances& shown) const {
    const ProbedWindow* found = nullptr;
    for (const auto* list : {&windows_, &appWindows_}) {
        for (const ProbedWindow& window : *list) {
            if (window.screenWindow && window.screenWindow->number == number) {
                found = &window;
                break;
            }
        }
        if (found) break;
    }
    if (!found) {
        return browsers_.notAllowed().empty() ? "no browser window matched it in this reading"
                                              : "control of a browser is not allowed";
    }
    if (!found->screenWindow->isOnScreen) return "its window is not on screen";
    auto entry = shown.find(found->key);
    if (entry == shown.end()) return "no reading for its window";
    switch (entry->second) {
        case Appearance::notListed: return "its visible tab is not a listed site";
        case Appearance::gray: return "it should still be gray";
        case Appearance::color: break;
    }
    if (showInColorUntil_ && *showInColorUntil_ > loop_.now()) return "showing in color for now";
    return "its rule says color";
}

// MARK: - Window-server events

void GrayController::windowEvent(std::uint32_t event, void* data, std::size_t, void*) {
    std::optional<std::uint32_t> window = SkyLight::windowNumber(data);
    if (!window || !shared_) return;
    shared_->handle(event, *window);
}

void GrayController::handle(std::uint32_t event, std::int64_t window) {
    switch (event) {
        case SkyLight::windowClosed:
            removeOverlay(window, "its window closed");
            scheduleRead();
            return;
        case SkyLight::windowHidden:
            removeOverlay(window, "its window was hidden");
            scheduleRead();
            return;
        case SkyLight::windowMoved:
        case SkyLight::windowResized: {
            auto found = overlays_.find(window);
            if (found == overlays_.end()) return;
            std::shared_ptr<OverlayWindow> overlay = found->second;
            if (std::optional<Rect> bounds = skyLight_.bounds(window)) overlay->setFrame(geometry_.cocoa(*bounds), true);
            overlay->orderWindow(WindowOrderingMode::above, window);
            return;
        }
        case SkyLight::windowReordered: {
            auto found = overlays_.find(window);
            if (found == overlays_.end()) return;
            std::shared_ptr<OverlayWindow> overlay = found->second;
            overlay->orderWindow(WindowOrderingMode::above, window);
            return;
        }
        default: return;
    }
}

// MARK: - Commands

bool GrayController::isGrayRequested(const WindowKey& key) const {
    auto found = requests_.find(key);
    return found != requests_.end() && found->second == WindowRequest::grayThisWindow;
}

void GrayController::toggleGray(const ProbedWindow& window) {
    if (isGrayRequested(window.key)) {
        requests_.erase(window.key);
        log("gray this window off");
    } else {
        requests_[window.key] = WindowRequest::grayThisWindow;
        log("gray this window on");
    }
    read();
}

void GrayController::rulesChanged(std::optional<SitePin> pin) {
    apps_.setRules(rules_);
    if (pin) log("site set to " + pinName(*pin));
    if (!rulesProblem_) {
        try {
            store_.save(rules_);
        } catch (const std::exception&) {
            // Memory stays ahead of the file until the next successful save.
        }
    }
    if (onRulesChange) onRulesChange();
    read();
}

void GrayController::setPin(SitePin pin, const SiteRule& rule) {
    try {
        rules_.setPin(rule.id, pin);
    } catch (const RuleError&) {
        return;
    }
    rulesChanged(pin);
}

void GrayController::showInColor(std::optional<int> minutes) {
    if (minutes) {
        showInColorUntil_ = loop_.now() + *minutes * 60.0;
        log("show in color for " + std::to_string(*minutes) + " minutes");
    } else {
        showInColorUntil_ = Instant::distantFuture();
        log("show in color for the rest of this browsing session");
    }
    read();
}

std::optional<SiteRule> GrayController::addSite(const std::string& host) {
    SiteRule rule;
    try {
        rule = rules_.addSite(host);
    } catch (const RuleError&) {
        return std::nullopt;
    }
    rulesChanged(std::nullopt);
    return rule;
}

std::optional<SiteRule> GrayController::addApp(const std::string& bundleID, const std::string& name) {
    SiteRule rule;
    try {
        rule = rules_.addApp(bundleID, name);
    } catch (const RuleError&) {
        return std::nullopt;
    }
    rulesChanged(std::nullopt);
    return rule;
}

void GrayController::removeSite(const SiteRule& rule) {
    rules_.removeSite(rule.id);
    rulesChanged(std::nullopt);
}

void GrayController::rulesChangedInSettings(RuleSet rules) {
    rules_ = std::move(rules);
    apps_.setRules(rules_);
    log("rules changed in settings");
    if (onRulesChange) onRulesChange();
    read();
}

UsageSummary GrayController::usageSummary() const {
    std::vector<std::string> hosts;
    hosts.reserve(rules_.sites.size());
    for (const SiteRule& rule : rules_.sites) hosts.push_back(rule.host);
    return UsageSummary::make(usage_.recorder().history(), hosts, loop_.now(), loop_.calendar());
}

}  // namespace ashview
