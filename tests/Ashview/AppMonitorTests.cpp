#include "Ashview/Shell/AppChooser.h"
#include "Ashview/Shell/AppIcons.h"
#include "Ashview/Reading/AppMonitor.h"

#include "AshviewOverlay/WindowList.h"
#include "ReadingFixture.h"
#include "TempFolder.h"

#include <gmock/gmock.h>

#include <fstream>

namespace ashview {
namespace {

using ::testing::ElementsAre;
namespace fs = std::filesystem;

class AppMonitorTest : public ReadingFixture {
protected:
    AppMonitorTest() {
        rules.addSite("mail.example.com");
        rules.addApp("com.example.Notes", "Notes");
        rules.addApp(chrome, "Chrome as an app");
        rules.addApp(SimApplications::defaultOwnBundleIdentifier, "Myself");
        monitor = std::make_unique<AppMonitor>(rules, apps.workspace(), desktop.windowServer());
        monitor->onChange = [this](const std::string& reason) { changes.push_back(reason); };
    }
    std::string webApp(const std::string& name, const std::string& plistBody) {
        fs::path bundle = folder.path() / (name + ".app");
        fs::create_directories(bundle / "Contents");
        std::ofstream(bundle / "Contents/Info.plist")
            << "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict>" << plistBody << "</dict></plist>";
        return bundle.string();
    }
    RunningApplication app(std::int32_t pid) { return *apps.application(pid); }

    TempFolder folder;
    RuleSet rules = RuleSet::fresh();
    std::unique_ptr<AppMonitor> monitor;
    std::vector<std::string> changes;
};

TEST_F(AppMonitorTest, ListsAppsByTheirRuleAndWebAppsUnderTheirSitesRule) {
    std::int32_t notes = apps.launchApp("com.example.Notes", "Notes");
    std::int32_t browserAsApp = apps.launchBrowser(chrome);
    std::int32_t plain = apps.launchApp("com.example.Other", "Other");
    std::int32_t nameless = apps.launch(SimAppSetup{"", "tool", 0, std::nullopt, std::nullopt, false});
    std::int32_t mail = apps.launchApp("com.apple.Safari.WebApp.1A2B", "Mail", 0,
                                       webApp("Mail", "<key>Manifest_Start_URL</key><string>https://mail.example.com/u/0</string>"));
    std::int32_t news = apps.launchApp("com.apple.Safari.WebApp.9Z", "News", 0,
                                       webApp("News", "<key>StartURL</key><string>https://news.example.org</string>"));
    // A shim whose running bundle says nothing; the system's copy knows the site.
    apps.registerBundle("com.google.Chrome.app.xyz",
                        webApp("Shim", "<key>CrAppModeShortcutURL</key><string>https://Mail.Example.com/</string>"));
    std::int32_t shim = apps.launchApp("com.google.Chrome.app.xyz", "Shim", 0, webApp("Empty", ""));
    desktop.setProcessIdentifier(apps.launchApp(SimApplications::defaultOwnBundleIdentifier, "Drabwise"));

    // A browser is never an app here; News's site is not listed.
    const std::pair<std::int32_t, std::optional<std::string>> keys[] = {
        {notes, "app:com.example.Notes"}, {browserAsApp, std::nullopt}, {plain, std::nullopt},
        {nameless, std::nullopt}, {mail, "mail.example.com"}, {news, std::nullopt}, {shim, "mail.example.com"}};
    for (const auto& [pid, key] : keys) EXPECT_EQ(monitor->key(app(pid)), key) << app(pid).bundleIdentifier.value_or("");
    auto listed = monitor->running();
    ASSERT_EQ(listed.size(), 3u);  // this program is never listed
    EXPECT_EQ(listed[mail], (ListedProcess{"com.apple.Safari.WebApp.1A2B", "mail.example.com"}));
    // Ordinary apps never cost a look at their files; web apps only once.
    std::size_t lookups = apps.bundleLookups();
    monitor->running();
    EXPECT_EQ(apps.bundleLookups(), lookups);
    EXPECT_EQ(monitor->webApps().known().size(), 3u);

    // New rules count at once; a web app seen before is not read again.
    RuleSet more = rules;
    more.addSite("example.org");
    monitor->setRules(more);
    EXPECT_EQ(monitor->key(app(news)), "example.org");
    EXPECT_EQ(apps.bundleLookups(), lookups);
}

TEST_F(AppMonitorTest, KeepsOnlyLargeVisibleNormalWindowsOfListedApps) {
    std::int32_t notes = apps.launchApp("com.example.Notes", "Notes");
    std::int32_t other = apps.launchApp("com.example.Other", "Other");
    std::int64_t main = apps.openWindow(notes, Rect{100, 100, 600, 400});
    std::int64_t exact = apps.openWindow(notes, Rect{0, 30, 50, 50});
    apps.openWindow(notes, Rect{0, 30, 49.9, 300});
    apps.openWindow(notes, Rect{0, 30, 300, 49.9});
    std::int64_t panel = apps.openWindow(notes, Rect{0, 30, 300, 300});
    desktop.setLayer(panel, 3);
    std::int64_t clear = apps.openWindow(notes, Rect{0, 30, 300, 300});
    desktop.setAlpha(clear, 0.0);
    apps.openWindow(other, Rect{0, 30, 300, 300});
    EXPECT_TRUE(monitor->windows({}).empty());

    WindowList list(desktop.windowServer());
    auto windows = monitor->windows(list.stack());
    ASSERT_EQ(windows.size(), 2u);
    EXPECT_EQ(windows[0].key, (WindowKey{"com.example.Notes", exact}));
    EXPECT_EQ(windows[0].host, "app:com.example.Notes");
    EXPECT_EQ(windows[1].screenWindow, (ForeignWindow{main, Rect{100, 400, 600, 400}, true}));

    // No window on screen: no window, but still running.
    apps.hide(notes);
    EXPECT_TRUE(monitor->windows(list.stack()).empty());
    EXPECT_EQ(monitor->running().size(), 1u);
}

TEST_F(AppMonitorTest, SpeaksOnlyOfListedAppsAndRemembersTheLastUsedRegularApp) {
    std::int32_t notes = apps.launchApp("com.example.Notes", "Notes");
    std::int32_t finder = apps.launchApp("com.apple.finder", "Finder");
    apps.setFrontmost(notes);
    monitor->start();
    EXPECT_THAT(changes, ElementsAre("a listed app is open"));
    EXPECT_EQ(monitor->lastUsed()->processIdentifier, notes);

    std::int32_t s = apps.launchBrowser(safari);
    std::int32_t agent = apps.launchApp("com.example.Agent", "Agent", 2);
    std::int32_t other = apps.launchApp("com.example.Other", "Other");
    apps.activate(finder);
    apps.activate(agent);
    EXPECT_EQ(monitor->lastUsed()->processIdentifier, notes) << "neither the Finder nor an agent counts";
    apps.activate(s);
    EXPECT_EQ(monitor->lastUsed()->processIdentifier, s);
    EXPECT_EQ(monitor->lastUsedNonBrowser()->processIdentifier, notes);
    apps.activate(other);
    apps.quit(other);
    EXPECT_EQ(monitor->lastUsedNonBrowser()->processIdentifier, other) << "remembered after it quits";

    apps.activate(notes);
    apps.hide(notes);
    apps.unhide(notes);
    apps.quit(notes);
    apps.post(ApplicationEvent::didTerminate, std::nullopt);
    EXPECT_THAT(changes, ElementsAre("a listed app is open", "a listed app became active", "a listed app was hidden",
                                     "a listed app was shown", "a listed app quit"));
    apps.launchApp("com.example.Notes", "Notes");
    EXPECT_EQ(changes.back(), "a listed app opened");
}

TEST_F(AppMonitorTest, AQuitWebAppIsReadAfreshAtItsNextLaunch) {
    std::string bundle = webApp("Mail", "<key>StartURL</key><string>https://mail.example.com</string>");
    std::int32_t first = apps.launchApp("com.apple.Safari.WebApp.M", "Mail", 0, bundle);
    monitor->start();
    EXPECT_EQ(monitor->key(app(first)), "mail.example.com");
    // The user rebuilds the web app for another site under the same identifier.
    webApp("Mail", "<key>StartURL</key><string>https://elsewhere.example</string>");
    apps.quit(first);
    EXPECT_EQ(changes.back(), "a listed app quit");
    EXPECT_FALSE(monitor->webApps().known().count("com.apple.Safari.WebApp.M"));
    std::int32_t second = apps.launchApp("com.apple.Safari.WebApp.M", "Mail", 0, bundle);
    EXPECT_EQ(monitor->key(app(second)), std::nullopt);
}

TEST_F(AppMonitorTest, ChooserRefusesItselfAndBrowsersAndIconsAreLookedUpOnce) {
    EXPECT_EQ(AppChooser::refusal("app.me", std::string("app.me")), "Drabwise can't be on its own list.");
    EXPECT_EQ(AppChooser::refusal("com.apple.Safari", std::string("app.me")),
              "Browsers are covered site by site. Add the sites instead.");
    EXPECT_EQ(AppChooser::refusal("com.apple.safari", std::nullopt), std::nullopt);
    EXPECT_EQ(AppChooser::refusal("com.example.Notes", std::string("app.me")), std::nullopt);

    AppIcons icons(apps.workspace());
    apps.registerBundle("com.example.Notes", "/Applications/Notes.app");
    for (int round = 0; round < 2; ++round) {
        auto icon = icons.icon("com.example.Notes");
        ASSERT_TRUE(icon);
        EXPECT_EQ(dynamic_cast<const SimIcon&>(*icon).path, "/Applications/Notes.app");
        EXPECT_EQ(icons.icon("com.example.Missing"), nullptr);
    }
    EXPECT_EQ(apps.bundleLookups(), 2u) << "found or not, each app is looked up once";
    EXPECT_EQ(apps.iconLookups(), 1u);
}

}  // namespace
}  // namespace ashview
