// Asking one running browser, by one AppleScript run, for all its windows
// (scripting id, bounds, front tab's address) and pairing each with a window
// of the window server.
//
// Only the address leaves here, reduced to a host. A browser that fails to
// answer (a timeout or any error but a refusal) is not asked again for
// `cooldown` seconds of uptime, so a silent browser stalls the main thread for
// at most its script's 3 seconds in every 30. One probe serves the whole
// program: it keeps one compiled script per bundle identifier and the
// cooldowns per process for as long as it lives. Main thread only.
#pragma once

#include "Ashview/Reading/ProbedWindow.h"
#include "AshviewCore/Reading/BrowserCatalog.h"
#include "AshviewCore/Foundation/Rect.h"
#include "Platform/AppleEvents.h"
#include "Platform/MainLoop.h"
#include "Platform/WindowServer.h"
#include "Platform/Workspace.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace ashview {

struct BrowserReading final {
    enum class Kind {
        /// The user has not let this program control the browser (-1743).
        notAllowed,
        /// Nothing is known this time; earlier readings stay valid.
        noAnswer,
        /// The script ran; `windows` holds what it reported (maybe nothing).
        windows,
    };

    Kind kind = Kind::noAnswer;
    std::vector<ProbedWindow> windows;

    static BrowserReading notAllowed() { return {Kind::notAllowed, {}}; }
    static BrowserReading noAnswer() { return {Kind::noAnswer, {}}; }
    static BrowserReading of(std::vector<ProbedWindow> windows) { return {Kind::windows, std::move(windows)}; }

    friend bool operator==(const BrowserReading&, const BrowserReading&) = default;
};

/// One window as a reply reported it: item 1 (id), items 2 to 5 (left, top,
/// right, bottom, in Quartz coordinates), item 6 (the address, when text).
struct ReplyItem final {
    std::int64_t window = 0;
    Rect bounds;
    std::optional<std::string> address;

    friend bool operator==(const ReplyItem&, const ReplyItem&) = default;
};

/// The window server's side of browser readings, taken at one moment: each
/// process's normal windows (as `WindowList::windows(pid)` gives them) and
/// the primary display's height their frames were converted with.
struct ScreenWindows final {
    std::unordered_map<std::int32_t, std::vector<ForeignWindow>> byProcess;
    double screenHeight = 0;

    /// Fetches each window list once.
    static ScreenWindows take(WindowServer& server);
    /// The normal windows of `pid`, on-screen ones first; empty for a
    /// process without any.
    const std::vector<ForeignWindow>& of(std::int32_t pid) const;
};

class BrowserProbe final {
public:
    /// Seconds of uptime a browser is left alone after a failed run.
    static constexpr double cooldown = 30.0;

    /// The adapters must outlive the probe.
    BrowserProbe(AppleEvents& events, WindowServer& server, MainLoop& loop);
    BrowserProbe(const BrowserProbe&) = delete;
    BrowserProbe& operator=(const BrowserProbe&) = delete;

    /// Reads `browser` running as `app`. `previous` maps each window key of
    /// the last reading to the window number it was paired with, so a window
    /// keeps its partner while it moves. A cooling-down browser is sent
    /// nothing and gives `noAnswer`; -1743 gives `notAllowed` and no
    /// cooldown; any other failure gives `noAnswer` and starts a cooldown.
    /// The reported windows are paired with the window server's windows
    /// that `screen` gives; it is called only once the script has answered,
    /// and at most once, so no window list is fetched for a browser that gave
    /// no windows, and a caller reading several browsers can hand the same
    /// lists to each.
    BrowserReading read(const Browser& browser, const RunningApplication& app,
                        const std::unordered_map<WindowKey, std::int64_t>& previous,
                        const std::function<const ScreenWindows&()>& screen);
    /// Whether uptime is still strictly before the end of `app`'s cooldown.
    bool isCoolingDown(const RunningApplication& app) const;

    /// The script text for `browser`: one line feed after each line but the
    /// last; only the bundle identifier and the dialect's tab expression vary.
    static std::string source(const Browser& browser);
    /// The items of six of a reply, in order; everything else is dropped.
    /// Total: any reply gives a list, possibly empty.
    static std::vector<ReplyItem> items(const ScriptValue& reply);
    /// The windows of a reading made of `items` of the browser `bundleID`,
    /// paired with `screenWindows` (the browser's windows from the window
    /// list, on-screen ones first) in a primary display of `screenHeight`.
    static std::vector<ProbedWindow> windows(const std::string& bundleID, const std::vector<ReplyItem>& items,
                                             const std::vector<ForeignWindow>& screenWindows,
                                             const std::unordered_map<WindowKey, std::int64_t>& previous,
                                             double screenHeight);

    /// How many script objects are kept (one per bundle identifier).
    std::size_t cachedScripts() const { return scripts_.size(); }

private:
    CompiledScript* script(const Browser& browser);

    AppleEvents* events_;
    WindowServer* server_;
    MainLoop* loop_;
    std::unordered_map<std::string, std::shared_ptr<CompiledScript>> scripts_;
    std::unordered_map<std::int32_t, double> coolingDownUntil_;
};

}  // namespace ashview
