// The gray overlay: a borderless, shadowless, click-through window, on every
// Space, that drains all colour from what lies beneath it. It holds a
// backdrop layer that the compositor fills live from what is below, with a
// saturation filter at 0. The program never draws into it and never captures
// another window's pixels.
//
// Whether the compositor offers the backdrop class and the saturation filter
// is found out once, on first use, and kept. Without either, graying is not
// available: `make` still gives a window, clear and with no effect, and
// `rearm` does nothing.
//
// Main thread only. This object keeps no list of overlays: the caller owns
// each window it makes, orders it in and out, and drops it.
#pragma once

#include "Platform/OverlayWindows.h"

#include <memory>
#include <optional>

namespace ashview {

class GrayOverlay final {
public:
    /// Style mask 0: borderless.
    static constexpr std::uint64_t styleMask = 0;
    /// Backing 2: buffered.
    static constexpr std::int64_t backing = 2;
    /// Animation behaviour 2: none.
    static constexpr std::int64_t animationBehavior = 2;
    /// Can join all Spaces (1), stationary (16), ignores cycling (64),
    /// full-screen auxiliary (256).
    static constexpr std::uint64_t collectionBehavior = 337;
    /// The background is white of this alpha, deliberately not 0: that white
    /// is what fills the window for the compositor.
    static constexpr double backgroundAlpha = 0.001;
    /// Width sizable (2) and height sizable (16).
    static constexpr std::uint32_t autoresizingMask = 18;

    /// `system` must outlive this object.
    explicit GrayOverlay(OverlayWindowSystem& system) : system_(&system) {}

    /// True when the backdrop class exists and a saturation filter can be made.
    bool isAvailable();

    /// A new overlay window for `frame` (Cocoa coordinates), not on screen
    /// and not placed; no window level is set, so it stays at the normal
    /// level. Each overlay's backdrop has a group of its own.
    std::shared_ptr<OverlayWindow> make(Rect frame);

    /// Re-establishes the window-server hosting of an overlay: both writes
    /// of "canHostLayersInWindowServer", false then true, happen at every
    /// call. Nothing at all when graying is not available.
    void rearm(OverlayWindow& window);

private:
    void lookUp();
    std::shared_ptr<OverlayFilter> saturateZero();

    OverlayWindowSystem* system_;
    bool looked_ = false;
    bool backdropClass_ = false;
    bool hasSaturateFilter_ = false;
};

}  // namespace ashview
