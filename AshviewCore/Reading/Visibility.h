// How much of a window can be seen, given everything stacked in front of it.
//
// The answer is sampled, not measured: a 16 by 16 grid of points, each at
// the centre of its cell, is laid over the window, and the share of points
// that no cover holds is the result. So every result is a multiple of 1/256,
// overlapping covers need no special care, and the cost is bounded by 256
// points times the covers that touch the window.
//
// Pure: rectangles and numbers in, a fraction out. All rectangles of one call
// must be in one coordinate system.
#pragma once

#include "AshviewCore/Foundation/Rect.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace ashview::Visibility {

/// One entry of the on-screen stack.
struct Window final {
    std::int64_t number = 0;
    Rect frame;
    std::int32_t ownerPID = 0;
    /// 0 is the layer of normal windows.
    std::int64_t layer = 0;
    double alpha = 1.0;

    friend bool operator==(const Window&, const Window&) = default;
};

/// The least uncovered share at which a window counts as seen.
inline constexpr double visibleFraction = 0.25;

/// The share of `of`'s sample points that no rectangle of `coveredBy` holds,
/// from 0.0 to 1.0: exactly 1.0 with no cover that intersects it. A
/// rectangle of zero width or height is sampled along its line.
double uncoveredFraction(Rect of, const std::vector<Rect>& coveredBy);

/// The uncovered share of the first window of `in` numbered `ofWindow`, `in`
/// running front to back. Only windows in front of it cover it, and of those
/// only windows of layer 0, of alpha above 0, and not owned by
/// `ignoringOwner` (the program's own overlays stand right above what they
/// gray and must not count as covering it). Nothing when no window of `in`
/// has that number.
std::optional<double> uncoveredFraction(std::int64_t ofWindow, const std::vector<Window>& in,
                                        std::int32_t ignoringOwner);

/// True when the window's uncovered share is known and at least
/// `visibleFraction`.
bool isVisible(std::int64_t window, const std::vector<Window>& in, std::int32_t ignoringOwner);

}  // namespace ashview::Visibility
