// A window of another application, as the read pass and the overlay see it.
#pragma once

#include "AshviewCore/Foundation/Rect.h"

#include <cstdint>

namespace ashview {

struct ForeignWindow final {
    /// The window server's number of the window.
    std::int64_t number = 0;
    /// The window's rectangle in Cocoa coordinates (origin at the bottom left
    /// of the primary display, y upward), ready to be given to an overlay.
    Rect frame;
    /// True when the window came from the list of on-screen windows; false
    /// for a minimised window or one on another Space. No overlay is placed
    /// on a window for which it is false.
    bool isOnScreen = false;

    friend bool operator==(const ForeignWindow&, const ForeignWindow&) = default;
};

}  // namespace ashview
