// The simulated desktop: an in-memory window server with its stack, displays
// and events, this program's own overlay windows in that same stack, and the
// virtual clock of the main loop. It hands out the adapters the application
// is built on (`mainLoop()`, `windowServer()`, `overlayWindows()`), exactly as
// the Mac entry point hands out the real ones, and lets a test or a scenario
// change the world (open, move, cover, minimise, close windows; rearrange the
// displays; make private entry points missing) and look at the result (the
// stack, which overlays exist and above which window, what was delivered).
//
// Deterministic: window numbers count up from `firstWindowNumber`, nothing
// depends on addresses or on the real clock, so the same steps give the same
// results and the same log.
//
// Window-server events (804 closed, 806 moved, 807 resized, 808 reordered,
// 816 hidden) are delivered synchronously, on the calling (main) thread, at
// the end of the change that causes them, to every procedure registered for
// that event number, and only for the windows of the latest request.
//
// Applications and browsers are built on top in their own files: they own
// processes (a pid and a name) and open windows here under those.
//
// Single-threaded. Objects handed out (adapters, overlay windows) may outlive
// the desktop; once it is gone they are inert.
#pragma once

#include "AshviewCore/Foundation/Rect.h"
#include "Platform/OverlayWindows.h"
#include "Platform/Sim/SimClock.h"
#include "Platform/Sim/SimNotificationCenter.h"
#include "Platform/WindowServer.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace ashview {

/// A window as the simulated window server knows it.
struct SimWindow final {
    std::int64_t number = 0;
    std::int32_t ownerPID = 0;
    std::string ownerName;
    /// 0 is the normal layer; the menu bar stands at 24 or 25, the Dock at 20.
    std::int64_t layer = 0;
    double alpha = 1.0;
    /// Quartz coordinates: origin at the top left of the primary display.
    Rect bounds;
    /// False while minimised, hidden, on another Space, or (an overlay) not
    /// ordered in.
    bool isOnScreen = true;
    /// The desktop picture and its icons: left out of lists that exclude
    /// desktop elements.
    bool isDesktopElement = false;
    /// One of this program's overlay windows.
    bool isOverlay = false;

    friend bool operator==(const SimWindow&, const SimWindow&) = default;
};

/// What a new foreign window is made of. It opens on screen at the front of
/// its layer.
struct SimWindowSetup final {
    std::int32_t ownerPID = 0;
    std::string ownerName;
    Rect bounds;
    std::int64_t layer = 0;
    double alpha = 1.0;
    bool isOnScreen = true;
    bool isDesktopElement = false;
};

/// One of this program's overlay windows, as a test sees it.
struct SimOverlay final {
    std::int64_t number = 0;
    /// The window's frame in Cocoa coordinates.
    Rect frame;
    bool isOrderedIn = false;
    /// The window right behind it in the on-screen stack, when it is ordered
    /// in and something stands behind it.
    std::optional<std::int64_t> directlyAbove;
    bool ignoresMouseEvents = false;
    bool hasShadow = true;
    std::uint64_t collectionBehavior = 0;
    /// A backdrop layer with a saturation filter at 0 hangs in the view.
    bool desaturates = false;
    /// The backdrop's "groupName", when one was set.
    std::optional<std::string> groupName;
};

/// The private window-server entry points, to be made missing one by one.
enum class SkyLightEntry { mainConnectionID, getWindowBounds, registerNotifyProc, requestNotificationsForWindows };

/// One event as delivered to a registered procedure.
struct SimEvent final {
    std::uint32_t event = 0;
    std::uint32_t window = 0;

    friend bool operator==(const SimEvent&, const SimEvent&) = default;
};

/// How often the desktop's adapters were called, for tests of what the
/// program asks and how often.
struct SimCallCounts final {
    std::size_t windowLists = 0;
    std::size_t screenHeights = 0;
    std::size_t connections = 0;
    std::size_t boundsLookups = 0;
    std::size_t registrations = 0;
    std::size_t requests = 0;
    std::size_t orderWindowCalls = 0;
    std::size_t setFrameCalls = 0;
    std::size_t orderOutCalls = 0;
    std::size_t overlaysMade = 0;
};

class SimDesktop final {
public:
    static constexpr std::int64_t firstWindowNumber = 100;
    static constexpr std::int32_t defaultProcessIdentifier = 4242;
    static constexpr const char* programName = "Drabwise";
    /// The connection number `SLSMainConnectionID` gives.
    static constexpr std::int32_t connectionID = 7001;
    /// The status of a bounds lookup for a window that does not exist.
    static constexpr std::int32_t illegalArgument = 1001;

    /// One display of 1440 by 900 points, the default clock and this program
    /// running as `defaultProcessIdentifier`.
    SimDesktop();
    /// The same, with the virtual clock starting at `start` in `calendar`.
    SimDesktop(Instant start, Calendar calendar);
    SimDesktop(const SimDesktop&) = delete;
    SimDesktop& operator=(const SimDesktop&) = delete;
    ~SimDesktop();

    // The adapters, valid as long as the desktop lives.
    SimClock& clock();
    MainLoop& mainLoop();
    WindowServer& windowServer();
    OverlayWindowSystem& overlayWindows();
    /// The workspace's center (displays asleep and awake, session switched,
    /// Space changed, power off) and the distributed one (screen locked and
    /// unlocked). Tests and scenarios post on them what the system would.
    SimNotificationCenter& workspaceNotifications();
    SimNotificationCenter& distributedNotifications();

    // Displays: Quartz frames, the primary display first. A display above the
    // primary one has a negative y. An empty list means no display at all.
    void setDisplays(std::vector<Rect> frames);
    const std::vector<Rect>& displays() const;
    void setProcessIdentifier(std::int32_t pid);
    std::int32_t processIdentifier() const;

    // Foreign windows. Every call naming a window that does not exist throws
    // std::out_of_range: a scenario that names a wrong window is a bad script.
    /// Opens a window at the front of its layer; its number.
    std::int64_t openWindow(const SimWindowSetup& setup);
    /// Removes the window; event 804.
    void closeWindow(std::int64_t number);
    /// New bounds: event 806 when the origin changed, then 807 when the size
    /// changed; nothing when neither did.
    void setBounds(std::int64_t number, Rect bounds);
    void moveBy(std::int64_t number, double dx, double dy);
    /// To the front of its layer; event 808.
    void bringToFront(std::int64_t number);
    /// Directly above (`above` true) or below the window `relativeTo`;
    /// event 808.
    void orderRelative(std::int64_t number, bool above, std::int64_t relativeTo);
    /// Off screen; event 816.
    void minimise(std::int64_t number);
    /// Back on screen at the front of its layer; event 808.
    void restore(std::int64_t number);
    /// On or off screen without any event, as when Spaces change.
    void setOnScreen(std::int64_t number, bool onScreen);
    /// The user moves to another Space: the windows `leaving` go off screen
    /// and `arriving` come on at the front of their layer, with no
    /// window-server event; then the workspace posts the Space change. This
    /// program's overlays belong to every Space and stay.
    void switchSpace(const std::vector<std::int64_t>& leaving, const std::vector<std::int64_t>& arriving);
    void setAlpha(std::int64_t number, double alpha);
    void setLayer(std::int64_t number, std::int64_t layer);
    /// Removes every window of a process (it quit); event 804 for each.
    void closeWindows(std::int32_t ownerPID);

    // Looking at the desktop.
    std::optional<SimWindow> window(std::int64_t number) const;
    /// Window numbers of the on-screen stack, front to back, overlays
    /// included: higher layers first, then stacking order within a layer.
    std::vector<std::int64_t> onScreenStack() const;
    /// Every live overlay of this program, by window number.
    std::vector<SimOverlay> overlays() const;
    /// The overlay that stands directly in front of `target` in the
    /// on-screen stack, if any.
    std::optional<std::int64_t> overlayAbove(std::int64_t target) const;
    /// The window that a click at `point` (Quartz) reaches: the frontmost on
    /// screen that holds the point and does not let clicks through.
    std::optional<std::int64_t> windowAt(Point point) const;

    // The private entry points. Changes of availability must come before
    // the first lookup through `windowServer().skyLight()` (they throw
    // std::logic_error after it): the system looks them up once.
    void setEntryPointMissing(SkyLightEntry entry, bool missing = true);
    /// The whole library missing: all four entry points.
    void setSkyLightMissing();
    /// The windows events are delivered for, as last requested.
    const std::vector<std::uint32_t>& requestedWindows() const;
    /// Event numbers for which a procedure is registered, in registration
    /// order (one entry per registration).
    std::vector<std::uint32_t> registeredEvents() const;
    /// Every event delivered so far, in order.
    const std::vector<SimEvent>& deliveredEvents() const;
    /// Calls every procedure registered for `event` with this data pointer
    /// (null allowed), whatever was requested: for tests of odd deliveries.
    void postRawEvent(std::uint32_t event, void* data);

    // The compositor's private pieces; like the entry points, they are looked
    // up once by the program, so change them before building on them.
    void setBackdropClassMissing(bool missing = true);
    void setSaturateFilterMissing(bool missing = true);
    /// The backdrop class exists but its `init` gives no object.
    void setBackdropInitFails(bool fails = true);

    /// Every primitive performed on overlay windows, views, layers and
    /// filters, in order, one line each, e.g. "window 103 setOpaque false",
    /// "backdrop 1 setValue \"groupName\" \"ashview-...\"".
    const std::vector<std::string>& overlayJournal() const;
    void clearOverlayJournal();
    const SimCallCounts& counts() const;

    /// A hook that may change any list before it is handed out (drop fields,
    /// put in a non-dictionary, make it null), for tests of unreadable lists.
    void setListTamper(std::function<void(std::uint32_t options, RawWindowList& list)> tamper);

    struct State;

private:
    std::shared_ptr<State> state_;
};

}  // namespace ashview
