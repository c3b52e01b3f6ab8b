#include "AshviewOverlay/GrayOverlay.h"
#include "Platform/Sim/SimDesktop.h"

#include <gmock/gmock.h>

namespace ashview {
namespace {

std::vector<std::string> withoutGroupNames(std::vector<std::string> journal) {
    for (std::string& line : journal) {
        std::string::size_type at = line.find("\"groupName\" \"ashview-");
        if (at != std::string::npos) line = line.substr(0, at) + "\"groupName\" \"ashview-…\"";
    }
    return journal;
}

TEST(GrayOverlay, MakesTheWindowStepByStepInTheRequiredOrder) {
    SimDesktop desktop;
    GrayOverlay gray(desktop.overlayWindows());
    auto window = gray.make(Rect{10, 20, 320, 240});
    std::string w = "window " + std::to_string(window->windowNumber());
    EXPECT_EQ(withoutGroupNames(desktop.overlayJournal()),
              (std::vector<std::string>{
                  "hasBackdropClass true", "makeSaturateFilter filter 1", "filter 1 setValue \"inputAmount\" 0.0",
                  "makeWindow (10.0, 20.0, 320.0, 240.0) style 0 backing 2 defer false -> " + w,
                  w + " setReleasedWhenClosed false", w + " setOpaque false",
                  w + " setBackgroundColor white 1.0 alpha 0.001", w + " setHasShadow false",
                  w + " setIgnoresMouseEvents true", w + " setAnimationBehavior 2", w + " setCollectionBehavior 337",
                  "makeView (0.0, 0.0, 320.0, 240.0) -> view 1", "view 1 setWantsLayer true",
                  "view 1 setLayerUsesCoreImageFilters false", "makeBackdropLayer backdrop 1",
                  "backdrop 1 setFrame (0.0, 0.0, 320.0, 240.0)", "backdrop 1 setAutoresizingMask 18",
                  "backdrop 1 setValue \"windowServerAware\" true", "backdrop 1 setValue \"groupName\" \"ashview-…\"",
                  "backdrop 1 setValue \"scale\" 1.0", "makeSaturateFilter filter 2",
                  "filter 2 setValue \"inputAmount\" 0.0", "backdrop 1 setFilters [filter 2]",
                  "layer 1 addSublayer backdrop 1", w + " setContentView view 1",
                  w + " setValue \"shouldAutoFlattenLayerTree\" false",
                  w + " setValue \"canHostLayersInWindowServer\" false",
                  w + " setValue \"canHostLayersInWindowServer\" true"}));

    std::vector<SimOverlay> overlays = desktop.overlays();
    ASSERT_EQ(overlays.size(), 1u);
    EXPECT_FALSE(overlays[0].isOrderedIn) << "made, not shown";
    EXPECT_TRUE(overlays[0].desaturates);
    EXPECT_EQ(overlays[0].frame, (Rect{10, 20, 320, 240}));

    // Each rearm writes all three hosting values again.
    desktop.clearOverlayJournal();
    gray.rearm(*window);
    gray.rearm(*window);
    const std::vector<std::string> once{w + " setValue \"shouldAutoFlattenLayerTree\" false",
                                        w + " setValue \"canHostLayersInWindowServer\" false",
                                        w + " setValue \"canHostLayersInWindowServer\" true"};
    std::vector<std::string> twice = once;
    twice.insert(twice.end(), once.begin(), once.end());
    EXPECT_EQ(desktop.overlayJournal(), twice);
}

TEST(GrayOverlay, EachOverlayHasAGroupOfItsOwnAndLetsClicksThrough) {
    SimDesktop desktop;
    std::int64_t below = desktop.openWindow(SimWindowSetup{501, "Safari", Rect{0, 0, 800, 900}});
    GrayOverlay gray(desktop.overlayWindows());
    auto first = gray.make(Rect{0, 0, 800, 900});
    auto second = gray.make(Rect{0, 0, 800, 900});
    first->orderWindow(WindowOrderingMode::above, below);
    std::vector<SimOverlay> overlays = desktop.overlays();
    ASSERT_EQ(overlays.size(), 2u);
    ASSERT_TRUE(overlays[0].groupName && overlays[1].groupName);
    EXPECT_EQ(overlays[0].groupName->rfind("ashview-", 0), 0u);
    EXPECT_EQ(overlays[0].groupName->size(), std::string("ashview-").size() + 36);
    EXPECT_NE(overlays[0].groupName, overlays[1].groupName);

    EXPECT_EQ(desktop.overlayAbove(below), first->windowNumber());
    EXPECT_EQ(desktop.windowAt(Point{400, 450}), below) << "a click goes through the overlay";

    second.reset();
    EXPECT_EQ(desktop.overlays().size(), 1u) << "a dropped overlay is gone";
    EXPECT_EQ(std::count(desktop.overlayJournal().begin(), desktop.overlayJournal().end(), "hasBackdropClass true"), 1)
        << "the compositor is asked once";
}

// Without the compositor's pieces the controller places no overlay at all
// (checked with the read pass); here the one piece that fails per window.
TEST(GrayOverlay, ABackdropThatCannotBeMadeLeavesThatWindowWithoutOne) {
    // The class exists but makes no object: available, yet this one window
    // gets no backdrop.
    SimDesktop desktop;
    desktop.setBackdropInitFails();
    GrayOverlay gray(desktop.overlayWindows());
    EXPECT_TRUE(gray.isAvailable());
    gray.make(Rect{0, 0, 100, 100});
    using namespace ::testing;
    EXPECT_THAT(desktop.overlayJournal(),
                AllOf(Contains("makeBackdropLayer nothing"), Each(Not(StartsWith("backdrop")))));
}

}  // namespace
}  // namespace ashview
