#include "Platform/Sim/SimApplications.h"

#include "AshviewCore/Reading/BrowserCatalog.h"

#include <filesystem>
#include <algorithm>
#include <cmath>
#include <map>
#include <set>
#include <stdexcept>

namespace ashview {

namespace {

struct Process {
    RunningApplication info;
    bool isListed = true;
    bool isHidden = false;
    std::vector<std::int64_t> windows;  // in opening order
};

struct Handler {
    std::uint64_t id = 0;
    ApplicationEvent event{};
    std::function<void(const std::optional<RunningApplication>&)> body;
};

class SimScript final : public CompiledScript {
public:
    explicit SimScript(std::string source) : source(std::move(source)) {}
    const std::string source;
    bool isCompiled = false;
};

class SimElement final : public AccessibilityElement {
public:
    explicit SimElement(std::optional<std::string> role) : role_(std::move(role)) {}
    std::optional<std::string> stringAttribute(const std::string& attribute) const override {
        return attribute == "AXRole" ? role_ : std::nullopt;
    }

private:
    std::optional<std::string> role_;
};

std::optional<std::string> between(const std::string& text, const std::string& before, const std::string& after) {
    std::size_t start = text.find(before);
    if (start == std::string::npos) return std::nullopt;
    start += before.size();
    std::size_t end = text.find(after, start);
    if (end == std::string::npos) return std::nullopt;
    return text.substr(start, end - start);
}

}  // namespace

class SimAccessibilityObserver;

struct SimApplications::State : std::enable_shared_from_this<SimApplications::State> {
    class WorkspaceAdapter;
    class EventsAdapter;
    class AccessibilityAdapter;
    class PanelAdapter;

    explicit State(SimDesktop& desktop);

    SimDesktop* desktop;
    std::int32_t nextPID = firstProcessIdentifier;
    std::int64_t nextScriptingID = firstScriptingID;
    std::map<std::int32_t, Process> processes;  // by pid, which counts up: launch order
    std::map<std::int64_t, SimAppWindow> windows;
    std::optional<std::int32_t> frontmost;

    std::uint64_t nextHandlerID = 1;
    std::vector<Handler> handlers;

    std::map<std::string, std::pair<SimScriptBehaviour, std::int64_t>> behaviours;
    std::map<std::string, SimPermission> permissions;
    std::map<std::string, std::size_t> received, queries, prompts;
    double scriptTime = 0.02;
    bool scriptsUnavailable = false;
    std::size_t made = 0, runs = 0;

    bool trusted = true;
    std::uint64_t nextObserverID = 1;
    std::map<std::uint64_t, SimAccessibilityObserver*> observers;

    std::map<std::string, std::string> bundles;
    std::optional<std::string> ownBundleID = std::string(defaultOwnBundleIdentifier);
    std::size_t bundleLookups = 0, iconLookups = 0;
    std::vector<std::string> openedURLs;
    std::size_t trustPrompts = 0;
    OpenPanelResult panelResult;
    std::optional<OpenPanelSettings> lastPanel;

    std::unique_ptr<Workspace> workspace;
    std::unique_ptr<AppleEvents> events;
    std::unique_ptr<Accessibility> accessibility;
    std::unique_ptr<OpenPanel> panel;

    Process& process(std::int32_t pid) {
        auto found = processes.find(pid);
        if (found == processes.end() || !found->second.isListed)
            throw std::out_of_range("no simulated process " + std::to_string(pid));
        return found->second;
    }
    SimAppWindow& window(std::int64_t number) {
        auto found = windows.find(number);
        if (found == windows.end()) throw std::out_of_range("no simulated app window " + std::to_string(number));
        return found->second;
    }
    std::optional<std::string> bundleIDOf(std::int32_t pid) { return process(pid).info.bundleIdentifier; }

    void post(ApplicationEvent event, const std::optional<RunningApplication>& app) {
        std::vector<std::uint64_t> ids;
        for (const Handler& handler : handlers)
            if (handler.event == event) ids.push_back(handler.id);
        for (std::uint64_t id : ids) {
            auto found = std::find_if(handlers.begin(), handlers.end(), [&](const Handler& h) { return h.id == id; });
            if (found == handlers.end()) continue;  // removed by an earlier handler
            auto body = found->body;
            body(app);
        }
    }
    void postAccessibility(std::int32_t pid, const std::string& notification, const std::optional<std::string>& role);

    void updateOnScreen(std::int64_t number) {
        SimAppWindow& entry = window(number);
        bool hidden = process(entry.ownerPID).isHidden;
        desktop->setOnScreen(number, !(entry.isMinimised || entry.isOnAnotherSpace || hidden));
    }

    /// The instance a script by application id reaches: the oldest running.
    std::optional<std::int32_t> scriptTarget(const std::string& bundleID) {
        for (auto& [pid, entry] : processes)
            if (entry.isListed && !entry.info.isTerminated && entry.info.bundleIdentifier == bundleID) return pid;
        return std::nullopt;
    }
    ScriptOutcome run(const SimScript& script);
    ScriptValue reply(std::int32_t pid);
};

class SimAccessibilityObserver final : public AccessibilityObserver {
public:
    SimAccessibilityObserver(std::weak_ptr<SimApplications::State> state, std::int32_t pid, Accessibility::Callback callback)
        : pid(pid), callback(std::move(callback)), state_(std::move(state)) {
        if (auto live = state_.lock()) {
            id_ = live->nextObserverID++;
            live->observers[id_] = this;
        }
    }
    ~SimAccessibilityObserver() override {
        if (auto live = state_.lock()) live->observers.erase(id_);
    }
    std::int32_t addNotification(const std::string& notification) override {
        notifications.insert(notification);
        return 0;
    }
    void addToMainRunLoop() override { onRunLoop = true; }
    void removeFromMainRunLoop() override { onRunLoop = false; }

    const std::int32_t pid;
    const Accessibility::Callback callback;
    std::set<std::string> notifications;
    bool onRunLoop = false;

private:
    std::weak_ptr<SimApplications::State> state_;
    std::uint64_t id_ = 0;
};

void SimApplications::State::postAccessibility(std::int32_t pid, const std::string& notification,
                                               const std::optional<std::string>& role) {
    std::vector<std::uint64_t> ids;
    for (const auto& [id, observer] : observers)
        if (observer->pid == pid) ids.push_back(id);
    SimElement element(role);
    for (std::uint64_t id : ids) {
        auto found = observers.find(id);
        if (found == observers.end()) continue;
        SimAccessibilityObserver* observer = found->second;
        if (!observer->onRunLoop || !observer->notifications.count(notification)) continue;
        auto callback = observer->callback;
        callback(notification, element);
    }
}

class SimApplications::State::WorkspaceAdapter final : public Workspace {
public:
    explicit WorkspaceAdapter(State& state) : state_(&state) {}

    std::vector<RunningApplication> runningApplications() override {
        std::vector<RunningApplication> all;
        for (const auto& [pid, entry] : state_->processes)
            if (entry.isListed) all.push_back(entry.info);
        return all;
    }
    std::vector<RunningApplication> runningApplications(const std::string& bundleIdentifier) override {
        std::vector<RunningApplication> found;
        for (const auto& [pid, entry] : state_->processes)
            if (entry.isListed && entry.info.bundleIdentifier == bundleIdentifier) found.push_back(entry.info);
        return found;
    }
    std::optional<RunningApplication> frontmostApplication() override {
        if (!state_->frontmost) return std::nullopt;
        auto found = state_->processes.find(*state_->frontmost);
        if (found == state_->processes.end() || !found->second.isListed) return std::nullopt;
        return found->second.info;
    }

    class Observation final : public NotificationObservation {
    public:
        Observation(std::weak_ptr<State> state, std::uint64_t id) : state_(std::move(state)), id_(id) {}
        ~Observation() override {
            if (auto live = state_.lock())
                std::erase_if(live->handlers, [&](const Handler& handler) { return handler.id == id_; });
        }

    private:
        std::weak_ptr<State> state_;
        std::uint64_t id_;
    };

    std::unique_ptr<NotificationObservation> observe(
        ApplicationEvent event, std::function<void(const std::optional<RunningApplication>&)> handler) override {
        std::uint64_t id = state_->nextHandlerID++;
        state_->handlers.push_back(Handler{id, event, std::move(handler)});
        return std::make_unique<Observation>(state_->weak_from_this(), id);
    }

    std::optional<std::string> urlForApplication(const std::string& bundleIdentifier) override {
        ++state_->bundleLookups;
        auto found = state_->bundles.find(bundleIdentifier);
        if (found == state_->bundles.end()) return std::nullopt;
        return found->second;
    }
    std::shared_ptr<const AppIcon> iconForFile(const std::string& path) override {
        ++state_->iconLookups;
        return std::make_shared<SimIcon>(path);
    }
    bool openURL(const std::string& url) override {
        state_->openedURLs.push_back(url);
        return true;
    }
    std::string displayName(const std::string& path) override {
        std::string name = std::filesystem::path(path).filename().string();
        if (name.ends_with(".app")) name.resize(name.size() - 4);
        return name;
    }
    std::optional<std::string> bundleIdentifier(const std::string& path) override {
        for (const auto& [bundleID, bundlePath] : state_->bundles)
            if (bundlePath == path) return bundleID;
        return std::nullopt;
    }
    std::optional<std::string> mainBundleIdentifier() override { return state_->ownBundleID; }
    std::int32_t ownProcessIdentifier() override { return state_->desktop->processIdentifier(); }

private:
    State* state_;
};

class SimApplications::State::EventsAdapter final : public AppleEvents {
public:
    explicit EventsAdapter(State& state) : state_(&state) {}

    std::shared_ptr<CompiledScript> makeScript(const std::string& source) override {
        if (state_->scriptsUnavailable) return nullptr;
        ++state_->made;
        return std::make_shared<SimScript>(source);
    }
    void compile(CompiledScript& script) override { static_cast<SimScript&>(script).isCompiled = true; }
    ScriptOutcome execute(CompiledScript& script) override {
        ++state_->runs;
        return state_->run(static_cast<SimScript&>(script));
    }
    std::int32_t determinePermissionToAutomate(const std::string& bundleIdentifier, std::uint32_t, std::uint32_t,
                                               bool askUserIfNeeded) override {
        ++state_->queries[bundleIdentifier];
        if (!state_->scriptTarget(bundleIdentifier)) return processNotFound;
        auto found = state_->permissions.find(bundleIdentifier);
        SimPermission permission = found == state_->permissions.end() ? SimPermission::allowed : found->second;
        switch (permission) {
        case SimPermission::allowed:
            return 0;
        case SimPermission::denied:
            return static_cast<std::int32_t>(AppleEvents::eventNotPermitted);
        case SimPermission::notDecided:
            if (askUserIfNeeded) ++state_->prompts[bundleIdentifier];
            return wouldRequireUserConsent;
        }
        return wouldRequireUserConsent;
    }

private:
    State* state_;
};

class SimApplications::State::AccessibilityAdapter final : public Accessibility {
public:
    explicit AccessibilityAdapter(State& state) : state_(&state) {}
    bool isProcessTrusted() override { return state_->trusted; }
    void promptForTrust() override { ++state_->trustPrompts; }
    std::unique_ptr<AccessibilityObserver> createObserver(std::int32_t pid, Callback callback) override {
        if (!state_->trusted) return nullptr;
        auto found = state_->processes.find(pid);
        if (found == state_->processes.end() || !found->second.isListed || found->second.info.isTerminated)
            return nullptr;
        return std::make_unique<SimAccessibilityObserver>(state_->weak_from_this(), pid, std::move(callback));
    }

private:
    State* state_;
};

class SimApplications::State::PanelAdapter final : public OpenPanel {
public:
    explicit PanelAdapter(State& state) : state_(&state) {}
    OpenPanelResult runModal(const OpenPanelSettings& settings) override {
        state_->lastPanel = settings;
        return state_->panelResult;
    }

private:
    State* state_;
};

SimApplications::State::State(SimDesktop& desktop)
    : desktop(&desktop),
      workspace(std::make_unique<WorkspaceAdapter>(*this)),
      events(std::make_unique<EventsAdapter>(*this)),
      accessibility(std::make_unique<AccessibilityAdapter>(*this)),
      panel(std::make_unique<PanelAdapter>(*this)) {}

ScriptValue SimApplications::State::reply(std::int32_t pid) {
    const Process& entry = process(pid);
    // Front to back: the on-screen ones in stack order, then the others in
    // the order they were opened.
    std::set<std::int64_t> own(entry.windows.begin(), entry.windows.end());
    std::vector<std::int64_t> order;
    for (std::int64_t number : desktop->onScreenStack())
        if (own.erase(number)) order.push_back(number);
    for (std::int64_t number : entry.windows)
        if (own.count(number)) order.push_back(number);

    std::vector<ScriptValue> items;
    for (std::int64_t number : order) {
        const SimAppWindow& appWindow = window(number);
        std::optional<SimWindow> shown = desktop->window(number);
        if (!appWindow.reports || !shown) continue;
        const Rect& b = shown->bounds;
        auto whole = [](double value) { return ScriptValue::number(static_cast<std::int64_t>(std::llround(value))); };
        items.push_back(ScriptValue::list({ScriptValue::number(appWindow.scriptingID), whole(b.minX()), whole(b.minY()),
                                           whole(b.maxX()), whole(b.maxY()),
                                           appWindow.address ? ScriptValue::string(*appWindow.address)
                                                             : ScriptValue::missingValue()}));
    }
    return ScriptValue::list(std::move(items));
}

ScriptOutcome SimApplications::State::run(const SimScript& script) {
    constexpr std::int64_t syntaxError = -2741;
    const std::string& text = script.source;
    std::optional<std::string> target = between(text, "tell application id \"", "\"");
    std::optional<Browser> browser = target ? BrowserCatalog::browser(*target) : std::nullopt;
    if (!browser) return ScriptError{syntaxError};
    const std::string tab = browser->dialect == Dialect::chromium ? "URL of active tab of w" : "URL of current tab of w";
    if (text.find(tab) == std::string::npos) return ScriptError{syntaxError};

    std::optional<std::int32_t> pid = scriptTarget(*target);
    if (!pid) {
        // Behind "is running" a quit browser is never launched: an empty reply.
        if (text.find("if application id \"" + *target + "\" is running then") != std::string::npos)
            return ScriptValue::list({});
        return ScriptError{-600};
    }
    ++received[*target];

    auto permission = permissions.find(*target);
    if (permission != permissions.end() && permission->second != SimPermission::allowed) {
        if (permission->second == SimPermission::notDecided) ++prompts[*target];
        return ScriptError{AppleEvents::eventNotPermitted};
    }
    auto [behaviour, number] = behaviours.count(*target) ? behaviours[*target]
                                                         : std::pair{SimScriptBehaviour::answer, std::int64_t{0}};
    switch (behaviour) {
    case SimScriptBehaviour::refuse:
        return ScriptError{AppleEvents::eventNotPermitted};
    case SimScriptBehaviour::timeOut: {
        double limit = text.find("with timeout of 3 seconds") != std::string::npos ? timeoutSeconds : 120.0;
        desktop->clock().block(limit);
        return ScriptError{AppleEvents::eventTimedOut};
    }
    case SimScriptBehaviour::fail:
        return ScriptError{number};
    case SimScriptBehaviour::noWindows:
        desktop->clock().block(scriptTime);
        return ScriptValue::list({});
    case SimScriptBehaviour::answer:
        break;
    }
    desktop->clock().block(scriptTime);
    return reply(*pid);
}

SimApplications::SimApplications(SimDesktop& desktop) : state_(std::make_shared<State>(desktop)) {}
SimApplications::~SimApplications() = default;

Workspace& SimApplications::workspace() { return *state_->workspace; }
AppleEvents& SimApplications::appleEvents() { return *state_->events; }
Accessibility& SimApplications::accessibility() { return *state_->accessibility; }
OpenPanel& SimApplications::openPanel() { return *state_->panel; }

std::int32_t SimApplications::launch(const SimAppSetup& setup) {
    std::int32_t pid = state_->nextPID++;
    Process entry;
    entry.info.processIdentifier = pid;
    if (!setup.bundleIdentifier.empty()) entry.info.bundleIdentifier = setup.bundleIdentifier;
    if (!setup.undated) entry.info.launchDate = setup.launchDate.value_or(state_->desktop->clock().now());
    entry.info.activationPolicy = setup.activationPolicy;
    entry.info.bundlePath = setup.bundlePath;
    entry.info.localizedName = setup.name;
    state_->processes[pid] = entry;
    state_->post(ApplicationEvent::didLaunch, entry.info);
    return pid;
}

std::int32_t SimApplications::launchApp(const std::string& bundleID, const std::string& name,
                                       std::int64_t activationPolicy, std::optional<std::string> bundlePath) {
    return launch(SimAppSetup{bundleID, name, activationPolicy, std::move(bundlePath), std::nullopt, false});
}

std::int32_t SimApplications::launchBrowser(const std::string& bundleID, std::optional<Instant> launchDate) {
    std::optional<Browser> browser = BrowserCatalog::browser(bundleID);
    if (!browser) throw std::invalid_argument("not a catalog browser: " + bundleID);
    return launch(SimAppSetup{bundleID, browser->name, 0, "/Applications/" + browser->name + ".app", launchDate, false});
}

void SimApplications::quit(std::int32_t pid, bool staysListedAsTerminated) {
    Process& entry = state_->process(pid);
    for (std::int64_t number : entry.windows) state_->windows.erase(number);
    entry.windows.clear();
    state_->desktop->closeWindows(pid);
    entry.info.isTerminated = true;
    entry.isListed = staysListedAsTerminated;
    if (state_->frontmost == pid) state_->frontmost.reset();
    RunningApplication info = entry.info;
    state_->post(ApplicationEvent::didTerminate, info);
}

void SimApplications::activate(std::int32_t pid) {
    RunningApplication info = state_->process(pid).info;
    state_->frontmost = pid;
    state_->post(ApplicationEvent::didActivate, info);
}

void SimApplications::setFrontmost(std::optional<std::int32_t> pid) {
    if (pid) state_->process(*pid);
    state_->frontmost = pid;
}

void SimApplications::hide(std::int32_t pid) {
    Process& entry = state_->process(pid);
    entry.isHidden = true;
    for (std::int64_t number : entry.windows) state_->updateOnScreen(number);
    state_->post(ApplicationEvent::didHide, entry.info);
}

void SimApplications::unhide(std::int32_t pid) {
    Process& entry = state_->process(pid);
    entry.isHidden = false;
    for (std::int64_t number : entry.windows) state_->updateOnScreen(number);
    state_->post(ApplicationEvent::didUnhide, entry.info);
}

void SimApplications::post(ApplicationEvent event, std::optional<std::int32_t> pid) {
    std::optional<RunningApplication> info;
    if (pid) info = state_->processes.at(*pid).info;
    state_->post(event, info);
}

std::optional<RunningApplication> SimApplications::application(std::int32_t pid) const {
    auto found = state_->processes.find(pid);
    if (found == state_->processes.end() || !found->second.isListed) return std::nullopt;
    return found->second.info;
}

std::int64_t SimApplications::openWindow(std::int32_t pid, Rect quartzBounds, std::optional<std::string> address,
                                         std::int64_t layer) {
    Process& entry = state_->process(pid);
    SimWindowSetup setup;
    setup.ownerPID = pid;
    setup.ownerName = entry.info.localizedName;
    setup.bounds = quartzBounds;
    setup.layer = layer;
    setup.isOnScreen = !entry.isHidden;
    std::int64_t number = state_->desktop->openWindow(setup);
    SimAppWindow window{number, pid, 0, std::move(address), false, false, true};
    bool isBrowser = entry.info.bundleIdentifier && BrowserCatalog::browser(*entry.info.bundleIdentifier);
    if (isBrowser) window.scriptingID = state_->nextScriptingID++;
    state_->windows[number] = window;
    entry.windows.push_back(number);
    state_->postAccessibility(pid, "AXWindowCreated", "AXWindow");
    return number;
}

void SimApplications::showAddress(std::int64_t window, std::optional<std::string> address) {
    SimAppWindow& entry = state_->window(window);
    entry.address = std::move(address);
    state_->postAccessibility(entry.ownerPID, "AXTitleChanged", "AXWindow");
}

void SimApplications::focus(std::int64_t window) {
    SimAppWindow& entry = state_->window(window);
    state_->desktop->bringToFront(window);
    state_->postAccessibility(entry.ownerPID, "AXMainWindowChanged", "AXWindow");
    state_->postAccessibility(entry.ownerPID, "AXFocusedWindowChanged", "AXWindow");
}

void SimApplications::minimise(std::int64_t window) {
    state_->window(window).isMinimised = true;
    state_->desktop->minimise(window);
}

void SimApplications::restore(std::int64_t window) {
    SimAppWindow& entry = state_->window(window);
    entry.isMinimised = false;
    if (!entry.isOnAnotherSpace && !state_->process(entry.ownerPID).isHidden) state_->desktop->restore(window);
}

void SimApplications::moveToAnotherSpace(std::int64_t window, bool away) {
    state_->window(window).isOnAnotherSpace = away;
    state_->updateOnScreen(window);
}

void SimApplications::closeWindow(std::int64_t window) {
    SimAppWindow entry = state_->window(window);
    state_->windows.erase(window);
    std::erase(state_->process(entry.ownerPID).windows, window);
    state_->desktop->closeWindow(window);
}

void SimApplications::setReports(std::int64_t window, bool reports) { state_->window(window).reports = reports; }

SimAppWindow SimApplications::appWindow(std::int64_t window) const { return state_->window(window); }

std::vector<SimAppWindow> SimApplications::windowsOf(std::int32_t pid) const {
    std::vector<SimAppWindow> found;
    for (std::int64_t number : state_->process(pid).windows) found.push_back(state_->window(number));
    return found;
}

void SimApplications::setScriptBehaviour(const std::string& bundleID, SimScriptBehaviour behaviour,
                                         std::int64_t errorNumber) {
    state_->behaviours[bundleID] = {behaviour, errorNumber};
}

void SimApplications::setPermission(const std::string& bundleID, SimPermission permission) {
    state_->permissions[bundleID] = permission;
}

void SimApplications::setScriptTime(double seconds) { state_->scriptTime = seconds; }
void SimApplications::setScriptsUnavailable(bool unavailable) { state_->scriptsUnavailable = unavailable; }

std::size_t SimApplications::scriptsReceived(const std::string& bundleID) const {
    auto found = state_->received.find(bundleID);
    return found == state_->received.end() ? 0 : found->second;
}
std::size_t SimApplications::permissionQueries(const std::string& bundleID) const {
    auto found = state_->queries.find(bundleID);
    return found == state_->queries.end() ? 0 : found->second;
}
std::size_t SimApplications::consentPrompts(const std::string& bundleID) const {
    auto found = state_->prompts.find(bundleID);
    return found == state_->prompts.end() ? 0 : found->second;
}
std::size_t SimApplications::scriptsMade() const { return state_->made; }
std::size_t SimApplications::scriptRuns() const { return state_->runs; }

void SimApplications::setTrusted(bool trusted) { state_->trusted = trusted; }

void SimApplications::postAccessibility(std::int32_t pid, const std::string& notification,
                                        std::optional<std::string> role) {
    state_->postAccessibility(pid, notification, role);
}

std::size_t SimApplications::liveObservers(std::int32_t pid) const {
    std::size_t count = 0;
    for (const auto& [id, observer] : state_->observers)
        if (observer->pid == pid && observer->onRunLoop) ++count;
    return count;
}

void SimApplications::registerBundle(const std::string& bundleID, const std::string& path) {
    state_->bundles[bundleID] = path;
}

void SimApplications::removeBundle(const std::string& bundleID) { state_->bundles.erase(bundleID); }
void SimApplications::setOwnBundleIdentifier(std::optional<std::string> bundleID) {
    state_->ownBundleID = std::move(bundleID);
}
std::size_t SimApplications::bundleLookups() const { return state_->bundleLookups; }
std::size_t SimApplications::iconLookups() const { return state_->iconLookups; }
const std::vector<std::string>& SimApplications::openedURLs() const { return state_->openedURLs; }
std::size_t SimApplications::trustPrompts() const { return state_->trustPrompts; }
std::optional<SimPermission> SimApplications::permission(const std::string& bundleID) const {
    auto found = state_->permissions.find(bundleID);
    if (found == state_->permissions.end()) return std::nullopt;
    return found->second;
}
void SimApplications::setOpenPanelResult(OpenPanelResult result) { state_->panelResult = std::move(result); }
std::optional<OpenPanelSettings> SimApplications::lastOpenPanel() const { return state_->lastPanel; }

}  // namespace ashview
