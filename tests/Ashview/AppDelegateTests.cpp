#include "Ashview/App/AppDelegate.h"

#include "Ashview/App/InstanceLock.h"
#include "Ashview/Controller/GrayController.h"
#include "Platform/Sim/SimAppServices.h"
#include "Scenario/HeadlessViews.h"
#include "Platform/Sim/SimApplications.h"
#include "Platform/Sim/SimDesktop.h"
#include "ScopedVariable.h"
#include "TempFolder.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

namespace ashview {
namespace {

/// One launch of the program with simulated services, in a user data folder
/// of its own.
class AppStart : public ::testing::Test {
protected:
    void TearDown() override {
        for (const auto& folder : {home.path() / "Drabwise", custom.path()}) InstanceLock::letGo(folder);
    }

    struct Copy {
        SimDesktop desktop;
        SimApplications apps{desktop};
        SimUpdater updater;
        SimLoginItemService loginItems;
        SimUserDefaults defaults;
        SimApplicationShell application;
        HeadlessViews views;
        std::ostringstream errors;
        AppDelegate delegate{{updater, loginItems, defaults, application, views, errors,
                              AppDelegate::Desktop{desktop.clock(), desktop.windowServer(), desktop.overlayWindows(),
                                                   desktop.workspaceNotifications(),
                                                   desktop.distributedNotifications(), apps.workspace(),
                                                   apps.appleEvents(), apps.accessibility(), apps.openPanel()}}};
    };

    TempFolder home;
    TempFolder custom;
    ScopedVariable userData{"XDG_DATA_HOME", home.path().c_str()};
    ScopedVariable dataFolder{"DRABWISE_DATA_DIR", nullptr};
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
    EXPECT_TRUE(copy.delegate.isRunning());
    EXPECT_EQ(copy.updater.starts, 1);
    EXPECT_EQ(copy.loginItems.registrations, 1);
    EXPECT_TRUE(copy.application.alerts.empty());
    ASSERT_NE(copy.delegate.controller(), nullptr);
    EXPECT_EQ(copy.delegate.controller()->store().directory, home.path() / "Drabwise");
    ASSERT_NE(copy.views.setup, nullptr) << "the setup window shows at the first start";
    EXPECT_TRUE(copy.views.setup->isShown);
}

TEST_F(AppStart, AChosenDataFolderRunsBesideTheUsualOneAndLeavesTheOlderFolderAlone) {
    std::filesystem::create_directories(home.path() / "Ashview");
    std::filesystem::create_directories(home.path() / "Drabwise");
    Copy usual;
    usual.delegate.applicationDidFinishLaunching();
    ::setenv("DRABWISE_DATA_DIR", custom.path().c_str(), 1);
    Copy chosen;
    chosen.delegate.applicationDidFinishLaunching();
    EXPECT_TRUE(usual.delegate.isRunning());
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
    EXPECT_EQ(second.delegate.controller(), nullptr);
    EXPECT_EQ(second.updater.starts + second.loginItems.registrations, 0) << "nothing else is started";
    EXPECT_EQ(second.views.setup, nullptr);
    EXPECT_TRUE(first.delegate.isRunning());
    EXPECT_EQ(first.application.terminations, 0);
}

}  // namespace
}  // namespace ashview
