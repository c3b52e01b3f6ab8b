#include "ReadingFixture.h"

#include "AshviewOverlay/WindowList.h"

#include <gmock/gmock.h>

namespace ashview {
namespace {

using ::testing::ElementsAre;

class BrowserMonitorTest : public ReadingFixture {
protected:
    void SetUp() override {
        monitor.onChange = [this](const std::string& reason) { changes.push_back(reason); };
        monitor.onBrowserQuit = [this](const Browser& quit) {
            events.push_back("quit " + quit.name + (monitor.sessionStart() ? " in session" : ""));
        };
        monitor.onSessionEnd = [this] { events.push_back(monitor.sessionStart() ? "end in session" : "end"); };
    }
    std::vector<std::optional<std::string>> hosts(const std::string& bundleID) {
        std::vector<std::optional<std::string>> found;
        for (const ProbedWindow& window : monitor.readings().at(bundleID)) found.push_back(window.host);
        return found;
    }

    BrowserMonitor monitor{platform()};
    std::vector<std::string> changes;
    std::vector<std::string> events;
};

TEST_F(BrowserMonitorTest, ReadsEachDialectAndPairsEveryWindowWithItsScreenWindow) {
    std::int32_t c = apps.launchBrowser(chrome);
    std::int64_t news = apps.openWindow(c, Rect{0, 25, 800, 600}, "https://news.example.com/today");
    std::int64_t blank = apps.openWindow(c, Rect{100, 100, 800, 600}, "chrome://newtab/");
    std::int32_t s = apps.launchBrowser(safari);
    std::int64_t start = apps.openWindow(s, Rect{200, 50, 900, 700}, "favorites://");
    std::int64_t empty = apps.openWindow(s, Rect{300, 60, 500, 400}, std::nullopt);
    monitor.start();
    EXPECT_THAT(changes, ElementsAre("Google Chrome is open", "Safari is open"));

    monitor.read();
    EXPECT_EQ(monitor.status().kind, BrowserStatus::Kind::running);
    // Front to back: the window opened last stands in front.
    EXPECT_THAT(hosts(chrome), ElementsAre("newtab", "news.example.com"));
    EXPECT_THAT(hosts(safari), ElementsAre(std::nullopt, std::nullopt));
    const auto& c0 = monitor.readings().at(chrome);
    EXPECT_EQ(c0[0].screenWindow->number, blank);
    EXPECT_EQ(c0[1].screenWindow->number, news);
    EXPECT_EQ(c0[1].key, (WindowKey{chrome, apps.appWindow(news).scriptingID}));
    // Cocoa frame on the 900-point display.
    EXPECT_EQ(c0[1].screenWindow->frame, (Rect{0, 275, 800, 600}));
    const auto& s0 = monitor.readings().at(safari);
    EXPECT_EQ(s0[0].screenWindow->number, empty);
    EXPECT_EQ(s0[1].screenWindow->number, start);

    // A window moved between two reads keeps its partner by number although
    // its frame no longer fits the old one.
    desktop.setBounds(news, Rect{400, 300, 700, 500});
    monitor.read();
    EXPECT_EQ(monitor.readings().at(chrome)[1].screenWindow->number, news);
    EXPECT_EQ(apps.scriptsMade(), 2u);  // one compiled script per browser, run again and again
    EXPECT_EQ(apps.scriptRuns(), 4u);
}

TEST_F(BrowserMonitorTest, FrontmostBrowserComesFirstThenTheLastActive) {
    std::int32_t c = apps.launchBrowser(chrome);
    apps.openWindow(c, Rect{0, 0, 500, 500}, "https://c.example");
    std::int32_t e = apps.launchBrowser(edge);
    apps.openWindow(e, Rect{0, 0, 500, 500}, "https://e.example");
    std::int32_t s = apps.launchBrowser(safari);
    apps.openWindow(s, Rect{0, 0, 500, 500}, "https://s.example");
    monitor.start();
    monitor.read();
    auto order = [&] {
        std::vector<std::string> found;
        for (const ProbedWindow& window : monitor.windows()) found.push_back(*window.host);
        return found;
    };
    EXPECT_THAT(order(), ElementsAre("c.example", "e.example", "s.example"));
    apps.activate(e);
    EXPECT_EQ(changes.back(), "Microsoft Edge became active");
    apps.setFrontmost(s);
    EXPECT_THAT(order(), ElementsAre("s.example", "e.example", "c.example"));
    // The last active browser quits: it still counts as last active, and
    // simply matches nothing.
    apps.quit(e);
    desktop.clock().advance(1.0);
    EXPECT_EQ(monitor.lastActive(), edge);
    EXPECT_THAT(order(), ElementsAre("s.example", "c.example"));
}

TEST_F(BrowserMonitorTest, SilentBrowserIsLeftAloneForThirtySecondsAndKeepsItsWindows) {
    std::int32_t c = apps.launchBrowser(chrome);
    apps.openWindow(c, Rect{0, 0, 500, 500}, "https://video.example");
    monitor.start();
    monitor.read();
    auto before = monitor.readings().at(chrome);
    changes.clear();

    apps.setScriptBehaviour(chrome, SimScriptBehaviour::timeOut);
    double stalled = desktop.clock().uptime();
    monitor.read();
    EXPECT_DOUBLE_EQ(desktop.clock().uptime() - stalled, 3.0);  // the script's limit, once
    EXPECT_THAT(changes, ElementsAre("Google Chrome did not answer"));
    EXPECT_EQ(monitor.readings().at(chrome), before);
    EXPECT_TRUE(monitor.notAllowed().empty());
    EXPECT_EQ(monitor.status().kind, BrowserStatus::Kind::running);

    std::size_t sent = apps.scriptsReceived(chrome);
    desktop.clock().advance(29.9);
    monitor.read();
    EXPECT_EQ(apps.scriptsReceived(chrome), sent);  // cooling down: nothing sent, nothing said
    EXPECT_EQ(changes.size(), 1u);
    EXPECT_EQ(monitor.readings().at(chrome), before);

    apps.setScriptBehaviour(chrome, SimScriptBehaviour::answer);
    desktop.clock().advance(0.1);  // exactly 30 s after the failed run ended
    monitor.read();
    EXPECT_EQ(apps.scriptsReceived(chrome), sent + 1);

    // Any other error cools down too; a browser with no windows reads empty.
    apps.setScriptBehaviour(chrome, SimScriptBehaviour::fail, -10810);
    monitor.read();
    EXPECT_TRUE(monitor.probe().isCoolingDown(*monitor.runningInstance(browser(chrome))));
    desktop.clock().advance(30);
    apps.setScriptBehaviour(chrome, SimScriptBehaviour::noWindows);
    monitor.read();
    EXPECT_TRUE(monitor.readings().at(chrome).empty());
}

TEST_F(BrowserMonitorTest, RefusedAndUndecidedBrowsersAreNotAllowedAndUndecidedOnesAreNeverScripted) {
    std::int32_t c = apps.launchBrowser(chrome);
    apps.openWindow(c, Rect{0, 0, 500, 500}, "https://c.example");
    std::int32_t s = apps.launchBrowser(safari);
    apps.openWindow(s, Rect{0, 0, 500, 500}, "https://s.example");
    apps.setScriptBehaviour(safari, SimScriptBehaviour::refuse);
    monitor.start();
    monitor.read();
    EXPECT_EQ(monitor.notAllowed(), std::vector<Browser>{browser(safari)});
    EXPECT_TRUE(monitor.readings().at(safari).empty());
    EXPECT_EQ(monitor.status().kind, BrowserStatus::Kind::running);
    // A refusal sets no cooldown: the next pass asks again, and asks the
    // permission anew, since the refusal took the process out of `allowed`.
    EXPECT_FALSE(monitor.allowed().count(s));
    monitor.read();
    EXPECT_EQ(apps.scriptsReceived(safari), 2u);
    EXPECT_EQ(apps.permissionQueries(safari), 2u);
    EXPECT_EQ(apps.permissionQueries(chrome), 1u);  // confirmed once, not asked again

    apps.setPermission(chrome, SimPermission::notDecided);
    apps.quit(c);
    desktop.clock().advance(1.0);
    c = apps.launchBrowser(chrome);
    apps.openWindow(c, Rect{0, 0, 500, 500}, "https://c.example");
    std::size_t before = apps.scriptsReceived(chrome);
    for (int pass = 0; pass < 3; ++pass) monitor.read();
    EXPECT_EQ(apps.scriptsReceived(chrome), before);
    EXPECT_EQ(apps.consentPrompts(chrome), 0u);
    // Both refused: the status names the first in catalog order.
    EXPECT_EQ(monitor.status(), (BrowserStatus{BrowserStatus::Kind::notAllowed, browser(chrome)}));

    apps.setPermission(chrome, SimPermission::allowed);
    monitor.read();
    EXPECT_EQ(apps.scriptsReceived(chrome), before + 1);
    EXPECT_EQ(monitor.notAllowed(), std::vector<Browser>{browser(safari)});
}

TEST_F(BrowserMonitorTest, QuitCountsOnlyWhenNoInstanceIsLeftAfterOneSecond) {
    Instant hourAgo = desktop.clock().now() - 3600;
    std::int32_t old = apps.launchBrowser(chrome, hourAgo);
    apps.openWindow(old, Rect{0, 0, 500, 500}, "https://c.example");
    std::int32_t s = apps.launchBrowser(safari);
    monitor.start();
    // The session reaches back to the oldest browser's launch.
    EXPECT_EQ(monitor.sessionStart(), hourAgo);
    monitor.read();

    // A second, newer instance: the older one counts.
    std::int32_t young = apps.launchBrowser(chrome);
    EXPECT_EQ(monitor.runningInstance(browser(chrome))->processIdentifier, old);
    apps.quit(old);
    EXPECT_EQ(monitor.runningInstance(browser(chrome))->processIdentifier, young);
    monitor.read();
    EXPECT_EQ(monitor.observer(chrome)->pid(), young) << "Accessibility follows the instance that counts";
    // Quit and relaunch within the second: the new process is watched at once.
    apps.quit(young);
    desktop.clock().advance(0.5);
    changes.clear();
    std::int32_t again = apps.launchBrowser(chrome);
    apps.postAccessibility(again, "AXFocusedWindowChanged", "AXWindow");
    EXPECT_THAT(changes, ElementsAre("Google Chrome is open", "Google Chrome reported AXFocusedWindowChanged"));
    desktop.clock().advance(1.0);
    EXPECT_TRUE(events.empty());
    EXPECT_TRUE(monitor.readings().count(chrome));

    apps.quit(again);
    desktop.clock().advance(0.99);
    EXPECT_TRUE(events.empty());
    desktop.clock().advance(0.01);
    EXPECT_THAT(events, ElementsAre("quit Google Chrome in session"));
    EXPECT_FALSE(monitor.readings().count(chrome));
    EXPECT_EQ(monitor.observer(chrome), nullptr);

    // The last browser: the quit first, then the session's end, with the
    // session already cleared.
    apps.quit(s);
    desktop.clock().advance(1.0);
    EXPECT_THAT(events, ElementsAre("quit Google Chrome in session", "quit Safari in session", "end"));
    EXPECT_EQ(monitor.status().kind, BrowserStatus::Kind::noBrowser);
    EXPECT_TRUE(monitor.allowed().empty());

    // A new session starts at the next launch, at its date.
    desktop.clock().advance(60);
    std::int32_t last = apps.launchBrowser(safari);
    EXPECT_EQ(monitor.sessionStart(), desktop.clock().now());

    // Quits within the same second: two instances of one browser quit once,
    // and the session ends once.
    std::int32_t first = apps.launchBrowser(chrome);
    std::int32_t second = apps.launchBrowser(chrome);
    events.clear();
    for (std::int32_t pid : {first, second, last}) apps.quit(pid);
    desktop.clock().advance(1.0);
    EXPECT_THAT(events, ElementsAre("quit Google Chrome in session", "end", "quit Safari"));
}

TEST_F(BrowserMonitorTest, AccessibilityReportsWindowChangesAndIsTakenUpWhenAllowedLater) {
    apps.setTrusted(false);
    std::int32_t c = apps.launchBrowser(chrome);
    std::int64_t window = apps.openWindow(c, Rect{0, 0, 500, 500}, "https://a.example");
    monitor.start();
    EXPECT_FALSE(monitor.observer(chrome)->hasObserver());
    changes.clear();
    apps.showAddress(window, "https://b.example");
    EXPECT_TRUE(changes.empty());

    apps.setTrusted(true);
    monitor.read();
    EXPECT_TRUE(monitor.observer(chrome)->hasObserver());
    EXPECT_EQ(apps.liveObservers(c), 1u);
    apps.showAddress(window, "https://c.example");
    apps.postAccessibility(c, "AXTitleChanged", "AXStaticText");  // an inner element: ignored
    apps.postAccessibility(c, "AXTitleChanged", std::nullopt);
    apps.focus(window);
    apps.openWindow(c, Rect{10, 10, 500, 500});
    apps.postAccessibility(c, "AXValueChanged", "AXWindow");  // never asked for
    EXPECT_THAT(changes, ElementsAre("Google Chrome reported AXTitleChanged",
                                     "Google Chrome reported AXMainWindowChanged",
                                     "Google Chrome reported AXFocusedWindowChanged",
                                     "Google Chrome reported AXWindowCreated"));
    apps.quit(c);
    desktop.clock().advance(1.0);
    EXPECT_EQ(apps.liveObservers(c), 0u);

    // Hiding and showing speak for themselves; other apps say nothing here.
    changes.clear();
    std::int32_t s = apps.launchBrowser(safari);
    std::int32_t notes = apps.launchApp("com.example.Notes", "Notes");
    apps.hide(s);
    apps.unhide(s);
    apps.hide(notes);
    apps.activate(notes);
    apps.post(ApplicationEvent::didActivate, std::nullopt);
    EXPECT_THAT(changes, ElementsAre("Safari is open", "Safari was hidden", "Safari was shown"));
}

TEST_F(BrowserMonitorTest, AScriptThatCannotBeMadeIsNoAnswerWithoutCooldown) {
    std::int32_t c = apps.launchBrowser(chrome);
    apps.openWindow(c, Rect{0, 0, 500, 500}, "https://c.example");
    apps.setScriptsUnavailable();
    monitor.start();
    changes.clear();
    monitor.read();
    monitor.read();
    EXPECT_THAT(changes, ElementsAre("Google Chrome did not answer", "Google Chrome did not answer"));
    EXPECT_EQ(monitor.probe().cachedScripts(), 0u);
    EXPECT_FALSE(monitor.probe().isCoolingDown(*monitor.runningInstance(browser(chrome))));
    apps.setScriptsUnavailable(false);
    monitor.read();
    EXPECT_EQ(monitor.readings().at(chrome).size(), 1u);
    EXPECT_EQ(monitor.probe().cachedScripts(), 1u);
}

// One read of many browsers asks the window server for its lists once, and
// each browser's windows from those lists are the ones a list of its own
// would have given.
TEST_F(BrowserMonitorTest, ManyBrowsersShareOneFetchOfTheWindowLists) {
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
