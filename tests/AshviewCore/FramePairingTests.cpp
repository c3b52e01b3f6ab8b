#include "AshviewCore/Reading/FramePairing.h"

#include <gtest/gtest.h>

namespace ashview {
namespace {

using Pairs = std::vector<std::optional<std::size_t>>;
constexpr auto none = std::nullopt;

TEST(FramePairing, MatchesByGeometryWithinOnePointInclusive) {
    Rect script{100, 200, 800, 600};
    EXPECT_EQ(FramePairing::pair({}, {script}, {0}), Pairs{});
    EXPECT_EQ(FramePairing::pair({script, script}, {}, {0, 1}), (Pairs{none, none}));
    // Exactly 1.0 off in every measure pairs; a hair beyond in any one does not.
    EXPECT_EQ(FramePairing::pair({script}, {Rect{101, 199, 801, 599}}, {}), Pairs{0u});
    for (Rect off : {Rect{101.0000001, 200, 800, 600}, Rect{100, 201.0000001, 800, 600},
                     Rect{100, 200, 801.0000001, 600}, Rect{100, 200, 800, 598.9999999}}) {
        EXPECT_EQ(FramePairing::pair({script}, {off}, {}), Pairs{none});
    }
    // Measures are of the standardized rectangle.
    EXPECT_EQ(FramePairing::pair({script}, {Rect{900, 800, -800, -600}}, {}), Pairs{0u});
    // Two windows of one size in one place: in list order, none twice.
    EXPECT_EQ(FramePairing::pair({script, script, script}, {script, script}, {}), (Pairs{0u, 1u, none}));
}

TEST(FramePairing, EarlierPairingsComeFirstAndIgnoreGeometry) {
    Rect moved{500, 500, 300, 300};
    Rect a{0, 0, 100, 100};
    // Frame 0 moved away from its window 1 but keeps it; frame 1 then fits
    // window 0 by geometry although window 1 would fit it as well.
    EXPECT_EQ(FramePairing::pair({moved, a}, {a, a}, {1}), (Pairs{1u, 0u}));
    // A taken index leaves the second pass even when it fits another frame
    // better; the displaced frame stays without a window.
    EXPECT_EQ(FramePairing::pair({a, moved}, {a}, {none, 0}), (Pairs{none, 0u}));
    // Out of range, negative, or already taken by a lower frame: ignored,
    // and that frame goes through the geometric pass.
    EXPECT_EQ(FramePairing::pair({a, a, a}, {a, a}, {-1, 2, none}), (Pairs{0u, 1u, none}));
    EXPECT_EQ(FramePairing::pair({moved, a}, {a, a}, {0, 0}), (Pairs{0u, 1u}));
    // A longer previous list is cut to the frames; a shorter one leaves the
    // rest to geometry.
    EXPECT_EQ(FramePairing::pair({moved}, {a, a}, {1, 0, 0}), Pairs{1u});
    EXPECT_EQ(FramePairing::pair({moved, a}, {a, a}, {1}), (Pairs{1u, 0u}));
}

}  // namespace
}  // namespace ashview
