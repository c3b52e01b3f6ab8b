// The window server as the operating system shows it: the window lists, the
// primary display's height and the private notification and bounds entry
// points. Everything here is raw: what the system handed back, field by field,
// with no filter, order or failure value of the program's own. `WindowList`,
// `Geometry` and `SkyLight` (AshviewOverlay) make every decision on top.
//
// Main thread only. The adapter is owned by whoever builds the desktop (the
// Mac entry point, or a `SimDesktop`) and must outlive everything handed it.
#pragma once

#include "AshviewCore/Foundation/Rect.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace ashview {

/// One entry of a window list. Each field is absent when the entry has no
/// such key or holds a value that cannot be read as the field's type: a
/// number that is not an integer where an integer is read, a bounds value
/// that is not a dictionary or does not convert to a rectangle.
struct WindowInfo final {
    std::optional<std::int64_t> number;  // kCGWindowNumber
    std::optional<std::int64_t> ownerPID;  // kCGWindowOwnerPID
    std::optional<std::string> ownerName;  // kCGWindowOwnerName
    std::optional<std::int64_t> layer;  // kCGWindowLayer
    std::optional<double> alpha;  // kCGWindowAlpha
    std::optional<Rect> bounds;  // kCGWindowBounds, in Quartz coordinates

    friend bool operator==(const WindowInfo&, const WindowInfo&) = default;
};

/// A window list as it came: absent when the result was null or not an
/// array; an element absent where the array held something that is not a
/// dictionary. Entries are front to back.
using RawWindowList = std::optional<std::vector<std::optional<WindowInfo>>>;

/// The shape of the window server's notify procedure: event number, pointer
/// to the event's data (the first four bytes hold the window number, unsigned
/// 32 bits; the pointer may be null), the data's length, and the context
/// given at registration.
using NotifyProc = void (*)(std::uint32_t event, void* data, std::size_t length, void* context);

/// The four private entry points, each empty when the system lacks it (or
/// lacks the whole library). Found once; a non-empty one stays callable for
/// the adapter's life.
struct SkyLightEntryPoints final {
    /// SLSMainConnectionID: the process's connection to the window server.
    std::function<std::int32_t()> mainConnectionID;
    /// SLSGetWindowBounds(connection, window, &bounds): 0 on success, when
    /// `bounds` holds the window's rectangle in Quartz coordinates.
    std::function<std::int32_t(std::int32_t connection, std::uint32_t window, Rect* bounds)> getWindowBounds;
    /// SLSRegisterNotifyProc(proc, event, context): the call's status.
    std::function<std::int32_t(NotifyProc proc, std::uint32_t event, void* context)> registerNotifyProc;
    /// SLSRequestNotificationsForWindows(connection, windows, count): the
    /// call's status; from then on events come for exactly these windows.
    std::function<std::int32_t(std::int32_t connection, const std::uint32_t* windows, std::int32_t count)>
        requestNotificationsForWindows;
};

class WindowServer {
public:
    /// Option bits of a window-list request.
    static constexpr std::uint32_t onScreenOnly = 1;  // kCGWindowListOptionOnScreenOnly
    static constexpr std::uint32_t excludeDesktopElements = 16;  // kCGWindowListExcludeDesktopElements

    WindowServer() = default;
    WindowServer(const WindowServer&) = delete;
    WindowServer& operator=(const WindowServer&) = delete;
    virtual ~WindowServer() = default;

    /// CGWindowListCopyWindowInfo(options, relativeToWindow), as it came.
    virtual RawWindowList copyWindowInfo(std::uint32_t options, std::uint32_t relativeToWindow) = 0;
    /// The height of the primary display's frame (the first of the system's
    /// screens), or nothing when there is no screen at all. Read anew at
    /// each call.
    virtual std::optional<double> primaryScreenHeight() = 0;
    /// The private entry points. Looked up on the first call only; later
    /// calls give the same result.
    virtual const SkyLightEntryPoints& skyLight() = 0;
    /// This program's own process identifier.
    virtual std::int32_t processIdentifier() = 0;
};

}  // namespace ashview
