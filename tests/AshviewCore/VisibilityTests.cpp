#include "AshviewCore/Reading/Visibility.h"

#include <gtest/gtest.h>

#include <random>

namespace ashview {
namespace {

using Visibility::Window;

constexpr std::int32_t self = 4242;
constexpr std::int32_t other = 77;

Window at(std::int64_t number, Rect frame, std::int32_t pid = other, std::int64_t layer = 0, double alpha = 1.0) {
    return Window{number, frame, pid, layer, alpha};
}
double fraction(Rect of, const std::vector<Rect>& covers) { return Visibility::uncoveredFraction(of, covers); }

TEST(Visibility, SamplesTheRectangleOnASixteenBySixteenGrid) {
    Rect window{0, 0, 160, 160};
    EXPECT_EQ(fraction(window, {}), 1.0);
    EXPECT_EQ(fraction(window, {Rect{-5, -5, 200, 200}}), 0.0);
    EXPECT_EQ(fraction(window, {Rect{0, 0, 80, 160}}), 0.5) << "left half, edge on a cell boundary";
    EXPECT_EQ(fraction(window, {Rect{0, 0, 80, 160}, Rect{40, 0, 80, 160}}), 0.25) << "each point counts once";
    EXPECT_EQ(fraction(window, {Rect{160, 0, 50, 160}, Rect{0, -40, 160, 40}}), 1.0) << "touching is no cover";
    EXPECT_EQ(fraction(window, {Rect{0, 0, 6, 6}}), 255.0 / 256) << "one cell centre";
    // Negative sizes span the other way, as the platform's rectangles do.
    EXPECT_EQ(fraction(Rect{160, 160, -160, -160}, {Rect{0, 0, 80, 160}}), 0.5);
    // Zero-sized windows are sampled along their line.
    EXPECT_EQ(fraction(Rect{10, 10, 100, 0}, {}), 1.0);
    EXPECT_EQ(fraction(Rect{10, 10, 0, 100}, {Rect{0, 0, 50, 200}}), 0.0);
    EXPECT_EQ(fraction(Rect{10, 10, 0, 100}, {Rect{0, 0, 10, 200}}), 1.0) << "on the cover's far edge";
}

TEST(Visibility, TheThresholdIsAQuarterInclusive) {
    std::vector<Window> quarterLeft{at(1, Rect{0, 0, 160, 120}), at(2, Rect{0, 0, 160, 160})};
    EXPECT_EQ(Visibility::uncoveredFraction(2, quarterLeft, self), 0.25);
    EXPECT_TRUE(Visibility::isVisible(2, quarterLeft, self));
    // One more sample point covered: 63/256.
    quarterLeft.insert(quarterLeft.begin() + 1, at(3, Rect{0, 120, 10, 10}));
    EXPECT_FALSE(Visibility::isVisible(2, quarterLeft, self));
}

TEST(Visibility, OnlyNormalOpaqueForeignWindowsInFrontCover) {
    Rect over{0, 0, 1000, 1000};
    std::vector<Window> stack{
        at(10, over, self),           // this program's overlay
        at(11, over, other, 25),      // the menu bar's layer
        at(12, over, other, 0, 0.0),  // invisible
        at(2, Rect{100, 100, 400, 300}),
        at(13, over),  // behind the target
    };
    EXPECT_EQ(Visibility::uncoveredFraction(2, stack, self), 1.0);
    stack.insert(stack.begin(), at(14, over, other, 0, 0.01));  // barely visible still hides
    EXPECT_EQ(Visibility::uncoveredFraction(2, stack, self), 0.0);
    stack[0] = at(14, over, other, -1);  // below the normal layer
    EXPECT_EQ(Visibility::uncoveredFraction(2, stack, self), 1.0);
    // The owner filter is the caller's: another pid to ignore makes our overlay count.
    EXPECT_EQ(Visibility::uncoveredFraction(2, stack, other), 0.0);

    // A window outside the stack has no fraction; the first entry of a number is the one judged.
    std::vector<Window> twice{at(1, Rect{0, 0, 10, 10}), at(2, Rect{0, 0, 10, 10}), at(2, Rect{500, 500, 10, 10})};
    EXPECT_EQ(Visibility::uncoveredFraction(9, twice, self), std::nullopt);
    EXPECT_FALSE(Visibility::isVisible(9, twice, self));
    EXPECT_EQ(Visibility::uncoveredFraction(2, twice, self), 0.0);
}

// The sampling as plainly as it can be said: every point against every cover.
double pointByPoint(Rect rect, const std::vector<Rect>& covers) {
    Rect of = rect.standardized();
    int uncovered = 0;
    for (int row = 0; row < 16; ++row)
        for (int column = 0; column < 16; ++column) {
            Point point{of.x + of.width * 0.0625 * (column + 0.5), of.y + of.height * 0.0625 * (row + 0.5)};
            bool covered = false;
            for (const Rect& cover : covers) covered = covered || (cover.intersects(rect) && cover.contains(point));
            uncovered += !covered;
        }
    return uncovered / 256.0;
}

TEST(Visibility, AgreesWithSamplingPointByPointOnRandomStacks) {
    std::mt19937 random(7);
    // Coordinates on a coarse lattice and sizes in multiples of 32, so that
    // sample points fall exactly on cover edges again and again.
    std::uniform_int_distribution<int> coordinate(-10, 100);
    std::uniform_int_distribution<int> extent(-2, 10);
    auto rect = [&] {
        return Rect{4.0 * coordinate(random), 4.0 * coordinate(random), 32.0 * extent(random), 32.0 * extent(random)};
    };
    for (int round = 0; round < 400; ++round) {
        Rect target = rect();
        std::vector<Rect> covers(static_cast<std::size_t>(round % 9));
        for (Rect& cover : covers) cover = rect();
        ASSERT_EQ(fraction(target, covers), pointByPoint(target, covers)) << "round " << round;
    }
}

}  // namespace
}  // namespace ashview
