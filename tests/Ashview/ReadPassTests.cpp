#include "ControllerFixture.h"

#include <gmock/gmock.h>

namespace ashview {
namespace {

using Lines = std::vector<std::string>;
using ::testing::Contains;
using ::testing::Each;
using ::testing::HasSubstr;
using ::testing::Not;

std::string backToColor(std::int64_t window, const std::string& reason) {
    return "window " + std::to_string(window) + " back to color: " + reason;
}

TEST_F(ControllerTest, ASitePastItsLimitGoesGrayAndTheOverlayFollowsItsWindow) {
    start();
    listSite("news.example", 1);
    takeLines();
    std::int64_t news = open("news.example", Rect{100, 100, 800, 600});

    // The backup timer keeps the passes coming while the user reads.
    advance(55);
    EXPECT_TRUE(desktop.overlays().empty()) << "still within the minute";
    advance(10);
    Lines lines = takeLines();
    ASSERT_FALSE(lines.empty());
    EXPECT_EQ(lines.front(), "Google Chrome is open");
    EXPECT_EQ(lines.back(), "graying window " + std::to_string(news));
    ASSERT_EQ(desktop.overlays().size(), 1u);
    EXPECT_EQ(desktop.overlays()[0].directlyAbove, news);

    // Dragged and brought behind another window and forward again: the
    // overlay follows by events alone, with no pass and no window list.
    std::size_t readsBefore = reads();
    std::size_t listsBefore = desktop.counts().windowLists;
    desktop.moveBy(news, 40, 30);
    openOther(Rect{0, 0, 300, 300});
    desktop.bringToFront(news);
    EXPECT_EQ(reads(), readsBefore);
    EXPECT_EQ(desktop.counts().windowLists, listsBefore);
    EXPECT_FALSE(controller->isReadScheduled());
    SimOverlay overlay = desktop.overlays()[0];
    EXPECT_EQ(overlay.directlyAbove, news);
    EXPECT_EQ(overlay.frame, (Rect{140, 900 - 130 - 600, 800, 600}));

    // A pass that finds the overlay already in place sends nothing to it.
    std::size_t framesBefore = desktop.counts().setFrameCalls;
    std::size_t ordersBefore = desktop.counts().orderWindowCalls;
    advance(5);
    EXPECT_EQ(desktop.counts().setFrameCalls, framesBefore);
    EXPECT_EQ(desktop.counts().orderWindowCalls, ordersBefore);

    desktop.closeWindow(news);
    EXPECT_EQ(takeLines(), (Lines{backToColor(news, "its window closed")}));
    EXPECT_TRUE(desktop.overlays().empty());
    EXPECT_TRUE(controller->isReadScheduled());
}

TEST_F(ControllerTest, EachWayOfLeavingGrayIsLoggedWithItsReason) {
    start();
    listSite("news.example");
    listSite("mail.example");
    std::int64_t hidden = open("news.example", Rect{0, 0, 400, 400});
    std::int64_t spaced = open("news.example", Rect{500, 0, 400, 400});
    std::int64_t retabbed = open("news.example", Rect{0, 450, 400, 400});
    std::int64_t pinned = open("mail.example", Rect{500, 450, 400, 400});
    controller->read();
    ASSERT_EQ(controller->grayedWindows().size(), 4u);
    takeLines();

    desktop.minimise(hidden);
    EXPECT_EQ(takeLines(), (Lines{backToColor(hidden, "its window was hidden")}));

    apps.showAddress(retabbed, "https://elsewhere.example/");
    desktop.clearOverlayJournal();
    desktop.switchSpace({spaced}, {});  // the window stays on the Space left
    EXPECT_THAT(desktop.overlayJournal(), Contains(HasSubstr("canHostLayersInWindowServer")))
        << "the overlays are rearmed on a Space change";
    advance(0.15);
    EXPECT_EQ(takeLines(), (Lines{"Google Chrome reported AXTitleChanged", "Space changed",
                                  backToColor(spaced, "its window is not on screen"),
                                  backToColor(retabbed, "its visible tab is not a listed site")}));

    controller->setPin(SitePin::showInColor, *controller->rules().site("mail.example"));
    EXPECT_EQ(takeLines(), (Lines{"site set to showInColor", backToColor(pinned, "its rule says color")}));
    EXPECT_TRUE(controller->grayedWindows().empty());

    controller->setPin(SitePin::followSettings, *controller->rules().site("mail.example"));
    takeLines();
    controller->showInColor(5);
    EXPECT_EQ(takeLines(), (Lines{"show in color for 5 minutes", backToColor(pinned, "showing in color for now")}));
}

TEST_F(ControllerTest, ABurstOfRequestsGivesOnePass) {
    start();
    open("news.example", Rect{0, 0, 400, 400});
    advance(0);
    for (int i = 0; i < 40; ++i) {
        apps.postAccessibility(chromePID, "AXTitleChanged", "AXWindow");
        advance(0.003);  // all forty inside 0.12 s
    }
    EXPECT_EQ(reads(), 0u);
    advance(0.15 - 0.12 - 0.0001);
    EXPECT_EQ(reads(), 0u) << "a later request does not move the pass";
    advance(0.0001);
    EXPECT_EQ(reads(), 1u);
    EXPECT_EQ(fullPasses, 1);

    // The timer fires while a pass is queued: still one pass.
    apps.postAccessibility(chromePID, "AXTitleChanged", "AXWindow");
    advance(5.0 - 0.15);
    EXPECT_EQ(reads(), 2u);
    advance(0.2);
    EXPECT_EQ(reads(), 2u) << "the timer found the delayed pass queued";
}

TEST_F(ControllerTest, WithNothingToReadThereIsNoTimerAndNoWakeUp) {
    // A running app that is not listed, and a listed site and app not open.
    apps.openWindow(apps.launchApp("com.example.Other", "Other"), Rect{0, 0, 400, 400});
    start();
    RuleSet rules = controller->rules();
    rules.addSite("news.example");
    rules.addApp("com.example.Game", "Game");
    controller->rulesChangedInSettings(rules);
    advance(1);
    takeLines();
    std::size_t queued = desktop.clock().queuedCount();
    std::size_t fired = desktop.clock().firedCount();
    workspace.post(SystemNotification::activeSpaceDidChange);
    advance(24 * 3600.0);
    EXPECT_EQ(desktop.clock().firedCount(), fired + 1) << "the delayed pass ran, and nothing else";
    EXPECT_EQ(desktop.clock().queuedCount(), queued + 1) << "only the one delayed pass";
    EXPECT_EQ(desktop.clock().pendingCount(), 0u);
    EXPECT_FALSE(controller->hasBackupTimer());
    EXPECT_EQ(fullPasses, 0) << "an early end tells no one";
    EXPECT_FALSE(std::filesystem::exists(snapshotFile())) << "and saves nothing";
    EXPECT_EQ(takeLines(), (Lines{"Space changed"}));
}

TEST_F(ControllerTest, ARefusingBrowserKeepsTheTimer) {
    start();
    listSite("news.example");
    std::int64_t news = open("news.example", Rect{0, 0, 400, 400});
    advance(0.15);
    ASSERT_EQ(controller->grayedWindows().size(), 1u);
    takeLines();
    apps.setScriptBehaviour(chrome, SimScriptBehaviour::refuse);
    controller->read();
    EXPECT_EQ(takeLines(), (Lines{backToColor(news, "control of a browser is not allowed")}));
    std::size_t readsBefore = reads();
    advance(20.2);
    EXPECT_TRUE(controller->hasBackupTimer());
    EXPECT_EQ(reads(), readsBefore + 4);
}

TEST_F(ControllerTest, TheLastListedAppQuittingTakesOneMorePassToClearItsWindows) {
    start();
    RuleSet rules = controller->rules();
    rules.newSiteDefaults.trigger = GrayTrigger::rightAway();
    rules.addApp("com.example.Game", "Game");
    controller->rulesChangedInSettings(rules);
    EXPECT_EQ(appMonitor.rules(), controller->rules()) << "the apps judge by the live rules";
    std::int64_t game = openGame(Rect{0, 0, 600, 400});
    controller->read();
    EXPECT_EQ(desktop.overlays().at(0).directlyAbove, game);
    EXPECT_TRUE(controller->hasBackupTimer());
    takeLines();

    int passes = fullPasses;
    apps.quit(gamePID);
    advance(0.15);
    EXPECT_EQ(takeLines(), (Lines{backToColor(game, "its window closed"), "a listed app quit"}));
    EXPECT_EQ(fullPasses, passes + 1) << "one more full pass empties the app windows";
    EXPECT_FALSE(controller->hasBackupTimer());
    controller->read();
    EXPECT_EQ(fullPasses, passes + 1) << "the next pass ends early";
}

class WithoutGraying : public ControllerTest, public ::testing::WithParamInterface<int> {};

TEST_P(WithoutGraying, NoOverlayIsEverPlacedAndEverythingElseRuns) {
    // SkyLight's own tests pin that each of its entry points is needed; one
    // stands for all here.
    switch (GetParam()) {
        case 0: desktop.setBackdropClassMissing(); break;
        case 1: desktop.setSaturateFilterMissing(); break;
        case 2: desktop.setEntryPointMissing(SkyLightEntry::requestNotificationsForWindows); break;
    }
    start();
    EXPECT_FALSE(controller->isGrayingAvailable());
    EXPECT_EQ(takeLines(), (Lines{"graying is not available on this macOS version"}));
    listSite("news.example", 1);
    open("news.example", Rect{0, 0, 400, 400});
    controller->read();
    advance(120);
    EXPECT_TRUE(controller->tracker().sightings().at(0).gray) << "the site still turns gray for the tracker";
    EXPECT_EQ(desktop.counts().overlaysMade, 0u);
    EXPECT_TRUE(desktop.overlays().empty());
    EXPECT_GT(fullPasses, 20);
    EXPECT_TRUE(std::filesystem::exists(snapshotFile()));
    EXPECT_TRUE(std::filesystem::exists(historyFile()));
    const UsageHistory& history = controller->usage().recorder().history();
    ASSERT_EQ(history.days.size(), 1u);
    EXPECT_GE(history.days.begin()->second.sites.at("news.example").seconds, 115.0);
    EXPECT_THAT(takeLines(), Each(Not(HasSubstr("graying window"))));
}

INSTANTIATE_TEST_SUITE_P(EachMissingPiece, WithoutGraying, ::testing::Range(0, 3));

TEST_F(ControllerTest, WindowEventsAskLittleAndAnOverlayNotDirectlyAboveStaysWhereItIs) {
    start();
    listSite("news.example");
    std::int64_t plain = open("elsewhere.example", Rect{0, 0, 300, 300});
    std::int64_t news = open("news.example", Rect{400, 0, 300, 300});
    advance(0.15);
    takeLines();

    desktop.postRawEvent(SkyLight::windowClosed, nullptr);
    EXPECT_FALSE(controller->isReadScheduled()) << "no data, nothing done";

    std::size_t lookups = desktop.counts().boundsLookups;
    desktop.moveBy(plain, 10, 10);
    EXPECT_EQ(desktop.counts().boundsLookups, lookups) << "no overlay: the move is ignored";
    desktop.bringToFront(news);
    EXPECT_EQ(desktop.counts().boundsLookups, lookups) << "a reorder never reads the frame";
    EXPECT_EQ(desktop.overlays().at(0).directlyAbove, news);
    EXPECT_FALSE(controller->isReadScheduled());

    desktop.closeWindow(plain);
    EXPECT_TRUE(takeLines().empty());
    EXPECT_TRUE(controller->isReadScheduled()) << "a window of the pass went: a pass follows";
    advance(0.15);

    // Another window slips in between the overlay and its target: the
    // overlay is still in front of it and is left where it is.
    std::int64_t overlay = desktop.overlays().at(0).number;
    std::int64_t between = openOther(Rect{700, 0, 100, 100});
    desktop.orderRelative(between, true, news);
    ASSERT_NE(desktop.overlays().at(0).directlyAbove, news);
    std::size_t orders = desktop.counts().orderWindowCalls;
    controller->read();
    EXPECT_EQ(desktop.counts().orderWindowCalls, orders);

    // After a Space change the window server no longer lists the overlay:
    // the next pass orders it in again.
    desktop.setListTamper([overlay](std::uint32_t, RawWindowList& list) {
        if (!list) return;
        std::erase_if(*list, [&](const std::optional<WindowInfo>& entry) { return entry && entry->number == overlay; });
    });
    workspace.post(SystemNotification::activeSpaceDidChange);
    advance(0.15);
    EXPECT_EQ(desktop.counts().orderWindowCalls, orders + 1);
    desktop.setListTamper(nullptr);
    EXPECT_EQ(desktop.overlays().at(0).directlyAbove, news);
}

TEST_F(ControllerTest, CoveredWindowsAndPausesDoNotCountAsOnScreen) {
    start();
    listSite("news.example", 1);
    std::int64_t news = open("news.example", Rect{0, 0, 400, 400});
    // Three quarters covered exactly: still seen.
    std::int64_t cover = openOther(Rect{0, 0, 400, 300});
    controller->read();
    advance(30);
    EXPECT_TRUE(controller->tracker().sightings().at(0).visible);
    // One more row of samples covered: no longer seen.
    desktop.setBounds(cover, Rect{0, 0, 400, 313});
    controller->read();
    EXPECT_FALSE(controller->tracker().sightings().at(0).visible);
    desktop.closeWindow(cover);
    controller->read();
    EXPECT_TRUE(controller->tracker().sightings().at(0).visible);

    // While paused nothing is on screen, yet a gray window keeps its overlay.
    advance(60);
    ASSERT_EQ(controller->grayedWindows(), std::vector<std::int64_t>{news});
    workspace.post(SystemNotification::screensDidSleep);
    advance(0.15);
    EXPECT_FALSE(controller->tracker().sightings().at(0).visible);
    EXPECT_EQ(controller->grayedWindows(), std::vector<std::int64_t>{news});
}

// A tab change, from a browser of either kind through both monitors and the
// controller to the overlay, as the program wires them.
class TabChangeToGray : public ControllerTest, public ::testing::WithParamInterface<const char*> {
protected:
    static constexpr const char* listed = "https://video.example.net/watch?v=1";
    static constexpr const char* unlisted = "https://news.example.org/";

    /// Two windows of one size side by side: `work` on a listed site within
    /// its limit, `play` on an unlisted one, after the one open an hour that
    /// "video.example.net" allows was used in `play`. Ends 0.5 s after a
    /// backup pass, so the next one is 4.5 s away.
    void openTheDay(bool trusted) {
        apps.setTrusted(trusted);
        std::int32_t pid = apps.launchBrowser(GetParam());
        work = apps.openWindow(pid, Rect{0, 25, 700, 500}, "https://docs.example.com/");
        play = apps.openWindow(pid, Rect{720, 25, 700, 500}, unlisted);
        start();
        RuleSet rules = controller->rules();
        rules.newSiteDefaults.trigger = GrayTrigger::afterLimit(60, std::nullopt, CountPeriod::hour);
        rules.addSite("docs.example.com");
        rules.newSiteDefaults.trigger = GrayTrigger::afterLimit(std::nullopt, 1, CountPeriod::hour);
        rules.addSite("video.example.net");
        controller->rulesChangedInSettings(rules);

        // Each step outlasts a backup period, so it is read either way.
        apps.showAddress(play, listed);
        advance(GrayController::backupInterval + 1);
        apps.showAddress(play, unlisted);
        advance(GrayController::backupInterval + 1);
        ASSERT_TRUE(desktop.overlays().empty()) << "one open is within the limit";
        int before = fullPasses;
        while (fullPasses == before) ASSERT_TRUE(desktop.clock().runNext());
        advance(0.5);
        takeLines();
    }
    std::size_t scripts() const { return apps.scriptsReceived(GetParam()); }
    void expectGrayOverPlayOnly() {
        ASSERT_EQ(desktop.overlays().size(), 1u);
        EXPECT_EQ(desktop.overlays()[0].directlyAbove, play);
        EXPECT_EQ(desktop.overlays()[0].frame, Geometry::flip(desktop.window(play)->bounds, 900));
        EXPECT_EQ(controller->grayedWindows(), std::vector<std::int64_t>{play});
    }

    std::int64_t work = 0;
    std::int64_t play = 0;
};

TEST_P(TabChangeToGray, IsReportedAndOnePassLaterTheRightWindowIsGray) {
    ASSERT_NO_FATAL_FAILURE(openTheDay(true));
    std::size_t scriptsBefore = scripts();
    int before = fullPasses;

    apps.showAddress(play, listed);
    EXPECT_EQ(takeLines(), Lines{browser(GetParam()).name + " reported AXTitleChanged"});
    advance(0.149);
    EXPECT_EQ(fullPasses, before);
    EXPECT_TRUE(desktop.overlays().empty());
    advance(0.001);
    EXPECT_EQ(fullPasses, before + 1);
    EXPECT_EQ(scripts(), scriptsBefore + 1);
    expectGrayOverPlayOnly();
    EXPECT_EQ(takeLines().back(), "graying window " + std::to_string(play));

    // Nothing else asks for a pass before the backup timer's next one.
    advance(4.0);
    EXPECT_EQ(fullPasses, before + 1);
}

TEST_P(TabChangeToGray, WithoutAccessibilityTheBackupPassFindsItWithinFiveSeconds) {
    ASSERT_NO_FATAL_FAILURE(openTheDay(false));
    int before = fullPasses;

    apps.showAddress(play, listed);
    advance(0.15);
    EXPECT_EQ(fullPasses, before) << "no event asks for a pass";
    EXPECT_TRUE(desktop.overlays().empty());
    advance(5.0 - 0.15);
    EXPECT_EQ(fullPasses, before + 1);
    expectGrayOverPlayOnly();
    EXPECT_THAT(takeLines(), Each(Not(HasSubstr("reported"))));
}

INSTANTIATE_TEST_SUITE_P(BothDialects, TabChangeToGray, ::testing::Values("com.google.Chrome", "com.apple.Safari"),
                         [](const auto& info) {
                             return BrowserCatalog::browser(info.param)->dialect == Dialect::chromium ? "Chromium"
                                                                                                      : "Safari";
                         });

}  // namespace
}  // namespace ashview
