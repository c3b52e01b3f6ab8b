#include "AshviewCore/Reading/FramePairing.h"

#include <algorithm>
#include <cmath>

namespace ashview::FramePairing {

namespace {

bool fits(const Rect& a, const Rect& b) {
    return std::abs(a.minX() - b.minX()) <= tolerance && std::abs(a.minY() - b.minY()) <= tolerance &&
           std::abs((a.maxX() - a.minX()) - (b.maxX() - b.minX())) <= tolerance &&
           std::abs((a.maxY() - a.minY()) - (b.maxY() - b.minY())) <= tolerance;
}

}  // namespace

std::vector<std::optional<std::size_t>> pair(const std::vector<Rect>& frames, const std::vector<Rect>& screenFrames,
                                             const std::vector<std::optional<std::int64_t>>& previous) {
    std::vector<std::optional<std::size_t>> result(frames.size());
    if (frames.empty()) return result;
    std::vector<bool> used(screenFrames.size(), false);

    std::size_t carried = std::min(previous.size(), frames.size());
    for (std::size_t i = 0; i < carried; ++i) {
        if (!previous[i]) continue;
        std::int64_t index = *previous[i];
        if (index < 0 || static_cast<std::uint64_t>(index) >= screenFrames.size()) continue;
        auto j = static_cast<std::size_t>(index);
        if (used[j]) continue;
        result[i] = j;
        used[j] = true;
    }

    for (std::size_t i = 0; i < frames.size(); ++i) {
        if (result[i]) continue;
        for (std::size_t j = 0; j < screenFrames.size(); ++j) {
            if (used[j] || !fits(frames[i], screenFrames[j])) continue;
            result[i] = j;
            used[j] = true;
            break;
        }
    }
    return result;
}

}  // namespace ashview::FramePairing
