#include "Ashview/Shell/SetupWindow.h"

#include "Platform/Sim/SimAppServices.h"
#include "Platform/Sim/SimApplications.h"
#include "Platform/Sim/SimDesktop.h"
#include "Scenario/HeadlessViews.h"

#include <gtest/gtest.h>

namespace ashview {
namespace {

constexpr const char* chrome = "com.google.Chrome";
constexpr const char* safari = "com.apple.Safari";
constexpr const char* edge = "com.microsoft.edgemac";
constexpr const char* brave = "com.brave.Browser";
const std::string privacyPane = "x-apple.systempreferences:com.apple.preference.security?";

/// A desktop with browsers installed, and the setup window made over the
/// browsers installed when it is first asked for, as at the program's start.
struct SetupDesk {
    /// Installs a catalog browser; with a permission it also runs, so that
    /// the system can tell.
    void install(const std::string& id, std::optional<SimPermission> permission) {
        apps.registerBundle(id, "/Applications/" + id + ".app");
        if (!permission) return;
        apps.launchBrowser(id);
        apps.setPermission(id, *permission);
    }
    SetupWindow& window() {
        if (!window_) {
            window_ = std::make_unique<SetupWindow>(
                SetupWindow::Services{{apps.workspace(), apps.appleEvents(), apps.accessibility(), desktop.mainLoop()},
                                      defaults,
                                      application,
                                      views},
                SetupModel::installedCatalog(apps.workspace()));
        }
        return *window_;
    }
    SetupModel& model() { return window().model(); }
    /// The rows as a person reads them: "Name: status [button]".
    std::vector<std::string> rows() {
        std::vector<std::string> lines;
        std::vector<SetupModel::Row> all = model().browserRows();
        all.push_back(model().accessibilityRow());
        for (const SetupModel::Row& row : all)
            lines.push_back((row.name.empty() ? "Accessibility" : row.name) + ": " + row.status +
                            (row.button ? " [" + *row.button + "]" : ""));
        return lines;
    }
    void press(const std::string& name) {
        std::vector<SetupModel::Row> all = model().browserRows();
        all.push_back(model().accessibilityRow());
        for (const SetupModel::Row& row : all)
            if ((row.name.empty() ? "Accessibility" : row.name) == name) return row.action();
        ADD_FAILURE() << "no row " << name;
    }
    std::size_t queries() const {
        std::size_t count = 0;
        for (const char* id : {chrome, safari, edge, brave}) count += apps.permissionQueries(id);
        return count;
    }

    SimDesktop desktop;
    SimApplications apps{desktop};
    SimUserDefaults defaults;
    SimApplicationShell application;
    HeadlessViews views;
    std::unique_ptr<SetupWindow> window_;
};

TEST(AutomationPermission, MapsTheQueryStatus) {
    using Access = AutomationPermission::Access;
    const std::vector<std::pair<std::int32_t, Access>> cases{
        {0, Access::allowed},    {-1743, Access::denied},   {-600, Access::notRunning},
        {-1744, Access::notAsked}, {1, Access::notAsked}, {-1, Access::notAsked},
    };
    for (const auto& [status, access] : cases) EXPECT_EQ(AutomationPermission::access(status), access) << status;
}

// Whether a browser lacks access, and with it whether the window comes up by
// itself at the start.
TEST(Setup, ShowsAtLaunchOnTheFirstRunAndWhileABrowserLacksAccess) {
    using P = std::optional<SimPermission>;
    constexpr P notRunning = std::nullopt;
    struct Case {
        const char* what;
        std::vector<std::pair<const char*, P>> browsers;
        bool seen;
        bool lacks;
    };
    const std::vector<Case> cases{
        {"first run, nothing installed", {}, false, false},
        {"first run, all allowed", {{chrome, SimPermission::allowed}}, false, false},
        {"seen, one allowed and one denied", {{chrome, SimPermission::allowed}, {safari, SimPermission::denied}}, true,
         false},
        {"seen, none running", {{chrome, notRunning}, {safari, notRunning}}, true, false},
        {"seen, a browser lost access", {{chrome, SimPermission::denied}, {safari, notRunning}}, true, true},
        {"seen, a browser not asked yet", {{edge, SimPermission::notDecided}}, true, true},
    };
    for (const Case& test : cases) {
        SCOPED_TRACE(test.what);
        SetupDesk desk;
        for (const auto& [id, permission] : test.browsers) desk.install(id, permission);
        desk.defaults.setBool(SetupWindow::seenKey, test.seen);
        bool shown = desk.window().showAtLaunchIfNeeded();
        EXPECT_EQ(desk.model().lacksBrowserAccess(), test.lacks);
        EXPECT_EQ(shown, !test.seen || test.lacks);
        EXPECT_EQ(desk.views.setup != nullptr && desk.views.setup->isShown, shown);
    }
}

TEST(Setup, EachRowOffersTheOneActionThatCanChangeIt) {
    SetupDesk desk;
    desk.install(safari, SimPermission::denied);
    desk.install(chrome, SimPermission::allowed);
    desk.install(brave, std::nullopt);
    desk.install(edge, SimPermission::notDecided);
    desk.apps.setTrusted(false);
    desk.window().show();
    EXPECT_EQ(desk.rows(), (std::vector<std::string>{
                               "Google Chrome: Allowed",
                               "Microsoft Edge: Not asked yet [Allow…]",
                               "Brave: Open Brave first",
                               "Safari: Not allowed [Open System Settings]",
                               "Accessibility: Not allowed [Allow…]",
                           }));

    desk.press("Safari");
    desk.press("Accessibility");
    EXPECT_EQ(desk.rows().back(), "Accessibility: Not allowed [Open System Settings]");
    desk.press("Accessibility");
    EXPECT_EQ(desk.apps.trustPrompts(), 1U) << "the second press opens System Settings, without a second prompt";
    EXPECT_EQ(desk.apps.openedURLs(),
              (std::vector<std::string>{privacyPane + "Privacy_Automation", privacyPane + "Privacy_Accessibility"}));
    EXPECT_EQ(desk.apps.consentPrompts(edge), 0U);

    desk.apps.setTrusted(true);
    desk.model().refresh();
    EXPECT_EQ(desk.rows().back(), "Accessibility: Allowed");
}

TEST(Setup, AllowWaitsForTheAnswerAndOnlyThenReadsIt) {
    SetupDesk desk;
    desk.install(chrome, SimPermission::notDecided);
    desk.window().show();
    int changes = 0;
    Signal::Connection heard = desk.model().changed.connect([&] { ++changes; });

    desk.press("Google Chrome");
    EXPECT_EQ(desk.rows().front(), "Google Chrome: Waiting for your answer…");
    EXPECT_EQ(changes, 1);
    // The user allows in the prompt; the timer's reads meanwhile change no row.
    desk.apps.setPermission(chrome, SimPermission::allowed);
    desk.desktop.clock().advance(3);
    EXPECT_EQ(desk.rows().front(), "Google Chrome: Waiting for your answer…");

    EXPECT_EQ(desk.desktop.clock().finishBackgroundWork(), 1U);
    EXPECT_EQ(desk.rows().front(), "Google Chrome: Allowed");
    EXPECT_TRUE(desk.model().asking().empty());
    EXPECT_FALSE(desk.model().lacksBrowserAccess());
    EXPECT_EQ(changes, 2);
}

TEST(Setup, APromptMayOutliveTheWindow) {
    SetupDesk desk;
    desk.install(chrome, SimPermission::notDecided);
    desk.window().show();
    desk.press("Google Chrome");
    desk.window_.reset();
    EXPECT_EQ(desk.desktop.clock().finishBackgroundWork(), 1U);
    EXPECT_EQ(desk.apps.consentPrompts(chrome), 1U);
}

TEST(Setup, RefreshesEverySecondOnlyWhileVisibleAndClosingCountsAsSeen) {
    SetupDesk desk;
    desk.install(chrome, SimPermission::allowed);
    desk.install(safari, SimPermission::allowed);
    desk.window().show();
    EXPECT_EQ(desk.application.activations, 1);
    EXPECT_EQ(desk.views.setup->title, "Set Up Drabwise");

    // Uninstalled while the window is open: gone at the next read. One
    // installed after the start never joins.
    desk.apps.removeBundle(safari);
    desk.install(edge, SimPermission::notDecided);
    desk.desktop.clock().advance(1);
    EXPECT_EQ(desk.rows().front(), "Google Chrome: Allowed");
    EXPECT_EQ(desk.model().browsers().size(), 1U);

    desk.views.setup->isCovered = true;
    std::size_t before = desk.queries();
    desk.desktop.clock().advance(5);
    EXPECT_EQ(desk.queries(), before) << "no query while the window cannot be seen";

    // The close button and "Done" do the same.
    for (bool byDone : {false, true}) {
        SCOPED_TRACE(byDone ? "Done" : "close button");
        desk.defaults.remove(SetupWindow::seenKey);
        desk.window().show();
        byDone ? desk.window().done() : desk.views.setup->close();
        EXPECT_TRUE(desk.defaults.boolValue(SetupWindow::seenKey));
        EXPECT_EQ(desk.desktop.clock().pendingCount(), 0U) << "the timer stops";
    }
    EXPECT_EQ(desk.views.setup->presentations, 3) << "one view, shown again";
}

}  // namespace
}  // namespace ashview
