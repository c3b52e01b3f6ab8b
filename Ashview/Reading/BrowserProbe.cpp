#include "Ashview/Reading/BrowserProbe.h"

#include "AshviewCore/Reading/FramePairing.h"
#include "AshviewCore/Rules/Host.h"
#include "AshviewOverlay/Geometry.h"
#include "AshviewOverlay/WindowList.h"

namespace ashview {

BrowserProbe::BrowserProbe(AppleEvents& events, WindowServer& server, MainLoop& loop)
    : events_(&events), server_(&server), loop_(&loop) {}

std::string BrowserProbe::source(const Browser& browser) {
    const std::string tab = browser.dialect == Dialect::chromium ? "active tab" : "current tab";
    const std::string& id = browser.bundleID;
    return "if application id \"" + id + "\" is running then\n"
           "    with timeout of 3 seconds\n"
           "        tell application id \"" + id + "\"\n"
           "            set out to {}\n"
           "            repeat with w in windows\n"
           "                try\n"
           "                    set b to bounds of w\n"
           "                    set end of out to {id of w, item 1 of b, item 2 of b, item 3 of b, item 4 of b, URL of " +
           tab + " of w}\n"
           "                on error number n\n"
           "                    if n is -1712 then error number n\n"
           "                end try\n"
           "            end repeat\n"
           "            return out\n"
           "        end tell\n"
           "    end timeout\n"
           "end if\n"
           "return {}";
}

CompiledScript* BrowserProbe::script(const Browser& browser) {
    if (auto kept = scripts_.find(browser.bundleID); kept != scripts_.end()) return kept->second.get();
    std::shared_ptr<CompiledScript> made = events_->makeScript(source(browser));
    if (!made) return nullptr;
    events_->compile(*made);
    scripts_[browser.bundleID] = made;
    return made.get();
}

bool BrowserProbe::isCoolingDown(const RunningApplication& app) const {
    auto entry = coolingDownUntil_.find(app.processIdentifier);
    double until = entry == coolingDownUntil_.end() ? 0.0 : entry->second;
    return loop_->uptime() < until;
}

std::vector<ReplyItem> BrowserProbe::items(const ScriptValue& reply) {
    std::vector<ReplyItem> kept;
    std::size_t count = reply.numberOfItems();
    for (std::size_t index = 1; index <= count; ++index) {
        const ScriptValue* item = reply.descriptorAtIndex(index);
        if (item == nullptr || item->numberOfItems() != 6) continue;
        auto number = [&](std::size_t at) -> std::int32_t {
            const ScriptValue* field = item->descriptorAtIndex(at);
            return field == nullptr ? 0 : field->int32Value();
        };
        double left = number(2), top = number(3), right = number(4), bottom = number(5);
        const ScriptValue* address = item->descriptorAtIndex(6);
        kept.push_back(ReplyItem{number(1), Rect{left, top, right - left, bottom - top},
                                 address == nullptr ? std::nullopt : address->stringValue()});
    }
    return kept;
}

std::vector<ProbedWindow> BrowserProbe::windows(const std::string& bundleID, const std::vector<ReplyItem>& items,
                                                const std::vector<ForeignWindow>& screenWindows,
                                                const std::unordered_map<WindowKey, std::int64_t>& previous,
                                                double screenHeight) {
    std::vector<Rect> frames;
    std::vector<WindowKey> keys;
    std::vector<std::optional<std::int64_t>> earlier;
    frames.reserve(items.size());
    keys.reserve(items.size());
    earlier.reserve(items.size());
    std::unordered_map<std::int64_t, std::size_t> firstIndexOfNumber;
    for (std::size_t i = screenWindows.size(); i-- > 0;) firstIndexOfNumber[screenWindows[i].number] = i;
    for (const ReplyItem& item : items) {
        const Rect& b = item.bounds;
        frames.push_back(Geometry::flip(Rect{b.minX(), b.minY(), b.maxX() - b.minX(), b.maxY() - b.minY()}, screenHeight));
        keys.push_back(WindowKey{bundleID, item.window});
        std::optional<std::int64_t> index;
        if (auto was = previous.find(keys.back()); was != previous.end())
            if (auto at = firstIndexOfNumber.find(was->second); at != firstIndexOfNumber.end())
                index = static_cast<std::int64_t>(at->second);
        earlier.push_back(index);
    }
    std::vector<Rect> screenFrames;
    screenFrames.reserve(screenWindows.size());
    for (const ForeignWindow& window : screenWindows) screenFrames.push_back(window.frame);

    std::vector<std::optional<std::size_t>> pairs = FramePairing::pair(frames, screenFrames, earlier);
    std::vector<ProbedWindow> result;
    result.reserve(items.size());
    for (std::size_t i = 0; i < items.size(); ++i) {
        ProbedWindow window{keys[i], std::nullopt, std::nullopt};
        if (pairs[i]) window.screenWindow = screenWindows[*pairs[i]];
        if (items[i].address) window.host = Host::normalize(*items[i].address);
        result.push_back(std::move(window));
    }
    return result;
}

ScreenWindows ScreenWindows::take(WindowServer& server) {
    double height = Geometry(server).screenHeight();
    return ScreenWindows{WindowList(server).windowsByProcess(height), height};
}

const std::vector<ForeignWindow>& ScreenWindows::of(std::int32_t pid) const {
    static const std::vector<ForeignWindow> none;
    auto found = byProcess.find(pid);
    return found == byProcess.end() ? none : found->second;
}

BrowserReading BrowserProbe::read(const Browser& browser, const RunningApplication& app,
                                  const std::unordered_map<WindowKey, std::int64_t>& previous,
                                  const std::function<const ScreenWindows&()>& screen) {
    if (isCoolingDown(app)) return BrowserReading::noAnswer();
    CompiledScript* compiled = script(browser);
    if (compiled == nullptr) return BrowserReading::noAnswer();
    ScriptOutcome outcome = events_->execute(*compiled);
    if (const auto* error = std::get_if<ScriptError>(&outcome)) {
        if (error->number == AppleEvents::eventNotPermitted) return BrowserReading::notAllowed();
        coolingDownUntil_[app.processIdentifier] = loop_->uptime() + cooldown;
        return BrowserReading::noAnswer();
    }
    std::vector<ReplyItem> kept = items(std::get<ScriptValue>(outcome));
    const ScreenWindows& shown = screen();
    return BrowserReading::of(
        windows(browser.bundleID, kept, shown.of(app.processIdentifier), previous, shown.screenHeight));
}

}  // namespace ashview
