#include "AshviewOverlay/Geometry.h"
#include "AshviewOverlay/GrayOverlay.h"
#include "AshviewOverlay/WindowList.h"
#include "Platform/Sim/SimDesktop.h"

#include <gtest/gtest.h>

namespace ashview {
namespace {

constexpr std::int32_t safari = 501;
constexpr std::int32_t mail = 502;

class WindowListTest : public ::testing::Test {
protected:
    WindowListTest() { desktop.setDisplays({Rect{0, 0, 1440, 1000}}); }

    std::int64_t open(std::int32_t pid, std::string name, Rect bounds, std::int64_t layer = 0) {
        return desktop.openWindow(SimWindowSetup{pid, std::move(name), bounds, layer});
    }

    SimDesktop desktop;
    WindowList list{desktop.windowServer()};
};

TEST(Geometry, FlipsAroundThePrimaryDisplayReadAtEachCall) {
    SimDesktop desktop;
    Geometry geometry(desktop.windowServer());
    desktop.setDisplays({Rect{0, 0, 1600, 1000}, Rect{0, -900, 1440, 900}});
    Rect quartz{10, 20, 100, 50};
    EXPECT_EQ(geometry.cocoa(quartz), (Rect{10, 930, 100, 50}));
    EXPECT_EQ(geometry.quartz(geometry.cocoa(quartz)), quartz);
    // A window on the display above the primary one.
    EXPECT_EQ(geometry.cocoa(Rect{10, -600, 100, 50}), (Rect{10, 1550, 100, 50}));
    desktop.setDisplays({Rect{0, 0, 1280, 800}});
    EXPECT_EQ(geometry.cocoa(quartz), (Rect{10, 730, 100, 50}));
    desktop.setDisplays({});
    EXPECT_EQ(geometry.cocoa(quartz), (Rect{10, -70, 100, 50}));
}

TEST_F(WindowListTest, WindowsOfAProcessComeOnScreenFirstAndNeverTwice) {
    std::int64_t hidden = open(safari, "Safari", Rect{0, 0, 300, 200});
    std::int64_t front = open(safari, "Safari", Rect{10, 20, 100, 50});
    std::int64_t elsewhere = open(safari, "Safari", Rect{0, 0, 400, 400});
    open(safari, "Safari", Rect{0, 0, 1440, 24}, 25);
    open(mail, "Mail", Rect{0, 0, 500, 500});
    desktop.minimise(hidden);
    desktop.setOnScreen(elsewhere, false);  // on another Space
    desktop.bringToFront(front);

    std::vector<ForeignWindow> windows = list.windows(safari);
    EXPECT_EQ(windows, (std::vector<ForeignWindow>{
                           {front, Rect{10, 930, 100, 50}, true},
                           {elsewhere, Rect{0, 600, 400, 400}, false},
                           {hidden, Rect{0, 800, 300, 200}, false},
                       }));
    EXPECT_EQ(list.windows(std::string("Safari")), (std::vector<ForeignWindow>{{front, Rect{10, 930, 100, 50}, true}}));
    EXPECT_TRUE(list.windows(std::string("safari")).empty()) << "owner names match exactly";
    EXPECT_TRUE(list.windows(std::int32_t{999}).empty());
}

TEST_F(WindowListTest, TheStackHoldsEveryLayerAndOurOwnWindows) {
    std::int64_t browser = open(safari, "Safari", Rect{0, 0, 800, 600});
    std::int64_t menuBar = open(0, "Window Server", Rect{0, 0, 1440, 24}, 25);
    GrayOverlay gray(desktop.overlayWindows());
    auto overlay = gray.make(Rect{0, 400, 800, 600});
    overlay->orderWindow(WindowOrderingMode::above, browser);

    std::vector<StackedWindow> stack = list.stack();
    ASSERT_EQ(stack.size(), 3u);
    EXPECT_EQ(stack[0], (StackedWindow{menuBar, 0, 25, 1.0, Rect{0, 0, 1440, 24}}));
    EXPECT_EQ(stack[1], (StackedWindow{overlay->windowNumber(), SimDesktop::defaultProcessIdentifier, 0, 1.0,
                                       Rect{0, 0, 800, 600}}));
    EXPECT_EQ(stack[2].number, browser);
    EXPECT_TRUE(list.windows(std::int32_t{0}).empty()) << "the menu bar is no normal window";
}

TEST_F(WindowListTest, UnreadableEntriesAreLeftOutAndUnreadableListsAreEmpty) {
    std::int64_t n[6];
    for (std::int64_t& number : n) number = open(safari, "Safari", Rect{0, 0, 100, 100});
    const std::int64_t a = n[0], b = n[1], c = n[2], d = n[3], e = n[4], f = n[5];
    // Stack, front to back: f e d c b a. Damage five entries in five ways.
    desktop.setListTamper([&](std::uint32_t, RawWindowList& raw) {
        for (auto& entry : *raw) {
            if (entry->number == f) entry->number = -f;  // no window number of the window server
            if (entry->number == e) entry->alpha.reset();
            if (entry->number == d) entry->layer.reset();
            if (entry->number == c) entry->bounds.reset();
            if (entry->number == b) entry->ownerPID = std::int64_t{1} << 40;
        }
    });
    std::vector<StackedWindow> stack = list.stack();
    ASSERT_EQ(stack.size(), 2u);
    EXPECT_EQ(stack[0].number, e);
    EXPECT_EQ(stack[0].alpha, 1.0) << "a missing alpha reads as opaque";
    EXPECT_EQ(stack[1].number, a);
    std::vector<ForeignWindow> normal = list.windows(safari);
    ASSERT_EQ(normal.size(), 2u) << "d has no layer, c no bounds, b another (unreadable) owner";
    EXPECT_EQ(normal[0].number, e);
    EXPECT_EQ(normal[1].number, a);

    desktop.setListTamper([&](std::uint32_t, RawWindowList& raw) { raw->insert(raw->begin() + 2, std::nullopt); });
    EXPECT_TRUE(list.onScreen().empty()) << "a list with a non-dictionary in it is not trusted at all";
    EXPECT_TRUE(list.stack().empty());
    desktop.setListTamper([](std::uint32_t, RawWindowList& raw) { raw.reset(); });
    EXPECT_TRUE(list.windows(safari).empty());
    EXPECT_EQ(list.positions({a, b}), (std::vector<int>{-1, -1}));
}

TEST_F(WindowListTest, PositionsFollowTheInputAndSkipEntriesWithoutNumber) {
    std::int64_t back = open(safari, "Safari", Rect{0, 0, 100, 100});
    std::int64_t middle = open(mail, "Mail", Rect{0, 0, 100, 100});
    std::int64_t front = open(safari, "Safari", Rect{0, 0, 100, 100});
    std::int64_t gone = open(safari, "Safari", Rect{0, 0, 100, 100});
    desktop.minimise(gone);

    EXPECT_EQ(list.positions({back, 12345, front, back, gone}), (std::vector<int>{2, -1, 0, 2, -1}));
    std::size_t lists = desktop.counts().windowLists;
    EXPECT_TRUE(list.positions({}).empty());
    EXPECT_EQ(desktop.counts().windowLists, lists) << "an empty question needs no list";

    desktop.setListTamper([&](std::uint32_t, RawWindowList& raw) {
        for (auto& entry : *raw)
            if (entry->number == front) entry->number.reset();
    });
    EXPECT_EQ(list.positions({middle, back}), (std::vector<int>{0, 1}));
}

}  // namespace
}  // namespace ashview
