// Points and rectangles of the screen, in whichever coordinate system the
// caller uses. A rectangle is an origin and a size; a negative width or height
// spans to the left or upward of the origin, as the platform's rectangles do,
// and every query below reads the rectangle in that standardized sense.
//
// Membership is half-open: a rectangle holds its minimum edges and not its
// maximum edges, so rectangles that merely share an edge hold no point in
// common and do not intersect.
#pragma once

#include <algorithm>

namespace ashview {

struct Point final {
    double x = 0;
    double y = 0;

    friend constexpr bool operator==(Point, Point) = default;
};

struct Rect final {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    constexpr double minX() const { return std::min(x, x + width); }
    constexpr double maxX() const { return std::max(x, x + width); }
    constexpr double minY() const { return std::min(y, y + height); }
    constexpr double maxY() const { return std::max(y, y + height); }
    /// The same area with a non-negative width and height.
    constexpr Rect standardized() const { return Rect{minX(), minY(), maxX() - minX(), maxY() - minY()}; }

    /// True when `minX <= p.x < maxX` and `minY <= p.y < maxY`. A rectangle
    /// of zero width or height holds no point.
    constexpr bool contains(Point p) const {
        return p.x >= minX() && p.x < maxX() && p.y >= minY() && p.y < maxY();
    }

    /// True when the two rectangles share a point, each read half-open as
    /// above, except that along an axis where a rectangle has no extent it
    /// stands for the line (or point) it lies on. So rectangles that only
    /// touch along an edge do not intersect, and a rectangle of zero width
    /// intersects whatever would hold points on its line. Symmetric.
    constexpr bool intersects(const Rect& other) const {
        return overlaps(minX(), maxX(), other.minX(), other.maxX()) &&
               overlaps(minY(), maxY(), other.minY(), other.maxY());
    }

    /// Field-wise: the same origin and the same signed size.
    friend constexpr bool operator==(const Rect&, const Rect&) = default;

private:
    static constexpr bool overlaps(double aMin, double aMax, double bMin, double bMax) {
        bool aFlat = !(aMin < aMax);
        bool bFlat = !(bMin < bMax);
        if (!aFlat && !bFlat) return aMin < bMax && bMin < aMax;
        if (aFlat && !bFlat) return bMin <= aMin && aMin < bMax;
        if (!aFlat && bFlat) return aMin <= bMin && bMin < aMax;
        return aMin == bMin;
    }
};

}  // namespace ashview
