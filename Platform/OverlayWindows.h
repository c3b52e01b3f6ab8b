// The window and layer primitives from which the gray overlay is built, one
// call for one platform call, and the two run-time lookups that tell whether
// the compositor can desaturate at all (the backdrop layer class and the
// saturation filter). No primitive decides anything: `GrayOverlay`
// (AshviewOverlay) chooses the values and the order.
//
// Main thread only. Windows, views, layers and filters are handed out as
// shared objects: the program owns a window as long as it holds it, and a
// window nobody holds any more is gone from the screen.
#pragma once

#include "AshviewCore/Foundation/Rect.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace ashview {

/// A value set by key-value coding: a boolean, a floating-point number or a
/// text, kept apart so that "set as a boolean" and "set as a number" differ.
using KeyValue = std::variant<bool, double, std::string>;

/// A `CAFilter` made by its type name.
class OverlayFilter {
public:
    virtual ~OverlayFilter() = default;
    virtual void setValue(const KeyValue& value, std::string_view key) = 0;
};

/// A Core Animation layer: a view's own layer or a backdrop layer.
class OverlayLayer {
public:
    virtual ~OverlayLayer() = default;
    virtual void setFrame(Rect frame) = 0;
    virtual void setAutoresizingMask(std::uint32_t mask) = 0;
    virtual void setValue(const KeyValue& value, std::string_view key) = 0;
    /// `setFilters:` with these filters, or with nothing when absent.
    virtual void setFilters(std::optional<std::vector<std::shared_ptr<OverlayFilter>>> filters) = 0;
    virtual void addSublayer(std::shared_ptr<OverlayLayer> layer) = 0;
};

/// An `NSView`.
class OverlayView {
public:
    virtual ~OverlayView() = default;
    virtual void setWantsLayer(bool wants) = 0;
    virtual void setLayerUsesCoreImageFilters(bool uses) = 0;
    /// The view's bounds: origin (0, 0) and the view's size.
    virtual Rect bounds() const = 0;
    /// The view's own layer; absent until `setWantsLayer(true)`.
    virtual std::shared_ptr<OverlayLayer> layer() = 0;
};

/// How `orderWindow` places a window relative to another.
enum class WindowOrderingMode { above, below };

/// An `NSWindow` of this program. Frames are in Cocoa coordinates.
class OverlayWindow {
public:
    virtual ~OverlayWindow() = default;
    virtual void setReleasedWhenClosed(bool released) = 0;
    virtual void setOpaque(bool opaque) = 0;
    /// `setBackgroundColor:` with a gray of this white level and alpha.
    virtual void setBackgroundColor(double white, double alpha) = 0;
    virtual void setHasShadow(bool hasShadow) = 0;
    virtual void setIgnoresMouseEvents(bool ignores) = 0;
    virtual void setAnimationBehavior(std::int64_t behavior) = 0;
    virtual void setCollectionBehavior(std::uint64_t behavior) = 0;
    virtual void setContentView(std::shared_ptr<OverlayView> view) = 0;
    virtual void setValue(const KeyValue& value, std::string_view key) = 0;

    /// `orderOut:` with no sender: the window leaves the screen.
    virtual void orderOut() = 0;
    /// `orderWindow:relativeTo:`: puts the window on screen directly above
    /// or below the window numbered `relativeTo` (0: above or below all of
    /// its level).
    virtual void orderWindow(WindowOrderingMode mode, std::int64_t relativeTo) = 0;
    virtual void setFrame(Rect frame, bool display) = 0;
    virtual Rect frame() const = 0;
    /// The window server's number of this window.
    virtual std::int64_t windowNumber() const = 0;
};

class OverlayWindowSystem {
public:
    OverlayWindowSystem() = default;
    OverlayWindowSystem(const OverlayWindowSystem&) = delete;
    OverlayWindowSystem& operator=(const OverlayWindowSystem&) = delete;
    virtual ~OverlayWindowSystem() = default;

    /// Whether the class named "CABackdropLayer" exists and is a layer class.
    virtual bool hasBackdropClass() = 0;
    /// A new filter of the type "colorSaturate" (through "CAFilter" and its
    /// "filterWithType:"), or nothing when any piece of that lookup is
    /// missing or no object comes back.
    virtual std::shared_ptr<OverlayFilter> makeSaturateFilter() = 0;
    /// A new instance of the backdrop layer class made with `init`; nothing
    /// when the class is missing or `init` gives no object.
    virtual std::shared_ptr<OverlayLayer> makeBackdropLayer() = 0;
    /// `initWithContentRect:styleMask:backing:defer:`. The window exists,
    /// has its number and is not on screen.
    virtual std::shared_ptr<OverlayWindow> makeWindow(Rect contentRect, std::uint64_t styleMask,
                                                      std::int64_t backing, bool defer) = 0;
    /// `initWithFrame:`.
    virtual std::shared_ptr<OverlayView> makeView(Rect frame) = 0;
};

}  // namespace ashview
