#include "Ashview/AppDelegate.h"

#include "Ashview/InstanceLock.h"
#include "Ashview/GrayController.h"
#include "Platform/Sim/SimAppServices.h"
#include "Platform/Sim/SimApplications.h"
#include "Platform/Sim/SimDesktop.h"
#include "TempFolder.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

namespace ashview {
namespace {

/// One launch of the program with simulated services, in a user data folder
/// of its own; the environment is put back afterwards.
class AppStart : public ::testing::Test {
protected:
    void SetUp() override {
        for (const char* name : {"XDG_DATA_HOME", "DRABWISE_DATA_DIR"}) {
            const char* value = std::getenv(name);
            saved_.emplace_back(name, value ? std::optional<std::string>(value) : std::nullopt);
        }
        ::setenv("XDG_DATA_HOME", home.path().c_str(), 1);
        ::unsetenv("DRABWISE_DATA_DIR");
    }
    void TearDown() override {
        for (const auto& [name, value] : saved_) {
            if (value) {
                ::setenv(name.c_str(), value->c_str(), 1);
            } else {
                ::unsetenv(name.c_str());
            }
        }
        for (const auto& folder : {home.path() / "Drabwise", custom.path()}) InstanceLock::letGo(folder);
    }

    struct Copy {
        SimDesktop desktop;
        SimApplications apps{desktop};
        SimUpdater updater;
        SimLoginItemService loginItems;
        SimUserDefaults defaults;
        SimApplicationShell application;
        std::ostringstream errors;
        AppDelegate delegate{{updater, loginItems, defaults, application, errors,
                              AppDelegate::Desktop{desktop.clock(), desktop.windowServer(), desktop.overlayWindows(),
                                                   desktop.workspaceNotifications(),
                                                   desktop.distributedNotifications(), apps.workspace(),
                                                   apps.appleEvents(), apps.accessibility()}}};
    };

    TempFolder home;
    TempFolder custom;

private:
    std::vector<std::pair<std::string, std::optional<std::string>>> saved_;
};

TEST_F(AppStart, MovesTheOlderFolderThenStartsTheUpdaterAndTheLoginItem) {
    std::filesystem::create_directories(home.path() / "Ashview");
    std::ofstream(home.path() / "Ashview" / "rules.json") << "{}";
    Copy copy;
    copy.updater.failure = "the feed cannot be reached";
    copy.delegate.applicationDidFinishLaunching();

    EXPECT_EQ(copy.errors.str(),
              "moved the data folder from Ashview to Drabwise\n"
              "not checking for updates: the feed cannot be reached\n");
    EXPECT_TRUE(std::filesystem::exists(home.path() / "Drabwise" / "rules.json"));
    EXPECT_FALSE(std::filesystem::exists(home.path() / "Ashview"));
    EXPECT_EQ(copy.delegate.store()->directory, home.path() / "Drabwise");
    EXPECT_TRUE(copy.delegate.isRunning());
    EXPECT_EQ(copy.updater.starts, 1);
    EXPECT_EQ(copy.loginItems.registrations, 1);
    EXPECT_TRUE(copy.defaults.boolValue("RegisteredAsLoginItem"));
    EXPECT_TRUE(copy.application.alerts.empty());
    ASSERT_NE(copy.delegate.controller(), nullptr);
    EXPECT_EQ(copy.delegate.controller()->store().directory, home.path() / "Drabwise");
}

TEST_F(AppStart, LeavesTheOlderFolderWhenTheNewOneExistsOrAnotherFolderIsChosen) {
    std::filesystem::create_directories(home.path() / "Ashview");
    std::filesystem::create_directories(home.path() / "Drabwise");
    Copy normal;
    normal.delegate.applicationDidFinishLaunching();
    EXPECT_EQ(normal.errors.str(), "");
    EXPECT_TRUE(std::filesystem::exists(home.path() / "Ashview"));
    EXPECT_TRUE(std::filesystem::is_empty(home.path() / "Ashview"));

    // A chosen data folder is a separate copy with its own lock, and the
    // older folder is not looked at.
    ::setenv("DRABWISE_DATA_DIR", custom.path().c_str(), 1);
    Copy chosen;
    chosen.delegate.applicationDidFinishLaunching();
    EXPECT_TRUE(chosen.delegate.isRunning());
    EXPECT_EQ(chosen.delegate.store()->directory, custom.path());
    EXPECT_TRUE(std::filesystem::exists(home.path() / "Ashview"));
    EXPECT_TRUE(std::filesystem::exists(custom.path() / ".drabwise.lock"));
}

TEST_F(AppStart, ASecondCopyOnTheSameFolderOnlyAlertsAndEnds) {
    Copy first;
    first.delegate.applicationDidFinishLaunching();
    Copy second;
    second.delegate.applicationDidFinishLaunching();

    EXPECT_EQ(second.application.alerts,
              (std::vector<SimApplicationShell::Alert>{{"Drabwise is already running", "Look for it in the menu bar."}}));
    EXPECT_EQ(second.application.activations, 1);
    EXPECT_EQ(second.application.terminations, 1);
    EXPECT_FALSE(second.delegate.isRunning());
    EXPECT_EQ(second.delegate.controller(), nullptr);
    EXPECT_EQ(second.updater.starts, 0);
    EXPECT_EQ(second.loginItems.registrations, 0);
    EXPECT_EQ(second.errors.str(), "");

    EXPECT_TRUE(first.delegate.isRunning());
    EXPECT_EQ(first.application.terminations, 0);
}

}  // namespace
}  // namespace ashview
