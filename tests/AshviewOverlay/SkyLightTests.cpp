#include "AshviewOverlay/SkyLight.h"
#include "Platform/Sim/SimDesktop.h"

#include <gtest/gtest.h>

namespace ashview {
namespace {

std::vector<SimEvent> heard;

void listen(std::uint32_t event, void* data, std::size_t, void*) {
    if (auto window = SkyLight::windowNumber(data)) heard.push_back(SimEvent{event, *window});
}

class SkyLightTest : public ::testing::Test {
protected:
    void SetUp() override { heard.clear(); }

    std::int64_t open(Rect bounds) { return desktop.openWindow(SimWindowSetup{501, "Safari", bounds}); }

    SimDesktop desktop;
};

TEST_F(SkyLightTest, EventsComeOnlyForTheWindowsLastAskedFor) {
    SkyLight sky(desktop.windowServer());
    ASSERT_TRUE(sky.isAvailable());
    for (std::uint32_t event : {SkyLight::windowClosed, SkyLight::windowMoved, SkyLight::windowResized,
                                SkyLight::windowReordered, SkyLight::windowHidden})
        EXPECT_EQ(sky.onEvent(event, listen), 0);
    std::int64_t watched = open(Rect{0, 0, 100, 100});
    std::int64_t ignored = open(Rect{0, 0, 100, 100});
    std::int64_t later = open(Rect{0, 0, 100, 100});

    EXPECT_EQ(sky.requestEvents({watched, ignored}), 0);
    EXPECT_EQ(sky.requestEvents({watched, later}), 0);  // replaces, does not add
    desktop.moveBy(ignored, 5, 5);
    desktop.setBounds(watched, Rect{10, 10, 200, 100});
    desktop.setBounds(watched, Rect{10, 10, 200, 100});  // no change: no event
    desktop.moveBy(watched, 0, 0);
    desktop.setBounds(later, Rect{0, 0, 150, 100});  // size only
    desktop.bringToFront(later);
    desktop.minimise(watched);
    desktop.restore(watched);
    desktop.setOnScreen(later, false);  // a Space change tells nothing
    desktop.closeWindow(later);
    auto w = static_cast<std::uint32_t>(watched);
    auto l = static_cast<std::uint32_t>(later);
    EXPECT_EQ(heard,
              (std::vector<SimEvent>{{806, w}, {807, w}, {807, l}, {808, l}, {816, w}, {808, w}, {804, l}}));
    EXPECT_EQ(desktop.deliveredEvents(), heard);

    EXPECT_EQ(sky.requestEvents({}), 0);
    desktop.moveBy(watched, 1, 1);
    EXPECT_EQ(heard.size(), 7u) << "an empty request stops all events";
    EXPECT_EQ(desktop.counts().connections, 1u) << "the connection is taken once and kept";
}

TEST_F(SkyLightTest, BoundsAreTheWindowServersOwnInQuartzCoordinates) {
    SkyLight sky(desktop.windowServer());
    std::int64_t window = open(Rect{10, -600, 300, 200});  // on a display above the primary one
    EXPECT_EQ(sky.bounds(window), (Rect{10, -600, 300, 200}));
    desktop.setOnScreen(window, false);
    EXPECT_EQ(sky.bounds(window), (Rect{10, -600, 300, 200})) << "off-screen windows still have bounds";
    EXPECT_EQ(sky.bounds(99999), std::nullopt) << "a failing status gives nothing";
    EXPECT_EQ(sky.bounds(0xFFFFFFFFLL), std::nullopt);
}

TEST_F(SkyLightTest, OneMissingEntryPointMakesTheWholeSetUnavailable) {
    for (SkyLightEntry missing : {SkyLightEntry::mainConnectionID, SkyLightEntry::getWindowBounds,
                                  SkyLightEntry::registerNotifyProc, SkyLightEntry::requestNotificationsForWindows}) {
        SimDesktop partial;
        partial.setEntryPointMissing(missing);
        std::int64_t window = partial.openWindow(SimWindowSetup{501, "Safari", Rect{0, 0, 100, 100}});
        SkyLight sky(partial.windowServer());
        EXPECT_FALSE(sky.isAvailable());
        EXPECT_EQ(sky.bounds(window), std::nullopt);
        EXPECT_EQ(sky.onEvent(SkyLight::windowMoved, listen), SkyLight::missingStatus);
        EXPECT_EQ(sky.requestEvents({window}), SkyLight::missingStatus);
        const SimCallCounts& counts = partial.counts();
        EXPECT_EQ(counts.connections + counts.boundsLookups + counts.registrations + counts.requests, 0u)
            << "no private call is made on an incomplete set";
        EXPECT_THROW(partial.setEntryPointMissing(missing, false), std::logic_error);
    }
    SimDesktop bare;
    bare.setSkyLightMissing();
    EXPECT_FALSE(SkyLight(bare.windowServer()).isAvailable());
}

TEST_F(SkyLightTest, EventDataIsReadOnlyBehindARealPointer) {
    SkyLight sky(desktop.windowServer());
    sky.onEvent(SkyLight::windowClosed, listen);
    desktop.postRawEvent(SkyLight::windowClosed, nullptr);
    std::uint32_t number = 0xFFFFFFF0u;
    desktop.postRawEvent(SkyLight::windowClosed, &number);
    EXPECT_EQ(heard, (std::vector<SimEvent>{{804, 0xFFFFFFF0u}}));
}

using SkyLightDeathTest = SkyLightTest;

TEST_F(SkyLightDeathTest, WindowNumbersBeyondThirtyTwoBitsStopTheProcess) {
    SkyLight sky(desktop.windowServer());
    EXPECT_DEATH(sky.bounds(-1), "does not fit 32 unsigned bits");
    EXPECT_DEATH(sky.requestEvents({5, std::int64_t{1} << 32}), "does not fit 32 unsigned bits");
}

}  // namespace
}  // namespace ashview
