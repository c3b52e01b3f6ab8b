#include "ControllerFixture.h"

#include "AshviewCore/Foundation/AtomicFile.h"
#include "AshviewCore/Tracking/TrackerSnapshotStore.h"

#include <gtest/gtest.h>

namespace ashview {
namespace {

using Lines = std::vector<std::string>;
namespace fs = std::filesystem;

TEST_F(ControllerTest, DisplaysSleepThenTheScreenLocks) {
    start();
    listSite("news.example");
    open("news.example", Rect{0, 0, 400, 400});
    advance(0.15);
    takeLines();
    fs::remove(snapshotFile());
    std::size_t readsBefore = reads();

    workspace.post(SystemNotification::screensDidSleep);
    EXPECT_TRUE(fs::exists(snapshotFile())) << "a pause saves at once";
    fs::remove(snapshotFile());
    distributed.post(SystemNotification::screenIsLocked);
    workspace.post(SystemNotification::screensDidSleep);  // the same again: nothing
    advance(0.15);
    EXPECT_EQ(reads(), readsBefore + 1);
    EXPECT_TRUE(controller->isPaused());
    EXPECT_FALSE(fs::exists(snapshotFile())) << "the second reason is silent";
    EXPECT_EQ(takeLines(), (Lines{"counting paused: displaysAsleep"}));

    workspace.post(SystemNotification::screensDidWake);
    advance(0.15);
    EXPECT_TRUE(takeLines().empty());
    EXPECT_EQ(reads(), readsBefore + 1);

    distributed.post(SystemNotification::screenIsUnlocked);
    distributed.post(SystemNotification::screenIsUnlocked);  // an end without a start: nothing
    advance(0.15);
    EXPECT_EQ(takeLines(), (Lines{"counting resumed"}));
    EXPECT_EQ(reads(), readsBefore + 2);
    EXPECT_FALSE(fs::exists(snapshotFile())) << "resuming does not save";
    EXPECT_FALSE(controller->isPaused());

    workspace.post(SystemNotification::sessionDidResignActive);
    EXPECT_EQ(takeLines(), (Lines{"counting paused: sessionSwitchedAway"}));
    workspace.post(SystemNotification::sessionDidBecomeActive);
    EXPECT_EQ(takeLines(), (Lines{"counting resumed"}));
}

TEST_F(ControllerTest, ARestartContinuesTheSessionOnlyWithABrowserLaunchedWithinTwoSecondsOfIt) {
    struct Case {
        bool snapshot;
        std::vector<std::pair<const char*, double>> launches;  // seconds from the saved session's start
        Lines lines;
    };
    const std::vector<Case> cases{
        {false, {}, {}},
        {true, {}, {"restored hour and day counts"}},
        {true, {{chrome, 30}, {safari, 1.9}}, {"restored counts, including this browsing session"}},
        {true, {{chrome, -2.0}}, {"restored hour and day counts"}},
    };
    Instant sessionStart = desktop.clock().now() - 3600;
    std::vector<std::int32_t> launched;
    for (const Case& c : cases) {
        controller.reset();
        for (std::int32_t pid : launched) apps.quit(pid);
        launched.clear();
        advance(1.0);
        fs::remove(snapshotFile());
        if (c.snapshot) {
            TrackerSnapshot snapshot;
            snapshot.savedAt = desktop.clock().now() - 60;
            snapshot.sessionStart = sessionStart;
            TrackerSnapshotStore{folder.path()}.save(snapshot);
        }
        for (const auto& [id, offset] : c.launches) launched.push_back(apps.launchBrowser(id, sessionStart + offset));
        start();
        EXPECT_EQ(takeLines(), c.lines) << c.launches.size();
    }
}

TEST_F(ControllerTest, StartingWiresEverythingAndAsksForNoPass) {
    // The app is listed only in the saved rules: its reader is told them
    // before it starts.
    RuleSet saved = RuleSet::fresh();
    saved.addApp("com.example.Game", "Game");
    RuleStore(folder.path()).save(saved);
    openGame(Rect{0, 0, 400, 400});
    apps.launchBrowser(chrome);
    start();
    EXPECT_EQ(appMonitor.rules(), saved);
    EXPECT_EQ(takeLines(), (Lines{"Google Chrome is open", "a listed app is open"}));
    EXPECT_EQ(desktop.registeredEvents(), (std::vector<std::uint32_t>{804, 806, 807, 808, 816}));
    EXPECT_EQ(reads(), 0u);
    advance(0.15);
    EXPECT_EQ(reads(), 1u) << "the readers' words bring the first pass";
    EXPECT_TRUE(controller->usage().recorder().history().lastRun.has_value()) << "the keeper was started";
}

TEST_F(ControllerTest, CountersAreSavedEveryFiveMinutesAndOnceMoreBeforeTheOverlaysGo) {
    start();
    std::int64_t news = open("news.example", Rect{0, 0, 400, 400});
    controller->read();
    auto savedAt = [&] { return TrackerSnapshotStore{folder.path()}.load()->savedAt; };
    Instant first = savedAt();
    EXPECT_EQ(first, desktop.clock().now()) << "the first full pass saves";
    advance(299.9);
    EXPECT_EQ(savedAt(), first);
    controller->read();
    EXPECT_EQ(savedAt(), first);
    advance(0.1);
    controller->read();
    EXPECT_EQ(savedAt(), first + 300) << "exactly 300 seconds later";

    takeLines();
    fs::remove(snapshotFile());
    fs::create_directory(snapshotFile());  // the save will fail
    advance(300);
    controller->read();
    EXPECT_EQ(takeLines(), (Lines{"could not save counts"}));
    fs::remove(snapshotFile());
    controller->read();
    EXPECT_TRUE(takeLines().empty());
    EXPECT_EQ(savedAt(), desktop.clock().now()) << "retried on the very next pass";

    listSite("news.example");
    std::int64_t second = open("news.example", Rect{500, 0, 400, 400});
    controller->read();
    fs::remove(historyFile());
    fs::remove(snapshotFile());
    fs::create_directory(snapshotFile());  // this save fails, and its log line tells when it ran
    takeLines();
    controller->stop();
    EXPECT_TRUE(fs::exists(historyFile()));
    EXPECT_EQ(takeLines(), (Lines{"could not save counts", "window " + std::to_string(news) + " back to color: quitting",
                                  "window " + std::to_string(second) + " back to color: quitting"}));
    EXPECT_TRUE(desktop.overlays().empty());
    EXPECT_EQ(controller->usage().recorder().history().lastRun->stop->reason, UsageHistory::StopReason::userQuit);
}

TEST_F(ControllerTest, ABrowserQuittingAndTheSessionEnding) {
    start();
    listSite("news.example");
    RuleSet rules = controller->rules();
    rules.addApp("com.example.Game", "Game");
    controller->rulesChangedInSettings(rules);
    std::int64_t news = open("news.example", Rect{0, 0, 400, 400});
    std::int64_t game = openGame(Rect{500, 0, 400, 400});
    advance(0.15);
    ASSERT_EQ(controller->grayedWindows(), (std::vector<std::int64_t>{news, game}));
    controller->toggleGray(controller->windows().at(0));
    takeLines();

    // The monitor tells of a quit a second after the last window went; the
    // controller is told here while the window is still listed.
    browsers.onBrowserQuit(browser(chrome));
    EXPECT_EQ(takeLines(), (Lines{"Google Chrome quit", "window " + std::to_string(news) +
                                                            " back to color: Google Chrome quit"}));
    EXPECT_TRUE(controller->windows().empty());
    EXPECT_FALSE(controller->isGrayRequested(WindowKey{chrome, apps.appWindow(news).scriptingID}));
    EXPECT_TRUE(controller->isReadScheduled());

    // The browser comes back, then every browser quits: the browser's
    // overlay goes, the app's stays.
    advance(0.15);
    ASSERT_EQ(controller->grayedWindows(), (std::vector<std::int64_t>{news, game}));
    takeLines();
    fs::remove(snapshotFile());
    browsers.onSessionEnd();
    EXPECT_EQ(takeLines(), (Lines{"every browser quit", "window " + std::to_string(news) +
                                                            " back to color: every browser quit"}));
    EXPECT_EQ(controller->grayedWindows(), std::vector<std::int64_t>{game});
    EXPECT_TRUE(controller->windows().empty());
    EXPECT_TRUE(fs::exists(snapshotFile()));

    controller->showInColor(std::nullopt);
    browsers.onSessionEnd();
    EXPECT_FALSE(controller->showInColorUntil().has_value()) << "'for the rest of this session' ends here";
    controller->showInColor(10);
    browsers.onSessionEnd();
    EXPECT_EQ(controller->showInColorUntil(), desktop.clock().now() + 600) << "a real moment stays";
}

TEST_F(ControllerTest, CommandsTakeEffectAtOnce) {
    start();
    std::optional<SiteRule> news = controller->addSite("news.example");
    ASSERT_TRUE(news.has_value());
    int changes = 0;
    controller->onRulesChange = [&] { ++changes; };
    std::size_t readsBefore = reads();
    EXPECT_FALSE(controller->addSite("news.example").has_value());
    EXPECT_FALSE(controller->addApp("com.google.Chrome", "").has_value());
    EXPECT_EQ(reads(), readsBefore) << "a refused edit runs no pass";
    EXPECT_EQ(changes, 0);

    std::int64_t window = open("news.example", Rect{0, 0, 400, 400});
    controller->read();
    takeLines();
    ProbedWindow probed = controller->windows().at(0);
    controller->toggleGray(probed);
    EXPECT_EQ(controller->grayedWindows(), std::vector<std::int64_t>{window});
    controller->toggleGray(probed);
    EXPECT_FALSE(controller->isGrayRequested(probed.key));
    EXPECT_EQ(takeLines(), (Lines{"gray this window on", "graying window " + std::to_string(window),
                                  "gray this window off",
                                  "window " + std::to_string(window) + " back to color: its rule says color"}));

    SiteRule removed = *news;
    controller->removeSite(removed);
    EXPECT_EQ(changes, 1);
    takeLines();
    readsBefore = reads();
    controller->setPin(SitePin::grayThisSite, removed);
    EXPECT_TRUE(takeLines().empty());
    EXPECT_EQ(reads(), readsBefore);
    EXPECT_TRUE(controller->rules().sites.empty());

    // What the commands did is in the rules file.
    std::optional<SiteRule> mail = controller->addSite("mail.example");
    controller.reset();
    EXPECT_EQ(make().rules().sites, std::vector<SiteRule>{*mail});
}

TEST_F(ControllerTest, ARulesFileOfANewerVersionIsNeverWritten) {
    std::string newer = R"({"schemaVersion": 9, "sites": "whatever"})";
    AtomicFile::write(folder.path() / "rules.json", newer);
    start();
    EXPECT_EQ(controller->rulesProblem(), GrayController::RulesProblem::needsNewerApp);
    std::optional<SiteRule> added = controller->addSite("news.example");
    ASSERT_TRUE(added.has_value());
    EXPECT_EQ(controller->rules().sites.size(), 1u) << "works in memory";
    controller->setPin(SitePin::grayThisSite, *added);
    controller->removeSite(*added);
    controller->stop();
    EXPECT_EQ(AtomicFile::read(folder.path() / "rules.json"), newer);
    EXPECT_FALSE(fs::exists(folder.path() / "rules.json.bak"));
    EXPECT_TRUE(fs::exists(snapshotFile())) << "the counters are kept as usual";

    controller.reset();
    AtomicFile::write(folder.path() / "rules.json", "{ not json");
    make();
    EXPECT_EQ(controller->rulesProblem(), GrayController::RulesProblem::unreadable);
    EXPECT_EQ(controller->rules(), RuleSet::fresh());
    controller->addSite("news.example");
    EXPECT_EQ(AtomicFile::read(folder.path() / "rules.json"), "{ not json");
}

}  // namespace
}  // namespace ashview
