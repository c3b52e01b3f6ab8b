#include "Platform/Sim/SimDesktop.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <map>
#include <stdexcept>
#include <utility>

namespace ashview {

namespace {

std::string text(double value) {
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "%g", value);
    std::string result = buffer;
    if (result.find_first_of(".en") == std::string::npos) result += ".0";
    return result;
}

std::string text(bool value) { return value ? "true" : "false"; }

std::string text(const Rect& rect) {
    return "(" + text(rect.x) + ", " + text(rect.y) + ", " + text(rect.width) + ", " + text(rect.height) + ")";
}

std::string text(const KeyValue& value) {
    if (const bool* flag = std::get_if<bool>(&value)) return text(*flag);
    if (const double* number = std::get_if<double>(&value)) return text(*number);
    return "\"" + std::get<std::string>(value) + "\"";
}

std::string quoted(std::string_view key) { return "\"" + std::string(key) + "\""; }

// The window server's own view of a Cocoa frame.
Rect flip(Rect rect, double height) {
    Rect area = rect.standardized();
    return Rect{area.x, height - area.maxY(), area.width, area.height};
}

class SimFilter;
class SimLayer;
class SimView;
class SimOverlayWindow;

}  // namespace

struct SimDesktop::State : std::enable_shared_from_this<SimDesktop::State> {
    explicit State(Instant start, Calendar calendar) : clock(start, std::move(calendar)), server(this), system(this) {}

    class Server final : public WindowServer {
    public:
        explicit Server(State* state) : state_(state) {}
        RawWindowList copyWindowInfo(std::uint32_t options, std::uint32_t relativeToWindow) override;
        std::optional<double> primaryScreenHeight() override;
        const SkyLightEntryPoints& skyLight() override;
        std::int32_t processIdentifier() override { return state_->pid; }

    private:
        State* state_;
    };

    class System final : public OverlayWindowSystem {
    public:
        explicit System(State* state) : state_(state) {}
        bool hasBackdropClass() override;
        std::shared_ptr<OverlayFilter> makeSaturateFilter() override;
        std::shared_ptr<OverlayLayer> makeBackdropLayer() override;
        std::shared_ptr<OverlayWindow> makeWindow(Rect contentRect, std::uint64_t styleMask, std::int64_t backing,
                                                  bool defer) override;
        std::shared_ptr<OverlayView> makeView(Rect frame) override;

    private:
        State* state_;
    };

    struct Registration {
        std::uint32_t event;
        NotifyProc proc;
        void* context;
    };

    SimClock clock;
    SimNotificationCenter workspace;
    SimNotificationCenter distributed;
    Server server;
    System system;
    std::vector<Rect> displays{Rect{0, 0, 1440, 900}};
    std::int32_t pid = SimDesktop::defaultProcessIdentifier;
    std::map<std::int64_t, SimWindow> windows;
    std::vector<std::int64_t> order;  // front to back, every window
    std::int64_t nextNumber = SimDesktop::firstWindowNumber;
    std::map<std::int64_t, SimOverlayWindow*> overlayObjects;

    std::array<bool, 4> missing{};
    bool skyLightLooked = false;
    SkyLightEntryPoints entryPoints;
    std::vector<Registration> registrations;
    std::vector<std::uint32_t> requested;
    std::vector<SimEvent> delivered;

    bool backdropMissing = false;
    bool filterMissing = false;
    bool backdropInitFails = false;
    int views = 0;
    int layers = 0;
    int backdrops = 0;
    int filters = 0;
    std::vector<std::string> journal;
    SimCallCounts counts;
    std::function<void(std::uint32_t, RawWindowList&)> tamper;

    double screenHeight() const { return displays.empty() ? 0.0 : displays.front().height; }

    // The window as the server reports it: an overlay's bounds follow its
    // frame.
    SimWindow effective(const SimWindow& window) const;
    Rect boundsOf(const SimWindow& window) const;

    // A foreign window to change. Whoever asks may change its place in the
    // stack, so the remembered stacks are forgotten.
    SimWindow& foreign(std::int64_t number) {
        auto found = windows.find(number);
        if (found == windows.end() || found->second.isOverlay)
            throw std::out_of_range("no foreign window " + std::to_string(number) + " on the simulated desktop");
        changed();
        return found->second;
    }

    void removeFromOrder(std::int64_t number) {
        order.erase(std::find(order.begin(), order.end(), number));
        changed();
    }

    void putAtFront(std::int64_t number) {
        removeFromOrder(number);
        order.insert(order.begin(), number);
        changed();
    }

    // The stacks `sorted` worked out since the last change, one for each
    // choice of its two options, so that the many questions of one read pass
    // about an unchanged desktop sort nothing. Every change of `order`, of the
    // set of windows, or of a window's layer, screen or desktop flag calls
    // `changed()`, which forgets them.
    mutable std::array<std::optional<std::vector<const SimWindow*>>, 4> stacks;
    void changed() {
        for (auto& stack : stacks) stack.reset();
    }

    // Front to back, the given windows sorted by layer (higher first), stable
    // within a layer. Valid until the next change.
    const std::vector<const SimWindow*>& sorted(bool onScreenOnly, bool withDesktop) const {
        auto& remembered = stacks[(onScreenOnly ? 2 : 0) + (withDesktop ? 1 : 0)];
        if (!remembered) remembered = stackOf(onScreenOnly, withDesktop);
        return *remembered;
    }

    // Each window is looked up once; the common stack of one layer needs no
    // sorting at all.
    std::vector<const SimWindow*> stackOf(bool onScreenOnly, bool withDesktop) const {
        std::vector<const SimWindow*> result;
        result.reserve(order.size());
        bool oneLayer = true;
        for (std::int64_t number : order) {
            const SimWindow& window = windows.at(number);
            if (onScreenOnly && !window.isOnScreen) continue;
            if (!withDesktop && window.isDesktopElement) continue;
            oneLayer = oneLayer && (result.empty() || window.layer == result.front()->layer);
            result.push_back(&window);
        }
        if (!oneLayer) {
            std::stable_sort(result.begin(), result.end(),
                             [](const SimWindow* a, const SimWindow* b) { return a->layer > b->layer; });
        }
        return result;
    }

    void emit(std::int64_t number, std::uint32_t event) {
        if (number < 0 || number > 0xFFFFFFFFLL) return;
        auto window = static_cast<std::uint32_t>(number);
        if (std::find(requested.begin(), requested.end(), window) == requested.end()) return;
        std::vector<Registration> targets;
        for (const Registration& registration : registrations)
            if (registration.event == event) targets.push_back(registration);
        for (const Registration& registration : targets) {
            delivered.push_back(SimEvent{event, window});
            std::uint32_t data = window;
            registration.proc(event, &data, sizeof data, registration.context);
        }
    }

    void record(std::string line) { journal.push_back(std::move(line)); }
};

namespace {

using State = SimDesktop::State;

class SimFilter final : public OverlayFilter {
public:
    SimFilter(std::weak_ptr<State> state, int serial) : state_(std::move(state)), serial(serial) {}
    void setValue(const KeyValue& value, std::string_view key) override {
        values[std::string(key)] = value;
        if (auto state = state_.lock()) state->record(name() + " setValue " + quoted(key) + " " + text(value));
    }
    std::string name() const { return "filter " + std::to_string(serial); }

    std::weak_ptr<State> state_;
    int serial;
    std::map<std::string, KeyValue> values;
};

class SimLayer final : public OverlayLayer {
public:
    SimLayer(std::weak_ptr<State> state, std::string kind, int serial)
        : state_(std::move(state)), kind(std::move(kind)), serial(serial) {}
    void setFrame(Rect value) override {
        frame = value;
        log("setFrame " + text(value));
    }
    void setAutoresizingMask(std::uint32_t value) override {
        mask = value;
        log("setAutoresizingMask " + std::to_string(value));
    }
    void setValue(const KeyValue& value, std::string_view key) override {
        values[std::string(key)] = value;
        log("setValue " + quoted(key) + " " + text(value));
    }
    void setFilters(std::optional<std::vector<std::shared_ptr<OverlayFilter>>> value) override {
        filters = std::move(value);
        std::string line = "setFilters ";
        if (!filters) {
            line += "nothing";
        } else {
            line += "[";
            for (std::size_t index = 0; index < filters->size(); ++index) {
                auto* filter = dynamic_cast<SimFilter*>((*filters)[index].get());
                line += (index ? ", " : "") + (filter ? filter->name() : std::string("foreign filter"));
            }
            line += "]";
        }
        log(line);
    }
    void addSublayer(std::shared_ptr<OverlayLayer> layer) override {
        auto* sim = dynamic_cast<SimLayer*>(layer.get());
        log("addSublayer " + (sim ? sim->name() : std::string("foreign layer")));
        sublayers.push_back(std::move(layer));
    }
    std::string name() const { return kind + " " + std::to_string(serial); }

    // A backdrop that desaturates: hosted by the window server, with a
    // saturation filter whose amount is 0.
    bool desaturates() const {
        if (kind != "backdrop" || !filters) return false;
        auto aware = values.find("windowServerAware");
        if (aware == values.end() || aware->second != KeyValue{true}) return false;
        for (const auto& filter : *filters) {
            auto* sim = dynamic_cast<SimFilter*>(filter.get());
            if (!sim) continue;
            auto amount = sim->values.find("inputAmount");
            if (amount != sim->values.end() && amount->second == KeyValue{0.0}) return true;
        }
        return false;
    }
    std::optional<std::string> groupName() const {
        auto found = values.find("groupName");
        if (found == values.end() || !std::holds_alternative<std::string>(found->second)) return std::nullopt;
        return std::get<std::string>(found->second);
    }

    std::weak_ptr<State> state_;
    std::string kind;
    int serial;
    Rect frame;
    std::uint32_t mask = 0;
    std::map<std::string, KeyValue> values;
    std::optional<std::vector<std::shared_ptr<OverlayFilter>>> filters;
    std::vector<std::shared_ptr<OverlayLayer>> sublayers;

private:
    void log(const std::string& line) {
        if (auto state = state_.lock()) state->record(name() + " " + line);
    }
};

class SimView final : public OverlayView {
public:
    SimView(std::weak_ptr<State> state, int serial, Rect frame)
        : state_(std::move(state)), serial(serial), frame(frame) {}
    void setWantsLayer(bool wants) override {
        log("setWantsLayer " + text(wants));
        if (wants && !ownLayer) {
            auto state = state_.lock();
            int number = state ? ++state->layers : 0;
            ownLayer = std::make_shared<SimLayer>(state_, "layer", number);
        }
    }
    void setLayerUsesCoreImageFilters(bool uses) override {
        usesCoreImageFilters = uses;
        log("setLayerUsesCoreImageFilters " + text(uses));
    }
    Rect bounds() const override { return Rect{0, 0, frame.width, frame.height}; }
    std::shared_ptr<OverlayLayer> layer() override { return ownLayer; }
    std::string name() const { return "view " + std::to_string(serial); }

    std::weak_ptr<State> state_;
    int serial;
    Rect frame;
    bool usesCoreImageFilters = true;
    std::shared_ptr<SimLayer> ownLayer;

private:
    void log(const std::string& line) {
        if (auto state = state_.lock()) state->record(name() + " " + line);
    }
};

class SimOverlayWindow final : public OverlayWindow {
public:
    SimOverlayWindow(std::weak_ptr<State> state, std::int64_t number, Rect frame)
        : state_(std::move(state)), number_(number), frame_(frame) {}
    ~SimOverlayWindow() override {
        if (auto state = state_.lock()) {
            state->overlayObjects.erase(number_);
            state->windows.erase(number_);
            state->removeFromOrder(number_);
        }
    }

    void setReleasedWhenClosed(bool value) override { log("setReleasedWhenClosed " + text(value)); }
    void setOpaque(bool value) override { log("setOpaque " + text(value)); }
    void setBackgroundColor(double white, double alpha) override {
        log("setBackgroundColor white " + text(white) + " alpha " + text(alpha));
    }
    void setHasShadow(bool value) override {
        hasShadow = value;
        log("setHasShadow " + text(value));
    }
    void setIgnoresMouseEvents(bool value) override {
        ignoresMouseEvents = value;
        log("setIgnoresMouseEvents " + text(value));
    }
    void setAnimationBehavior(std::int64_t value) override { log("setAnimationBehavior " + std::to_string(value)); }
    void setCollectionBehavior(std::uint64_t value) override {
        collectionBehavior = value;
        log("setCollectionBehavior " + std::to_string(value));
    }
    void setContentView(std::shared_ptr<OverlayView> view) override {
        auto* sim = dynamic_cast<SimView*>(view.get());
        log("setContentView " + (sim ? sim->name() : std::string("foreign view")));
        content = std::move(view);
    }
    void setValue(const KeyValue& value, std::string_view key) override {
        values[std::string(key)] = value;
        log("setValue " + quoted(key) + " " + text(value));
    }

    void orderOut() override {
        log("orderOut");
        auto state = state_.lock();
        if (!state) return;
        ++state->counts.orderOutCalls;
        state->windows.at(number_).isOnScreen = false;
        state->changed();
    }
    void orderWindow(WindowOrderingMode mode, std::int64_t relativeTo) override {
        bool above = mode == WindowOrderingMode::above;
        log(std::string("orderWindow ") + (above ? "above " : "below ") + std::to_string(relativeTo));
        auto state = state_.lock();
        if (!state) return;
        ++state->counts.orderWindowCalls;
        state->windows.at(number_).isOnScreen = true;
        state->removeFromOrder(number_);
        auto other = state->windows.find(relativeTo);
        auto& order = state->order;
        if (relativeTo != number_ && other != state->windows.end() && other->second.isOnScreen) {
            auto at = std::find(order.begin(), order.end(), relativeTo);
            order.insert(above ? at : at + 1, number_);
        } else {
            order.insert(above ? order.begin() : order.end(), number_);
        }
        state->changed();
        state->emit(number_, 808);
    }
    void setFrame(Rect frame, bool display) override {
        log("setFrame " + text(frame) + " display " + text(display));
        Rect before = frame_;
        frame_ = frame;
        auto state = state_.lock();
        if (!state) return;
        ++state->counts.setFrameCalls;
        if (before.x != frame.x || before.y != frame.y) state->emit(number_, 806);
        if (before.width != frame.width || before.height != frame.height) state->emit(number_, 807);
    }
    Rect frame() const override { return frame_; }
    std::int64_t windowNumber() const override { return number_; }

    bool desaturates() const {
        auto host = values.find("canHostLayersInWindowServer");
        if (host == values.end() || host->second != KeyValue{true}) return false;
        auto* view = dynamic_cast<SimView*>(content.get());
        if (!view || !view->ownLayer) return false;
        for (const auto& sublayer : view->ownLayer->sublayers) {
            auto* layer = dynamic_cast<SimLayer*>(sublayer.get());
            if (layer && layer->desaturates()) return true;
        }
        return false;
    }
    std::optional<std::string> groupName() const {
        auto* view = dynamic_cast<SimView*>(content.get());
        if (!view || !view->ownLayer) return std::nullopt;
        for (const auto& sublayer : view->ownLayer->sublayers) {
            auto* layer = dynamic_cast<SimLayer*>(sublayer.get());
            if (layer && layer->groupName()) return layer->groupName();
        }
        return std::nullopt;
    }

    bool hasShadow = true;
    bool ignoresMouseEvents = false;
    std::uint64_t collectionBehavior = 0;
    std::shared_ptr<OverlayView> content;
    std::map<std::string, KeyValue> values;

private:
    void log(const std::string& line) {
        if (auto state = state_.lock()) state->record("window " + std::to_string(number_) + " " + line);
    }

    std::weak_ptr<State> state_;
    std::int64_t number_;
    Rect frame_;
};

}  // namespace

Rect SimDesktop::State::boundsOf(const SimWindow& window) const {
    if (window.isOverlay) {
        auto object = overlayObjects.find(window.number);
        if (object != overlayObjects.end()) return flip(object->second->frame(), screenHeight());
    }
    return window.bounds;
}

SimWindow SimDesktop::State::effective(const SimWindow& window) const {
    SimWindow result = window;
    result.bounds = boundsOf(window);
    return result;
}

RawWindowList SimDesktop::State::Server::copyWindowInfo(std::uint32_t options, std::uint32_t) {
    State& state = *state_;
    ++state.counts.windowLists;
    bool onScreenOnly = (options & WindowServer::onScreenOnly) != 0;
    bool withDesktop = (options & WindowServer::excludeDesktopElements) == 0;
    const std::vector<const SimWindow*>& stack = state.sorted(onScreenOnly, withDesktop);
    std::vector<std::optional<WindowInfo>> entries;
    entries.reserve(stack.size());
    for (const SimWindow* window : stack) {
        entries.push_back(WindowInfo{window->number, window->ownerPID, window->ownerName, window->layer,
                                     window->alpha, state.boundsOf(*window)});
    }
    RawWindowList list = std::move(entries);
    if (state.tamper) state.tamper(options, list);
    return list;
}

std::optional<double> SimDesktop::State::Server::primaryScreenHeight() {
    ++state_->counts.screenHeights;
    if (state_->displays.empty()) return std::nullopt;
    return state_->displays.front().height;
}

const SkyLightEntryPoints& SimDesktop::State::Server::skyLight() {
    State& state = *state_;
    if (state.skyLightLooked) return state.entryPoints;
    state.skyLightLooked = true;
    std::weak_ptr<State> weak = state.weak_from_this();
    SkyLightEntryPoints& entry = state.entryPoints;
    if (!state.missing[0])
        entry.mainConnectionID = [weak]() -> std::int32_t {
            auto live = weak.lock();
            if (live) ++live->counts.connections;
            return SimDesktop::connectionID;
        };
    if (!state.missing[1])
        entry.getWindowBounds = [weak](std::int32_t connection, std::uint32_t window, Rect* bounds) -> std::int32_t {
            auto live = weak.lock();
            if (!live) return SimDesktop::illegalArgument;
            ++live->counts.boundsLookups;
            auto found = live->windows.find(window);
            if (connection != SimDesktop::connectionID || found == live->windows.end())
                return SimDesktop::illegalArgument;
            *bounds = live->effective(found->second).bounds;
            return 0;
        };
    if (!state.missing[2])
        entry.registerNotifyProc = [weak](NotifyProc proc, std::uint32_t event, void* context) -> std::int32_t {
            auto live = weak.lock();
            if (!live) return SimDesktop::illegalArgument;
            ++live->counts.registrations;
            live->registrations.push_back(Registration{event, proc, context});
            return 0;
        };
    if (!state.missing[3])
        entry.requestNotificationsForWindows = [weak](std::int32_t connection, const std::uint32_t* windows,
                                                      std::int32_t count) -> std::int32_t {
            auto live = weak.lock();
            if (!live) return SimDesktop::illegalArgument;
            ++live->counts.requests;
            if (connection != SimDesktop::connectionID || count < 0) return SimDesktop::illegalArgument;
            live->requested.assign(windows, windows + count);
            return 0;
        };
    return entry;
}

bool SimDesktop::State::System::hasBackdropClass() {
    state_->record("hasBackdropClass " + text(!state_->backdropMissing));
    return !state_->backdropMissing;
}

std::shared_ptr<OverlayFilter> SimDesktop::State::System::makeSaturateFilter() {
    if (state_->filterMissing) {
        state_->record("makeSaturateFilter nothing");
        return nullptr;
    }
    auto filter = std::make_shared<SimFilter>(state_->weak_from_this(), ++state_->filters);
    state_->record("makeSaturateFilter " + filter->name());
    return filter;
}

std::shared_ptr<OverlayLayer> SimDesktop::State::System::makeBackdropLayer() {
    if (state_->backdropMissing || state_->backdropInitFails) {
        state_->record("makeBackdropLayer nothing");
        return nullptr;
    }
    auto layer = std::make_shared<SimLayer>(state_->weak_from_this(), "backdrop", ++state_->backdrops);
    state_->record("makeBackdropLayer " + layer->name());
    return layer;
}

std::shared_ptr<OverlayWindow> SimDesktop::State::System::makeWindow(Rect contentRect, std::uint64_t styleMask,
                                                                     std::int64_t backing, bool defer) {
    State& state = *state_;
    std::int64_t number = state.nextNumber++;
    state.record("makeWindow " + text(contentRect) + " style " + std::to_string(styleMask) + " backing " +
                 std::to_string(backing) + " defer " + text(defer) + " -> window " + std::to_string(number));
    ++state.counts.overlaysMade;
    SimWindow window;
    window.number = number;
    window.ownerPID = state.pid;
    window.ownerName = SimDesktop::programName;
    window.isOnScreen = false;
    window.isOverlay = true;
    state.windows.emplace(number, window);
    state.order.insert(state.order.begin(), number);
    state.changed();
    auto object = std::make_shared<SimOverlayWindow>(state.weak_from_this(), number, contentRect);
    state.overlayObjects[number] = object.get();
    return object;
}

std::shared_ptr<OverlayView> SimDesktop::State::System::makeView(Rect frame) {
    auto view = std::make_shared<SimView>(state_->weak_from_this(), ++state_->views, frame);
    state_->record("makeView " + text(frame) + " -> " + view->name());
    return view;
}

SimDesktop::SimDesktop() : SimDesktop(SimClock::defaultStart, Calendar("gregorian", "UTC", "en_US_POSIX")) {}

SimDesktop::SimDesktop(Instant start, Calendar calendar)
    : state_(std::make_shared<State>(start, std::move(calendar))) {}

SimDesktop::~SimDesktop() = default;

SimClock& SimDesktop::clock() { return state_->clock; }
MainLoop& SimDesktop::mainLoop() { return state_->clock; }
WindowServer& SimDesktop::windowServer() { return state_->server; }
OverlayWindowSystem& SimDesktop::overlayWindows() { return state_->system; }
SimNotificationCenter& SimDesktop::workspaceNotifications() { return state_->workspace; }
SimNotificationCenter& SimDesktop::distributedNotifications() { return state_->distributed; }

void SimDesktop::setDisplays(std::vector<Rect> frames) { state_->displays = std::move(frames); }
const std::vector<Rect>& SimDesktop::displays() const { return state_->displays; }

void SimDesktop::setProcessIdentifier(std::int32_t pid) {
    state_->pid = pid;
    for (auto& [number, window] : state_->windows)
        if (window.isOverlay) window.ownerPID = pid;
}
std::int32_t SimDesktop::processIdentifier() const { return state_->pid; }

std::int64_t SimDesktop::openWindow(const SimWindowSetup& setup) {
    std::int64_t number = state_->nextNumber++;
    SimWindow window{number,  setup.ownerPID,  setup.ownerName,        setup.layer,
                     setup.alpha, setup.bounds, setup.isOnScreen, setup.isDesktopElement,
                     false};
    state_->windows.emplace(number, window);
    state_->order.insert(state_->order.begin(), number);
    state_->changed();
    return number;
}

void SimDesktop::closeWindow(std::int64_t number) {
    state_->foreign(number);
    state_->windows.erase(number);
    state_->removeFromOrder(number);
    state_->emit(number, 804);
}

void SimDesktop::setBounds(std::int64_t number, Rect bounds) {
    SimWindow& window = state_->foreign(number);
    Rect before = window.bounds;
    window.bounds = bounds;
    if (before.x != bounds.x || before.y != bounds.y) state_->emit(number, 806);
    if (before.width != bounds.width || before.height != bounds.height) state_->emit(number, 807);
}

void SimDesktop::moveBy(std::int64_t number, double dx, double dy) {
    Rect bounds = state_->foreign(number).bounds;
    setBounds(number, Rect{bounds.x + dx, bounds.y + dy, bounds.width, bounds.height});
}

void SimDesktop::bringToFront(std::int64_t number) {
    state_->foreign(number);
    state_->putAtFront(number);
    state_->emit(number, 808);
}

void SimDesktop::orderRelative(std::int64_t number, bool above, std::int64_t relativeTo) {
    state_->foreign(number);
    if (state_->windows.find(relativeTo) == state_->windows.end() || relativeTo == number)
        throw std::out_of_range("no other window " + std::to_string(relativeTo) + " to order against");
    auto& order = state_->order;
    state_->removeFromOrder(number);
    auto at = std::find(order.begin(), order.end(), relativeTo);
    order.insert(above ? at : at + 1, number);
    state_->changed();
    state_->emit(number, 808);
}

void SimDesktop::minimise(std::int64_t number) {
    state_->foreign(number).isOnScreen = false;
    state_->emit(number, 816);
}

void SimDesktop::restore(std::int64_t number) {
    state_->foreign(number).isOnScreen = true;
    state_->putAtFront(number);
    state_->emit(number, 808);
}

void SimDesktop::setOnScreen(std::int64_t number, bool onScreen) { state_->foreign(number).isOnScreen = onScreen; }
void SimDesktop::switchSpace(const std::vector<std::int64_t>& leaving, const std::vector<std::int64_t>& arriving) {
    for (std::int64_t number : leaving) state_->foreign(number);
    for (std::int64_t number : arriving) state_->foreign(number);
    for (std::int64_t number : leaving) state_->foreign(number).isOnScreen = false;
    for (auto at = arriving.rbegin(); at != arriving.rend(); ++at) {
        state_->foreign(*at).isOnScreen = true;
        state_->putAtFront(*at);
    }
    state_->workspace.post(SystemNotification::activeSpaceDidChange);
}

void SimDesktop::setAlpha(std::int64_t number, double alpha) { state_->foreign(number).alpha = alpha; }
void SimDesktop::setLayer(std::int64_t number, std::int64_t layer) { state_->foreign(number).layer = layer; }

void SimDesktop::closeWindows(std::int32_t ownerPID) {
    std::vector<std::int64_t> doomed;
    for (std::int64_t number : state_->order) {
        const SimWindow& window = state_->windows.at(number);
        if (!window.isOverlay && window.ownerPID == ownerPID) doomed.push_back(number);
    }
    for (std::int64_t number : doomed) closeWindow(number);
}

std::optional<SimWindow> SimDesktop::window(std::int64_t number) const {
    auto found = state_->windows.find(number);
    if (found == state_->windows.end()) return std::nullopt;
    return state_->effective(found->second);
}

std::vector<std::int64_t> SimDesktop::onScreenStack() const {
    std::vector<std::int64_t> numbers;
    for (const SimWindow* window : state_->sorted(true, true)) numbers.push_back(window->number);
    return numbers;
}

std::vector<SimOverlay> SimDesktop::overlays() const {
    std::vector<std::int64_t> stack = onScreenStack();
    std::vector<SimOverlay> result;
    for (const auto& [number, object] : state_->overlayObjects) {
        const SimWindow& window = state_->windows.at(number);
        SimOverlay overlay;
        overlay.number = number;
        overlay.frame = object->frame();
        overlay.isOrderedIn = window.isOnScreen;
        auto at = std::find(stack.begin(), stack.end(), number);
        if (at != stack.end() && at + 1 != stack.end()) overlay.directlyAbove = *(at + 1);
        overlay.ignoresMouseEvents = object->ignoresMouseEvents;
        overlay.hasShadow = object->hasShadow;
        overlay.collectionBehavior = object->collectionBehavior;
        overlay.desaturates = object->desaturates();
        overlay.groupName = object->groupName();
        result.push_back(overlay);
    }
    return result;
}

std::optional<std::int64_t> SimDesktop::overlayAbove(std::int64_t target) const {
    std::vector<std::int64_t> stack = onScreenStack();
    auto at = std::find(stack.begin(), stack.end(), target);
    if (at == stack.end() || at == stack.begin()) return std::nullopt;
    std::int64_t front = *(at - 1);
    if (!state_->windows.at(front).isOverlay) return std::nullopt;
    return front;
}

std::optional<std::int64_t> SimDesktop::windowAt(Point point) const {
    for (std::int64_t number : onScreenStack()) {
        SimWindow window = state_->effective(state_->windows.at(number));
        if (window.isOverlay && state_->overlayObjects.at(number)->ignoresMouseEvents) continue;
        if (window.bounds.contains(point)) return number;
    }
    return std::nullopt;
}

void SimDesktop::setEntryPointMissing(SkyLightEntry entry, bool missing) {
    if (state_->skyLightLooked)
        throw std::logic_error("the private entry points were already looked up; change them before");
    state_->missing[static_cast<std::size_t>(entry)] = missing;
}

void SimDesktop::setSkyLightMissing() {
    for (auto entry : {SkyLightEntry::mainConnectionID, SkyLightEntry::getWindowBounds,
                       SkyLightEntry::registerNotifyProc, SkyLightEntry::requestNotificationsForWindows})
        setEntryPointMissing(entry);
}

const std::vector<std::uint32_t>& SimDesktop::requestedWindows() const { return state_->requested; }

std::vector<std::uint32_t> SimDesktop::registeredEvents() const {
    std::vector<std::uint32_t> events;
    for (const auto& registration : state_->registrations) events.push_back(registration.event);
    return events;
}

const std::vector<SimEvent>& SimDesktop::deliveredEvents() const { return state_->delivered; }

void SimDesktop::postRawEvent(std::uint32_t event, void* data) {
    std::vector<State::Registration> targets;
    for (const auto& registration : state_->registrations)
        if (registration.event == event) targets.push_back(registration);
    for (const auto& registration : targets)
        registration.proc(event, data, data ? sizeof(std::uint32_t) : 0, registration.context);
}

void SimDesktop::setBackdropClassMissing(bool missing) { state_->backdropMissing = missing; }
void SimDesktop::setSaturateFilterMissing(bool missing) { state_->filterMissing = missing; }
void SimDesktop::setBackdropInitFails(bool fails) { state_->backdropInitFails = fails; }

const std::vector<std::string>& SimDesktop::overlayJournal() const { return state_->journal; }
void SimDesktop::clearOverlayJournal() { state_->journal.clear(); }
const SimCallCounts& SimDesktop::counts() const { return state_->counts; }

void SimDesktop::setListTamper(std::function<void(std::uint32_t, RawWindowList&)> tamper) {
    state_->tamper = std::move(tamper);
}

}  // namespace ashview
