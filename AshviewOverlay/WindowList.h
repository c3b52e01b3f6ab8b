// The window server's public window lists, read and judged: the on-screen
// stack, the normal windows of one process, and where given windows stand.
//
// Lists are fetched anew at every call and never cached: their only worth is
// being current. An unreadable list is an empty one; an entry that cannot be
// read is left out. Nothing here fails or logs. Main thread only.
#pragma once

#include "AshviewOverlay/ForeignWindow.h"
#include "AshviewOverlay/Geometry.h"
#include "AshviewOverlay/StackedWindow.h"
#include "Platform/WindowServer.h"

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

namespace ashview {

class WindowList final {
public:
    /// `server` must outlive this object.
    explicit WindowList(WindowServer& server) : server_(&server) {}

    /// The entries of the on-screen list (desktop elements excluded), front
    /// to back, as they came. Empty when the list is null, not an array, or
    /// holds anything that is not a dictionary.
    std::vector<WindowInfo> onScreen() const;

    /// The whole on-screen stack, front to back, of every layer and every
    /// owner (this program's overlays, the menu bar and the Dock included).
    /// An entry without a number that fits 32 unsigned bits, a process
    /// identifier that fits 32 signed bits, an integer layer, or readable bounds is left out; one
    /// without a readable alpha gets 1.0. Bounds stay in Quartz coordinates.
    std::vector<StackedWindow> stack() const;

    /// The normal on-screen windows whose owner name is exactly `owner`,
    /// front to back, each with `isOnScreen` true.
    std::vector<ForeignWindow> windows(const std::string& owner) const;

    /// The normal windows of process `pid`: those of the on-screen list first,
    /// front to back, with `isOnScreen` true; then, in list order, those of
    /// the list of all windows that were not on screen (minimised, on another
    /// Space), with `isOnScreen` false. No window number appears twice.
    std::vector<ForeignWindow> windows(std::int32_t pid) const;

    /// Every process's normal windows from one fetch of each list: under
    /// each process identifier, in the same order, exactly the windows
    /// `windows(pid)` gives, their frames converted with a primary display
    /// of `screenHeight`. A process without a normal window has no entry.
    /// For reading many processes at one moment without asking for the
    /// lists again for each.
    std::unordered_map<std::int32_t, std::vector<ForeignWindow>> windowsByProcess(double screenHeight) const;

    /// For each number of `numbers`, in order, the index of its first entry
    /// in the front-to-back on-screen list, counting only entries that have
    /// an integer number; -1 where it is not there. As long as `numbers`.
    std::vector<int> positions(const std::vector<std::int64_t>& numbers) const;

    /// A normal window made of one entry, or nothing: the layer must be
    /// present and 0, the number present and within 32 unsigned bits, the
    /// bounds readable. The frame is
    /// the bounds converted to Cocoa coordinates by `geometry`.
    static std::optional<ForeignWindow> normalWindow(const WindowInfo& entry, bool isOnScreen,
                                                     const Geometry& geometry);

private:
    /// The list's entries as they came, every one present; empty when the
    /// list is null or holds anything that is not a dictionary.
    std::vector<std::optional<WindowInfo>> list(std::uint32_t options) const;

    WindowServer* server_;
};

}  // namespace ashview
