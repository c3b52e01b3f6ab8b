// The road of a tab change, from a simulated browser to the overlay, through
// the real monitors and the real controller, wired as the program wires them.
#include "ControllerFixture.h"

#include <gtest/gtest.h>

namespace ashview {
namespace {

class TabChangeToGray : public ControllerTest, public ::testing::WithParamInterface<const char*> {
protected:
    static constexpr const char* listed = "https://video.example.net/watch?v=1";
    static constexpr const char* unlisted = "https://news.example.org/";

    /// The user's day so far: a browser of the parameter's dialect with two
    /// windows of one size side by side, `work` on a listed site within its
    /// limit and `play` on an unlisted one; the controller running on the
    /// real monitors; the one open "video.example.net" allows in an hour
    /// already used in `play`. Ends 0.5 s after a backup pass, so the next
    /// one is 4.5 s away.
    void openTheDay() {
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

        // Each step lasts longer than a backup period.
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

    std::string name() const { return browser(GetParam()).name; }
    /// Gray exactly over `play`, with the overlay on its frame.
    void expectGrayOverPlayOnly() {
        ASSERT_EQ(desktop.overlays().size(), 1u);
        EXPECT_EQ(desktop.overlays()[0].directlyAbove, play);
        EXPECT_EQ(desktop.overlays()[0].frame, Geometry::flip(desktop.window(play)->bounds, 900));
        EXPECT_FALSE(desktop.overlayAbove(work).has_value());
        EXPECT_EQ(controller->grayedWindows(), std::vector<std::int64_t>{play});
    }

    std::int64_t work = 0;
    std::int64_t play = 0;
};

TEST_P(TabChangeToGray, IsReportedAndOnePassLaterTheRightWindowIsGray) {
    ASSERT_NO_FATAL_FAILURE(openTheDay());
    std::size_t scripts = apps.scriptsReceived(GetParam());
    int before = fullPasses;

    apps.showAddress(play, listed);
    EXPECT_EQ(takeLines(), std::vector<std::string>{name() + " reported AXTitleChanged"});
    advance(0.149);
    EXPECT_EQ(fullPasses, before);
    EXPECT_TRUE(desktop.overlays().empty());
    EXPECT_EQ(apps.scriptsReceived(GetParam()), scripts);

    advance(0.001);
    EXPECT_EQ(fullPasses, before + 1);
    EXPECT_EQ(apps.scriptsReceived(GetParam()), scripts + 1);
    expectGrayOverPlayOnly();
    EXPECT_EQ(takeLines(), std::vector<std::string>{"graying window " + std::to_string(play)});

    // Nothing else asks for a pass before the backup timer's next one.
    advance(4.0);
    EXPECT_EQ(fullPasses, before + 1);
    EXPECT_EQ(apps.scriptsReceived(GetParam()), scripts + 1);
}

INSTANTIATE_TEST_SUITE_P(BothDialects, TabChangeToGray, ::testing::Values("com.google.Chrome", "com.apple.Safari"),
                         [](const auto& info) { return BrowserCatalog::browser(info.param)->dialect == Dialect::chromium
                                                           ? std::string("Chromium")
                                                           : std::string("Safari"); });

// One read of many browsers asks the window server for its lists once, and
// each browser's windows from those lists are the ones a list of its own
// would have given.
class SharedWindowLists : public ReadingFixture {};

TEST_F(SharedWindowLists, ManyBrowsersShareOneFetchOfTheWindowLists) {
    std::int32_t c = apps.launchBrowser(chrome);
    std::int32_t e = apps.launchBrowser(edge);
    std::int32_t s = apps.launchBrowser(safari);
    std::int64_t hidden = apps.openWindow(c, Rect{0, 25, 600, 400}, "https://a.example/");
    apps.openWindow(c, Rect{40, 60, 600, 400}, "https://b.example/");
    apps.openWindow(e, Rect{40, 60, 600, 400}, "https://c.example/");
    std::int64_t away = apps.openWindow(s, Rect{100, 100, 500, 500}, "https://d.example/");
    desktop.openWindow(SimWindowSetup{s, "Safari", Rect{0, 0, 1440, 24}, 25});
    apps.minimise(hidden);
    apps.moveToAnotherSpace(away);
    // Entries a process cannot be asked about, or that are not windows.
    std::int64_t odd = desktop.openWindow(SimWindowSetup{c, "Google Chrome", Rect{5, 5, 50, 50}});
    desktop.setListTamper([&](std::uint32_t, RawWindowList& raw) {
        for (auto& entry : *raw)
            if (entry->number == odd) entry->ownerPID = std::int64_t{1} << 40;
    });

    WindowList list(desktop.windowServer());
    auto byProcess = list.windowsByProcess(Geometry(desktop.windowServer()).screenHeight());
    for (std::int32_t pid : {c, e, s, std::int32_t{999}}) {
        auto found = byProcess.find(pid);
        EXPECT_EQ(found == byProcess.end() ? std::vector<ForeignWindow>{} : found->second, list.windows(pid))
            << "process " << pid;
    }
    EXPECT_FALSE(byProcess.count(999));

    BrowserMonitor monitor(platform());
    monitor.start();
    std::size_t lists = desktop.counts().windowLists;
    monitor.read();
    EXPECT_EQ(desktop.counts().windowLists - lists, 2u) << "the on-screen list and the list of all windows";
    ASSERT_EQ(monitor.readings().size(), 3u);
    for (const auto& [bundleID, windows] : monitor.readings()) {
        for (const ProbedWindow& window : windows) {
            ASSERT_TRUE(window.screenWindow) << bundleID << " " << window.key.window;
            std::int32_t pid = bundleID == chrome ? c : bundleID == edge ? e : s;
            EXPECT_EQ(window.screenWindow->number, numberOf(pid, window.key.window));
            EXPECT_EQ(window.screenWindow->isOnScreen, window.screenWindow->number != hidden &&
                                                           window.screenWindow->number != away);
        }
    }

    // A browser that keeps the thread waiting makes the next one look again.
    apps.setScriptBehaviour(edge, SimScriptBehaviour::timeOut);
    lists = desktop.counts().windowLists;
    monitor.read();
    EXPECT_EQ(desktop.counts().windowLists - lists, 4u);
    lists = desktop.counts().windowLists;
    monitor.read();
    EXPECT_EQ(desktop.counts().windowLists - lists, 2u) << "the silent one is cooling down and not asked";
    EXPECT_EQ(monitor.readings().at(edge).size(), 1u) << "and keeps its windows";
}

}  // namespace
}  // namespace ashview
