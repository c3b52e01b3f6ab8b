#include "Platform/Sim/SimDesktop.h"

#include <gtest/gtest.h>

namespace ashview {
namespace {

using Numbers = std::vector<std::int64_t>;

SimWindowSetup app(Rect bounds, std::int64_t layer = 0) { return SimWindowSetup{501, "Safari", bounds, layer}; }

TEST(SimDesktop, StacksByLayerThenByOrderWithOverlaysAmongThem) {
    SimDesktop desktop;
    std::int64_t a = desktop.openWindow(app(Rect{0, 0, 100, 100}));
    std::int64_t dock = desktop.openWindow(app(Rect{0, 850, 1440, 50}, 20));
    std::int64_t b = desktop.openWindow(app(Rect{0, 0, 100, 100}));
    std::int64_t c = desktop.openWindow(app(Rect{0, 0, 100, 100}));
    EXPECT_EQ(desktop.onScreenStack(), (Numbers{dock, c, b, a}));
    desktop.orderRelative(c, false, a);
    EXPECT_EQ(desktop.onScreenStack(), (Numbers{dock, b, a, c}));

    auto overlay = desktop.overlayWindows().makeWindow(Rect{0, 800, 100, 100}, 0, 2, false);
    std::int64_t o = overlay->windowNumber();
    EXPECT_EQ(desktop.onScreenStack(), (Numbers{dock, b, a, c})) << "a new overlay is not on screen";
    overlay->orderWindow(WindowOrderingMode::above, a);
    EXPECT_EQ(desktop.onScreenStack(), (Numbers{dock, b, o, a, c}));
    EXPECT_EQ(desktop.overlayAbove(a), o);
    EXPECT_EQ(desktop.overlays()[0].directlyAbove, a);
    EXPECT_EQ(desktop.window(o)->bounds, (Rect{0, 0, 100, 100})) << "Cocoa frame seen in Quartz bounds";

    desktop.orderRelative(c, true, a);  // slips in between overlay and target
    EXPECT_EQ(desktop.overlayAbove(a), std::nullopt);
    overlay->orderWindow(WindowOrderingMode::below, c);
    EXPECT_EQ(desktop.onScreenStack(), (Numbers{dock, b, c, o, a}));
    overlay->orderWindow(WindowOrderingMode::above, 424242);  // no such window: to the front of its layer
    EXPECT_EQ(desktop.onScreenStack(), (Numbers{dock, o, b, c, a}));
    overlay->orderOut();
    EXPECT_EQ(desktop.onScreenStack(), (Numbers{dock, b, c, a}));
    EXPECT_EQ(desktop.counts().orderWindowCalls, 3u);

    desktop.setDisplays({Rect{0, 0, 1440, 1000}});
    EXPECT_EQ(desktop.window(o)->bounds, (Rect{0, 100, 100, 100})) << "the flip follows the primary display";
    overlay.reset();
    EXPECT_EQ(desktop.window(o), std::nullopt);
}

TEST(SimDesktop, EveryChangeShowsInTheNextListOfEveryKind) {
    // The desktop remembers its sorted stacks between questions; after each
    // kind of change, all four kinds of list must already show it.
    SimDesktop desktop;
    std::int64_t picture = desktop.openWindow(
        SimWindowSetup{1, "Dock", Rect{0, 0, 1440, 900}, -2147483624, 1.0, true, true});
    auto numbers = [&](std::uint32_t options) {
        Numbers result;
        RawWindowList list = desktop.windowServer().copyWindowInfo(options, 0);
        for (const auto& entry : *list) result.push_back(*entry->number);
        return result;
    };
    auto expectStacks = [&](const char* step, Numbers all, Numbers onScreen) {
        SCOPED_TRACE(step);
        auto withoutPicture = [&](Numbers list) {
            std::erase(list, picture);
            return list;
        };
        EXPECT_EQ(numbers(0), all);
        EXPECT_EQ(numbers(WindowServer::excludeDesktopElements), withoutPicture(all));
        EXPECT_EQ(numbers(WindowServer::onScreenOnly), onScreen);
        EXPECT_EQ(numbers(WindowServer::onScreenOnly | WindowServer::excludeDesktopElements), withoutPicture(onScreen));
        EXPECT_EQ(desktop.onScreenStack(), onScreen);
    };
    std::int64_t a = desktop.openWindow(app(Rect{0, 0, 100, 100}));
    expectStacks("open", {a, picture}, {a, picture});
    std::int64_t b = desktop.openWindow(app(Rect{0, 0, 100, 100}));
    expectStacks("open another", {b, a, picture}, {b, a, picture});
    desktop.minimise(a);
    expectStacks("minimise", {b, a, picture}, {b, picture});
    desktop.restore(a);
    expectStacks("restore", {a, b, picture}, {a, b, picture});
    desktop.setLayer(b, 3);
    expectStacks("raise the layer", {b, a, picture}, {b, a, picture});
    desktop.setOnScreen(b, false);
    expectStacks("off screen", {b, a, picture}, {a, picture});
    desktop.setOnScreen(b, true);
    desktop.setLayer(b, 0);
    expectStacks("back", {a, b, picture}, {a, b, picture});
    auto overlay = desktop.overlayWindows().makeWindow(Rect{0, 800, 100, 100}, 0, 2, false);
    std::int64_t o = overlay->windowNumber();
    expectStacks("make an overlay", {o, a, b, picture}, {a, b, picture});
    overlay->orderWindow(WindowOrderingMode::above, b);
    expectStacks("order it in", {a, o, b, picture}, {a, o, b, picture});
    desktop.closeWindow(a);
    expectStacks("close", {o, b, picture}, {o, b, picture});
    overlay->orderOut();
    expectStacks("order it out", {o, b, picture}, {b, picture});
    overlay.reset();
    expectStacks("release it", {b, picture}, {b, picture});
}

}  // namespace
}  // namespace ashview
