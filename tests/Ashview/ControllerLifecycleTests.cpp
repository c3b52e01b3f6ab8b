#include "ControllerFixture.h"

#include "AshviewCore/Foundation/AtomicFile.h"
#include "AshviewCore/Tracking/TrackerSnapshotStore.h"

#include <gtest/gtest.h>

#include <linux/capability.h>
#include <map>
#include <sys/syscall.h>
#include <unistd.h>

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
    controller->read();
    EXPECT_EQ(takeLines(), (Lines{"could not save counts"})) << "the first failure of a run only";
    fs::remove(snapshotFile());
    controller->read();
    EXPECT_EQ(takeLines(), (Lines{"saving counts works again"}));
    EXPECT_EQ(savedAt(), desktop.clock().now()) << "retried on every pass";

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

/// While alive, file permissions bind this thread also when it runs as root:
/// the capabilities that override them leave its effective set.
class PermissionsBind final {
public:
    PermissionsBind() { set(false); }
    ~PermissionsBind() { set(true); }
    PermissionsBind(const PermissionsBind&) = delete;
    PermissionsBind& operator=(const PermissionsBind&) = delete;

private:
    static void set(bool override) {
        __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
        __user_cap_data_struct data[2]{};
        if (::syscall(SYS_capget, &header, data) != 0) return;
        for (unsigned cap : {CAP_DAC_OVERRIDE, CAP_DAC_READ_SEARCH}) {
            std::uint32_t bit = 1u << (cap % 32);
            __user_cap_data_struct& word = data[cap / 32];
            word.effective = override ? word.effective | (word.permitted & bit) : word.effective & ~bit;
        }
        ::syscall(SYS_capset, &header, data);
    }
};

/// What stands at `path`: for each entry of a folder (or the file itself,
/// under ""), its bytes, or what it holds when it is a folder.
std::map<std::string, std::string> standing(const fs::path& path) {
    auto describe = [](const fs::path& at) {
        if (fs::is_directory(at)) return "a folder holding " + AtomicFile::read(at / "inside").value_or("nothing");
        return AtomicFile::read(at).value_or("<unreadable>");
    };
    if (!fs::is_directory(path)) return {{"", describe(path)}};
    std::map<std::string, std::string> found;
    for (const auto& entry : fs::directory_iterator(path)) found[entry.path().filename().string()] = describe(entry);
    return found;
}

TEST_F(ControllerTest, DamagedOrUnreachableDocumentsAreToldAndNeverWrittenOver) {
    enum class Fault { missing, empty, garbage, wrongShape, truncated, newer, older, folder, unreadable,
                       readOnlyFolder, folderIsAFile };
    const std::string names[] = {"rules.json", "running.json", "history.json"};
    constexpr int rules = 0, counters = 1, history = 2, all = -1;
    using Rules = std::optional<GrayController::RulesProblem>;
    using Usage = std::optional<UsageKeeper::Problem>;
    constexpr auto newer = GrayController::RulesProblem::needsNewerApp;
    constexpr auto unreadable = GrayController::RulesProblem::unreadable;
    const std::string setAside =
        "the usage history file could not be read, so it was set aside and a new history started";
    const std::string cannotRead = "could not read the usage history file, so it is left as it is and not saved";
    const Lines cannotSave{"could not save the usage history", "could not save counts"};
    struct Case {
        int document;
        Fault fault;
        Rules rulesProblem;
        Usage usageProblem;
        Lines lines;
        /// Where the damaged thing stands afterwards, unchanged; "" for the
        /// whole folder; nothing where the program may replace it.
        std::optional<std::string> keptAt;
    };
    const std::vector<Case> cases{
        {rules, Fault::missing, {}, {}, {}, {}},
        {rules, Fault::empty, unreadable, {}, {}, "rules.json"},
        {rules, Fault::garbage, unreadable, {}, {}, "rules.json"},
        {rules, Fault::wrongShape, unreadable, {}, {}, "rules.json"},
        {rules, Fault::truncated, unreadable, {}, {}, "rules.json"},
        {rules, Fault::newer, newer, {}, {}, "rules.json"},
        {rules, Fault::older, unreadable, {}, {}, "rules.json"},
        {rules, Fault::folder, unreadable, {}, {}, "rules.json"},
        {rules, Fault::unreadable, unreadable, {}, {}, "rules.json"},
        // Counters are not worth bothering anyone for: read as none, then saved anew.
        {counters, Fault::missing, {}, {}, {}, {}},
        {counters, Fault::empty, {}, {}, {}, {}},
        {counters, Fault::garbage, {}, {}, {}, {}},
        {counters, Fault::wrongShape, {}, {}, {}, {}},
        {counters, Fault::truncated, {}, {}, {}, {}},
        {counters, Fault::newer, {}, {}, {}, {}},
        {counters, Fault::older, {}, {}, {}, {}},
        {counters, Fault::folder, {}, {}, {"could not save counts"}, "running.json"},
        {counters, Fault::unreadable, {}, {}, {}, {}},
        {history, Fault::missing, {}, {}, {}, {}},
        {history, Fault::empty, {}, {}, {setAside}, "history.json.broken"},
        {history, Fault::garbage, {}, {}, {setAside}, "history.json.broken"},
        {history, Fault::wrongShape, {}, {}, {setAside}, "history.json.broken"},
        {history, Fault::truncated, {}, {}, {setAside}, "history.json.broken"},
        {history, Fault::newer, {}, UsageKeeper::Problem::needsNewerApp,
         {"the usage history file is from a newer version, so it is left as it is and not saved"}, "history.json"},
        {history, Fault::older, {}, {}, {setAside}, "history.json.broken"},
        {history, Fault::folder, {}, UsageKeeper::Problem::unreadable, {cannotRead}, "history.json"},
        {history, Fault::unreadable, {}, UsageKeeper::Problem::unreadable, {cannotRead}, "history.json"},
        {all, Fault::readOnlyFolder, {}, {}, cannotSave, ""},
        {all, Fault::folderIsAFile, unreadable, {}, cannotSave, ""},
    };

    // A whole document of each kind, with something in it.
    fs::path model = folder.path() / "model";
    RuleSet listed = RuleSet::fresh();
    listed.addSite("kept.example");
    RuleStore(model).save(listed);
    TrackerSnapshot counted;
    counted.savedAt = desktop.clock().now();
    counted.sites["kept.example"].sessionOpens = 2;
    TrackerSnapshotStore{model}.save(counted);
    UsageStore{model}.save(UsageHistory{});
    std::vector<std::string> whole;
    for (const std::string& name : names) whole.push_back(*AtomicFile::read(model / name));

    PermissionsBind bind;
    int number = 0;
    for (const Case& c : cases) {
        fs::path data = folder.path() / std::to_string(++number);
        for (int document = 0; document < 3; ++document) AtomicFile::write(data / names[document], whole[document]);
        fs::path file = data / (c.document == all ? "" : names[c.document]);
        std::string version = c.document == rules ? "3" : "1";
        switch (c.fault) {
            case Fault::missing: fs::remove(file); break;
            case Fault::empty: AtomicFile::write(file, ""); break;
            case Fault::garbage: AtomicFile::write(file, "\x01\xff{ not json"); break;
            case Fault::wrongShape:
                AtomicFile::write(file, R"({"schemaVersion": )" + version + R"(, "sites": 7, "days": 7})");
                break;
            case Fault::truncated:
                AtomicFile::write(file, whole[c.document].substr(0, whole[c.document].size() / 2));
                break;
            case Fault::newer: AtomicFile::write(file, R"({"schemaVersion": 99, "sites": {}, "days": {}})"); break;
            case Fault::older: AtomicFile::write(file, R"({"schemaVersion": 0, "sites": [], "days": {}})"); break;
            case Fault::folder:
                fs::remove(file);
                AtomicFile::write(file / "inside", "x");
                break;
            case Fault::folderIsAFile:
                fs::remove_all(data);
                AtomicFile::write(data, "a file");
                break;
            default: break;
        }
        std::map<std::string, std::string> before = standing(data);
        // Rights are taken away last and given back before looking again.
        auto lock = [&](bool locked) {
            if (c.fault == Fault::unreadable) fs::permissions(file, locked ? fs::perms::none : fs::perms::owner_all);
            if (c.fault == Fault::readOnlyFolder) {
                fs::permissions(data, locked ? fs::perms::owner_read | fs::perms::owner_exec : fs::perms::owner_all);
            }
        };
        lock(true);

        static const char* const faults[] = {"missing", "empty", "garbage", "wrong shape", "truncated", "newer",
                                             "older", "a folder", "unreadable", "read-only folder", "folder is a file"};
        std::string name = (c.document == all ? "" : names[c.document] + " ") + faults[static_cast<int>(c.fault)];
        make(data);
        EXPECT_TRUE(controller->addSite("news.example")) << name << ": the program runs on, in memory at least";
        controller->stop();
        EXPECT_EQ(controller->rulesProblem(), c.rulesProblem) << name;
        EXPECT_EQ(controller->usage().problem(), c.usageProblem) << name;
        EXPECT_EQ(takeLines(), c.lines) << name;
        controller.reset();
        lock(false);
        std::map<std::string, std::string> after = standing(data);
        if (c.keptAt == "") {
            EXPECT_EQ(after, before) << name;
        } else if (c.keptAt) {
            EXPECT_EQ(after[*c.keptAt], before[names[c.document]]) << name;
        }
    }
}

}  // namespace
}  // namespace ashview
