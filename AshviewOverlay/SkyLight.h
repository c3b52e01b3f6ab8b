// The window server's private calls: window bounds by number, and events
// about chosen windows (closed, moved, resized, reordered, hidden), which let
// an overlay follow its window with no window list fetched at each move.
//
// Graying needs all four private entry points. When any one is missing the
// set counts as unavailable as a whole: `isAvailable` is false and no private
// call is made at all; `bounds` gives nothing and the other calls give 1000.
// The entry points are looked up once, at construction; the connection is
// taken once, on first need, and kept.
//
// Main thread only. Window numbers handed in must fit 32 unsigned bits; any
// other number is a programming error and ends the process.
#pragma once

#include "AshviewCore/Foundation/Rect.h"
#include "Platform/WindowServer.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace ashview {

class SkyLight final {
public:
    static constexpr std::uint32_t windowClosed = 804;
    static constexpr std::uint32_t windowMoved = 806;
    static constexpr std::uint32_t windowResized = 807;
    static constexpr std::uint32_t windowReordered = 808;
    static constexpr std::uint32_t windowHidden = 816;
    /// The status given when the needed private entry point is missing.
    static constexpr std::int32_t missingStatus = 1000;

    /// `server` must outlive this object.
    explicit SkyLight(WindowServer& server);

    /// True when all four private entry points were found.
    bool isAvailable() const { return available_; }

    /// The window's current rectangle in Quartz coordinates; nothing when
    /// the calls are unavailable or the window server gives a non-zero status.
    std::optional<Rect> bounds(std::int64_t of);

    /// Registers `callback` for one event number, with no context. The
    /// call's status; `missingStatus` when unavailable.
    std::int32_t onEvent(std::uint32_t event, NotifyProc callback);

    /// Asks for events about exactly these windows from now on, whatever was
    /// asked before (an empty list asks for none). The call's status;
    /// `missingStatus` when unavailable.
    std::int32_t requestEvents(const std::vector<std::int64_t>& windows);

    /// The window number carried by an event's data: its first four bytes,
    /// unsigned. Nothing for a null pointer. The length the window server
    /// passes along is not relied on.
    static std::optional<std::uint32_t> windowNumber(const void* data);

private:
    std::int32_t connection();

    const SkyLightEntryPoints* entry_;
    bool available_;
    std::optional<std::int32_t> connection_;
};

}  // namespace ashview
