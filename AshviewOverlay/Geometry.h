// The one conversion between Quartz coordinates (origin at the top left of
// the primary display, y downward: the window lists, window-server bounds,
// browsers' bounds) and Cocoa coordinates (origin at the bottom left of the
// primary display, y upward: every `frame` of this program and its windows).
//
// The flip is its own inverse, so both directions are the same operation.
// The primary display's height is read from the window server at every call,
// never kept, so a new arrangement of displays counts at once.
#pragma once

#include "AshviewCore/Foundation/Rect.h"
#include "Platform/WindowServer.h"

namespace ashview {

class Geometry final {
public:
    /// `server` must outlive this object.
    explicit Geometry(WindowServer& server) : server_(&server) {}

    Rect cocoa(Rect fromQuartz) const { return flip(fromQuartz, screenHeight()); }
    Rect quartz(Rect fromCocoa) const { return flip(fromCocoa, screenHeight()); }

    /// The primary display's height now; 0 when there is no display at all.
    double screenHeight() const { return server_->primaryScreenHeight().value_or(0.0); }

    /// `rect` mirrored in a primary display of height `height`: x is the
    /// rectangle's minimum x, y is `height` minus its maximum y, and the size
    /// is kept (made non-negative). Displays above the primary one have
    /// negative Quartz y and need no special case.
    static Rect flip(Rect rect, double height) {
        Rect area = rect.standardized();
        return Rect{area.x, height - area.maxY(), area.width, area.height};
    }

private:
    WindowServer* server_;
};

}  // namespace ashview
