// One entry of the on-screen stack, of any layer and any owner.
#pragma once

#include "AshviewCore/Foundation/Rect.h"

#include <cstdint>

namespace ashview {

struct StackedWindow final {
    std::int64_t number = 0;
    std::int32_t ownerPID = 0;
    /// The window layer; 0 is the layer of normal windows.
    std::int64_t layer = 0;
    /// The window's alpha; 1.0 when the list gives none.
    double alpha = 1.0;
    /// The rectangle in Quartz coordinates (origin at the top left of the
    /// primary display, y downward), as the list gives it.
    Rect bounds;

    friend bool operator==(const StackedWindow&, const StackedWindow&) = default;
};

}  // namespace ashview
