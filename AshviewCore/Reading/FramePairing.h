// Matching the windows a browser reported with the window server's windows.
//
// A browser names its windows by its own scripting ids, which say nothing of
// the window server's numbers; the overlay needs the latter. Windows are
// matched by an earlier pairing first, so a window that has just moved or
// been resized keeps its partner, and otherwise by position and size.
#pragma once

#include "AshviewCore/Foundation/Rect.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace ashview::FramePairing {

/// How far apart, in points, each of minimum x, minimum y, width and height
/// of two frames may be for them to count as one window (inclusive).
inline constexpr double tolerance = 1.0;

/// For each of `frames`, the index in `screenFrames` of its window, or
/// nothing. No screen index is given twice. `previous[i]`, when present and a
/// valid, still unused index, is taken for frame i without looking at the
/// geometry (lower i first; entries past the end of `frames` are ignored).
/// Every other frame takes the first unused screen frame, in list order,
/// whose four measures are each within `tolerance` of its own. The result has
/// as many entries as `frames`.
std::vector<std::optional<std::size_t>> pair(const std::vector<Rect>& frames, const std::vector<Rect>& screenFrames,
                                             const std::vector<std::optional<std::int64_t>>& previous);

}  // namespace ashview::FramePairing
