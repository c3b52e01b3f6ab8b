#include "Ashview/Usage/UsageKeeper.h"

#include "Ashview/Controller/Log.h"
#include "AshviewCore/Foundation/AtomicFile.h"
#include "AshviewCore/Foundation/Json.h"
#include "Platform/Sim/SimClock.h"
#include "Platform/Sim/SimNotificationCenter.h"
#include "TempFolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>

namespace ashview {
namespace {

namespace fs = std::filesystem;

class UsageKeeperTest : public ::testing::Test {
protected:
    UsageKeeper make() { return UsageKeeper(folder.path(), clock, workspace, log); }
    fs::path file() const { return folder.path() / "history.json"; }
    fs::path broken() const { return folder.path() / "history.json.broken"; }
    UsageHistory onDisk() const { return UsageHistory::fromJson(Json::parse(*AtomicFile::read(file()))); }
    /// Five seconds of news.example on screen, from now on.
    void watchFiveSeconds(UsageKeeper& keeper) {
        for (int step = 0; step < 2; ++step) {
            if (step > 0) clock.advance(5);
            keeper.recorder().record({SiteSighting{"news.example", true, false, false}}, clock.now(), true,
                                     clock.calendar());
        }
    }
    /// Log lines without their time stamps.
    std::vector<std::string> lines() const {
        std::vector<std::string> result;
        std::istringstream in(out.str());
        for (std::string line; std::getline(in, line);) result.push_back(line.substr(9));
        return result;
    }

    TempFolder folder;
    SimClock clock;
    SimNotificationCenter workspace;
    std::ostringstream out;
    Log log{out, clock};
};

TEST_F(UsageKeeperTest, AnOrdinaryQuitAndALogOutEndTheRunDifferently) {
    {
        UsageKeeper keeper = make();
        EXPECT_FALSE(keeper.problem());
        keeper.start();
        EXPECT_FALSE(fs::exists(file())) << "starting saves nothing";
        clock.advance(60);
        keeper.stop();
    }
    UsageHistory first = onDisk();
    ASSERT_TRUE(first.lastRun && first.lastRun->stop);
    EXPECT_EQ(first.lastRun->stop->reason, UsageHistory::StopReason::userQuit);
    EXPECT_EQ(first.lastRun->stop->time, clock.now());
    EXPECT_EQ(first.began, clock.now() - 60);

    clock.advance(600);
    UsageKeeper keeper = make();
    keeper.start();
    workspace.post(SystemNotification::willPowerOff);
    EXPECT_TRUE(keeper.isPoweringOff());
    keeper.stop();
    EXPECT_EQ(onDisk().lastRun->stop->reason, UsageHistory::StopReason::shutdown);
    EXPECT_EQ(lines(), std::vector<std::string>{"logging out, restarting, or shutting down"});
}

TEST_F(UsageKeeperTest, TheBootTimeDecidesHowMuchOfACrashWentUnwatched) {
    // A run that died 30 minutes ago; the machine has been up for 10 minutes.
    SimClock bootedRecently(SimClock::defaultStart, Calendar::gregorianUTC(), 600);
    UsageHistory crashed;
    crashed.began = bootedRecently.now() - 86400;
    crashed.lastRun = UsageHistory::Run{bootedRecently.now() - 1800, std::nullopt};
    UsageStore{folder.path()}.save(crashed);

    for (bool bootKnown : {true, false}) {
        bootedRecently.setBootTimeKnown(bootKnown);
        UsageKeeper keeper(folder.path(), bootedRecently, workspace, log);
        keeper.start();
        double unobserved = 0;
        for (const auto& [day, figures] : keeper.recorder().history().days) unobserved += figures.unobservedSeconds;
        // From the last sign of life up to the boot; without a boot time, up to now.
        EXPECT_DOUBLE_EQ(unobserved, bootKnown ? 1200.0 : 1800.0);
    }
}

TEST_F(UsageKeeperTest, ANewerFileIsNeverWrittenWhileCountingGoesOnInMemory) {
    const std::string newer = R"({"schemaVersion": 2, "whatever": [1, 2]})";
    AtomicFile::write(file(), newer);
    UsageKeeper keeper = make();
    EXPECT_EQ(keeper.problem(), UsageKeeper::Problem::needsNewerApp);
    keeper.start();
    watchFiveSeconds(keeper);
    EXPECT_EQ(keeper.recorder().history().days.begin()->second.sites.at("news.example").seconds, 5.0);
    keeper.saveIfChanged();
    keeper.clearHistory();
    keeper.stop();
    EXPECT_EQ(AtomicFile::read(file()), newer);
    EXPECT_FALSE(fs::exists(broken()));
    EXPECT_EQ(lines().size(), 1u) << "the line of the start only";
}

TEST_F(UsageKeeperTest, AFolderPathTakenByAFileHoldsUpSavesOnlyUntilItGoes) {
    // No file can be under a file: the history is missing, not unreadable.
    fs::path blocked = folder.path() / "data";
    AtomicFile::write(blocked, "a file where a folder should be");
    UsageKeeper keeper(blocked / "inner", clock, workspace, log);
    EXPECT_FALSE(keeper.problem());
    keeper.start();
    for (int pass = 0; pass < 3; ++pass) {
        watchFiveSeconds(keeper);
        keeper.saveIfChanged();
    }
    EXPECT_TRUE(keeper.recorder().hasUnsavedChanges());
    EXPECT_EQ(lines(), std::vector<std::string>{"could not save the usage history"}) << "the first of a run only";

    fs::remove(blocked);
    keeper.saveIfChanged();
    keeper.saveIfChanged();  // nothing changed: no line, no failure
    EXPECT_FALSE(keeper.recorder().hasUnsavedChanges());
    EXPECT_TRUE(fs::exists(blocked / "inner" / "history.json"));
    EXPECT_EQ(lines().back(), "saving the usage history works again");
    EXPECT_EQ(lines().size(), 2u);
}

TEST_F(UsageKeeperTest, ClearingRemovesBothFilesAndWritesAnEmptyHistory) {
    AtomicFile::write(broken(), "old");
    UsageKeeper keeper = make();
    keeper.start();
    watchFiveSeconds(keeper);
    keeper.saveIfChanged();
    ASSERT_FALSE(onDisk().days.empty());
    clock.advance(3600);
    keeper.clearHistory();
    EXPECT_FALSE(fs::exists(broken()));
    UsageHistory cleared = onDisk();
    EXPECT_EQ(cleared.began, clock.now());
    EXPECT_TRUE(cleared.days.empty());
    EXPECT_TRUE(keeper.recorder().history().days.empty());
    EXPECT_FALSE(keeper.recorder().hasUnsavedChanges());
    EXPECT_EQ(out.str(), "10:00:05 usage history cleared\n");
}

}  // namespace
}  // namespace ashview
