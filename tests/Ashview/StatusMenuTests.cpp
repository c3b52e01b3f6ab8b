#include "Ashview/Shell/StatusMenu.h"

#include "ControllerFixture.h"
#include "Platform/Sim/SimAppServices.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>

namespace ashview {
namespace {

class StatusMenuTest : public ControllerTest {
protected:
    StatusMenu& menu() {
        if (!controller) start();
        if (!statusMenu) {
            statusMenu = std::make_unique<StatusMenu>(
                *controller, appMonitor, loginItems, desktop.mainLoop(), errors,
                StatusMenu::Actions{[this](const std::optional<SiteRule>& rule) { opened.push_back(rule); }, [] {},
                                    [] {}, [] {}});
        }
        return *statusMenu;
    }
    std::vector<MenuItem> build() { return menu().menuNeedsUpdate(); }
    /// The item at a title path, or null.
    static const MenuItem* find(const std::vector<MenuItem>& items, std::initializer_list<std::string> path) {
        const std::vector<MenuItem>* level = &items;
        const MenuItem* found = nullptr;
        for (const std::string& title : path) {
            found = nullptr;
            for (const MenuItem& item : *level)
                if (item.title == title) found = &item;
            if (!found) return nullptr;
            level = &found->submenu;
        }
        return found;
    }
    static std::vector<std::string> titles(const std::vector<MenuItem>& items) {
        std::vector<std::string> all;
        for (const MenuItem& item : items) all.push_back(item.isSeparator ? "--" : item.title);
        return all;
    }
    void choose(std::initializer_list<std::string> path) {
        std::vector<MenuItem> all = build();
        const MenuItem* item = find(all, path);
        ASSERT_NE(item, nullptr);
        item->handler();
    }

    SimLoginItemService loginItems;
    std::ostringstream errors;
    std::vector<std::optional<SiteRule>> opened;
    std::unique_ptr<StatusMenu> statusMenu;
};

TEST_F(StatusMenuTest, TheFirstLineSaysWhereTheProgramStands) {
    start();
    EXPECT_EQ(menu().statusText(), "No supported browser is open");
    apps.setPermission(chrome, SimPermission::denied);
    open("news.example", {0, 0, 800, 600});
    build();
    EXPECT_EQ(menu().statusText(), "Allow control of Google Chrome in System Settings › Privacy & Security › Automation");
    apps.setPermission(chrome, SimPermission::allowed);
    build();
    EXPECT_EQ(menu().statusText(), "No sites on your list yet");
    listSite("other.example");
    EXPECT_EQ(menu().statusText(), "1 site on your list");
    listSite("news.example");
    EXPECT_EQ(menu().statusText(), "news.example: Gray now");
    listSite("third.example");
    controller->addSite("fourth.example");
    controller->removeSite(*controller->rules().site("news.example"));
    EXPECT_EQ(menu().statusText(), "3 sites on your list");
    controller->showInColor(5);
    EXPECT_EQ(menu().statusText(), "Showing every site in color");
}

TEST_F(StatusMenuTest, ABrokenRulesFileIsToldBeforeAnythingElse) {
    std::ofstream(folder.path() / "rules.json") << "{ not json";
    start();
    EXPECT_EQ(menu().statusText(), "Your rules file couldn't be read, so it was left as it is");
}

TEST_F(StatusMenuTest, TheFrontWindowsSiteIsOfferedWithoutWwwThenKeptGrayAndBack) {
    start();
    open("www.example.com", {0, 0, 800, 600});
    std::vector<MenuItem> items = build();
    EXPECT_EQ(titles(items)[2], "--");
    EXPECT_EQ(titles(items)[3], "Add example.com to your list");
    EXPECT_EQ(titles(items)[4], "Gray this window, all tabs");

    choose({"Add example.com to your list"});
    ASSERT_EQ(opened.size(), 1u);
    ASSERT_TRUE(opened[0]);
    EXPECT_EQ(opened[0]->host, "example.com");

    items = build();
    ASSERT_NE(find(items, {"Keep example.com gray"}), nullptr);
    EXPECT_FALSE(find(items, {"Keep example.com gray"})->checked);
    choose({"Keep example.com gray"});
    EXPECT_EQ(controller->rules().sites[0].pin, SitePin::grayThisSite);
    EXPECT_TRUE(find(build(), {"Keep example.com gray"})->checked);
    choose({"Keep example.com gray"});
    EXPECT_EQ(controller->rules().sites[0].pin, SitePin::followSettings);

    choose({"Edit example.com's rule…"});
    EXPECT_EQ(opened.back()->host, "example.com");
    choose({"Your sites and apps", "example.com", "Remove"});
    EXPECT_TRUE(controller->rules().sites.empty());
    EXPECT_NE(find(build(), {"Your sites and apps", "Add a website: open it in your browser, then choose Add"}), nullptr);
}

TEST_F(StatusMenuTest, ABlankTabKeepsOnlyGrayThisWindow) {
    start();
    if (!chromePID) chromePID = apps.launchBrowser(chrome);
    apps.openWindow(chromePID, {0, 0, 800, 600});
    std::vector<MenuItem> items = build();
    EXPECT_EQ(titles(items)[2], "--");
    EXPECT_EQ(titles(items)[3], "Gray this window, all tabs");
    choose({"Gray this window, all tabs"});
    EXPECT_TRUE(find(build(), {"Gray this window, all tabs"})->checked);
}

TEST_F(StatusMenuTest, TheAppUsedLastIsOfferedOnceAndNeverABrowser) {
    start();
    openGame({0, 0, 400, 300});
    apps.activate(gamePID);
    std::vector<MenuItem> items = build();
    EXPECT_EQ(titles(items)[0], "No supported browser is open");
    ASSERT_NE(find(items, {"Add Game to your list"}), nullptr);
    choose({"Add Game to your list"});
    ASSERT_TRUE(opened.back());
    EXPECT_EQ(opened.back()->host, "app:com.example.Game");
    std::vector<std::string> shown = titles(build());
    EXPECT_EQ(std::count(shown.begin(), shown.end(), "Keep Game gray"), 1);

    open("news.example", {0, 0, 800, 600});
    apps.activate(chromePID);
    items = build();
    EXPECT_EQ(find(items, {"Keep Game gray"}), nullptr) << "a browser used last offers no app items";
}

TEST_F(StatusMenuTest, ShowingInColorTurnsTheSubmenuIntoAResumeItem) {
    start();
    open("news.example", {0, 0, 800, 600});
    listSite("news.example");
    std::vector<MenuItem> items = build();
    const MenuItem* colors = find(items, {"Show in color for"});
    ASSERT_NE(colors, nullptr);
    EXPECT_EQ(titles(colors->submenu), (std::vector<std::string>{"2 minutes", "5 minutes", "10 minutes", "15 minutes",
                                                                  "30 minutes", "Rest of this browsing session"}));
    choose({"Show in color for", "Rest of this browsing session"});
    EXPECT_NE(find(build(), {"Resume graying (color until you quit your browsers)"}), nullptr);
    EXPECT_EQ(menu().statusText(), "Showing every site in color");

    choose({"Resume graying (color until you quit your browsers)"});
    EXPECT_FALSE(controller->showInColorUntil());
    choose({"Show in color for", "5 minutes"});
    Instant until = desktop.clock().now() + 300;
    EXPECT_NE(find(build(), {"Resume graying (color until " + desktop.clock().calendar().shortTimeText(until) + ")"}),
              nullptr);
    advance(5 * 60);
    EXPECT_NE(find(build(), {"Show in color for"}), nullptr);
}

TEST_F(StatusMenuTest, OpenAtLoginOnlyForAnInstalledCopyAndTogglesTheSystemsState) {
    loginItems.folder = "/Users/sim/Downloads";
    EXPECT_EQ(find(build(), {"Open at Login"}), nullptr);
    loginItems.folder = "/Applications";
    choose({"Open at Login"});
    EXPECT_TRUE(loginItems.enabled);
    EXPECT_TRUE(find(build(), {"Open at Login"})->checked);
    std::vector<MenuItem> items = build();
    EXPECT_EQ(items.back().systemAction, SystemAction::quit);
    EXPECT_EQ(items.back().keyEquivalent, "q");
    EXPECT_EQ(find(items, {"Settings…"})->keyEquivalent, ",");
}

}  // namespace
}  // namespace ashview
