#include "AshviewCore/Visibility.h"

#include <cstddef>

namespace ashview::Visibility {

namespace {

constexpr int gridSize = 16;
constexpr double cellShare = 0.0625;  // 1/16 of a side
constexpr double pointShare = 0.00390625;  // 1/256 of the grid

// The sampling itself, over covers already known to intersect.
double sample(Rect rect, const Rect* covers, std::size_t count) {
    if (count == 0) return 1.0;
    Rect of = rect.standardized();
    double cellWidth = of.width * cellShare;
    double cellHeight = of.height * cellShare;
    double left = of.minX();
    double top = of.minY();
    int uncovered = 0;
    for (int row = 0; row < gridSize; ++row) {
        double y = top + cellHeight * (row + 0.5);
        for (int column = 0; column < gridSize; ++column) {
            Point point{left + cellWidth * (column + 0.5), y};
            bool covered = false;
            for (std::size_t index = 0; index < count && !covered; ++index) covered = covers[index].contains(point);
            if (!covered) ++uncovered;
        }
    }
    return uncovered * pointShare;
}

}  // namespace

double uncoveredFraction(Rect of, const std::vector<Rect>& coveredBy) {
    std::vector<Rect> touching;
    for (const Rect& cover : coveredBy)
        if (cover.intersects(of)) touching.push_back(cover);
    return sample(of, touching.data(), touching.size());
}

std::optional<double> uncoveredFraction(std::int64_t ofWindow, const std::vector<Window>& in,
                                        std::int32_t ignoringOwner) {
    std::size_t target = 0;
    while (target < in.size() && in[target].number != ofWindow) ++target;
    if (target == in.size()) return std::nullopt;
    const Rect& frame = in[target].frame;
    std::vector<Rect> touching;
    for (std::size_t index = 0; index < target; ++index) {
        const Window& window = in[index];
        if (window.layer != 0 || !(window.alpha > 0.0) || window.ownerPID == ignoringOwner) continue;
        if (window.frame.intersects(frame)) touching.push_back(window.frame);
    }
    return sample(frame, touching.data(), touching.size());
}

bool isVisible(std::int64_t window, const std::vector<Window>& in, std::int32_t ignoringOwner) {
    std::optional<double> fraction = uncoveredFraction(window, in, ignoringOwner);
    return fraction && *fraction >= visibleFraction;
}

}  // namespace ashview::Visibility
