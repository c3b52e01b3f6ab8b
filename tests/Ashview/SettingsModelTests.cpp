#include "Ashview/Shell/SettingsModel.h"

#include "Ashview/Shell/DaysOffEditor.h"
#include "Ashview/Shell/SettingsContent.h"
#include "Ashview/Shell/SettingsWindow.h"
#include "Ashview/Shell/SiteEditor.h"
#include "Ashview/Shell/StatsPage.h"
#include "ControllerFixture.h"
#include "Platform/Sim/SimAppServices.h"
#include "Scenario/HeadlessViews.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

namespace ashview {
namespace {

class SettingsModelTest : public ControllerTest {
protected:
    SettingsModel::Services services() {
        if (!controller) start();
        return SettingsModel::Services{*controller, appMonitor, defaults, apps.workspace(), apps.openPanel(),
                                       desktop.mainLoop()};
    }
    SettingsModel& model() {
        if (!settings) settings = std::make_unique<SettingsModel>(services());
        return *settings;
    }
    std::string rulesBytes() const {
        std::ifstream in(folder.path() / "rules.json");
        return {std::istreambuf_iterator<char>(in), {}};
    }
    const SiteRule& listed(const std::string& host) {
        controller->addSite(host);
        model().reload();
        return model().rules().sites.back();
    }

    SimUserDefaults defaults;
    std::unique_ptr<SettingsModel> settings;
};

TEST_F(SettingsModelTest, ThePageIsRestoredKeptAndFallsBackOnTheFirstSite) {
    start();
    EXPECT_EQ(model().page(), std::nullopt);
    EXPECT_EQ(model().title(), "Drabwise Settings");
    EXPECT_FALSE(defaults.has(SettingsModel::pageKey));

    const SiteRule first = listed("first.example");
    const SiteRule second = listed("second.example");
    model().setPage(SettingsModel::Page::forSite(second.id));
    EXPECT_EQ(defaults.stringValue(SettingsModel::pageKey), second.id.text());
    EXPECT_EQ(model().title(), "second.example");

    struct Case {
        std::optional<std::string> stored;
        std::optional<SettingsModel::Page> page;
    };
    for (const Case& c : std::vector<Case>{
             {"stats", SettingsModel::Page::stats()},
             {"newSites", SettingsModel::Page::newSites()},
             {"daysOff", SettingsModel::Page::daysOff()},
             {second.id.text(), SettingsModel::Page::forSite(second.id)},
             {Uuid::random().text(), SettingsModel::Page::forSite(first.id)},
             {std::nullopt, SettingsModel::Page::forSite(first.id)},
         }) {
        if (c.stored)
            defaults.setString(SettingsModel::pageKey, *c.stored);
        else
            defaults.remove(SettingsModel::pageKey);
        EXPECT_EQ(SettingsModel(services()).page(), c.page) << c.stored.value_or("nothing");
    }

    model().setShowsCustomDays(true);
    model().setPage(SettingsModel::Page::forSite(second.id));
    EXPECT_FALSE(model().showsCustomDays()) << "a page change clears the custom days";
    controller->removeSite(second);
    model().reload();
    EXPECT_EQ(model().page(), SettingsModel::Page::forSite(first.id));
}

TEST_F(SettingsModelTest, RefusedAddsSayWhyAndLeaveTheFileAsItWas) {
    start();
    listed("news.example");
    const std::string before = rulesBytes();
    struct Case {
        std::string typed;
        std::string message;
    };
    for (const Case& c : std::vector<Case>{
             {"news.example", "That site is already on your list."},
             {"not a host", "Type a web address such as example.com."},
             {"", "Type a web address such as example.com."},
         }) {
        model().setNewHost(c.typed);
        model().addTypedSite();
        EXPECT_EQ(model().addMessage(), c.message) << c.typed;
        EXPECT_EQ(model().newHost(), c.typed);
    }
    // A rules file that can't be written: its path is taken by a folder.
    std::filesystem::remove(folder.path() / "rules.json");
    std::filesystem::create_directory(folder.path() / "rules.json");
    model().setNewHost("video.example");
    model().addTypedSite();
    EXPECT_EQ(model().addMessage(), "Could not save.");
    EXPECT_EQ(controller->rules().sites.size(), 1u);
    std::filesystem::remove(folder.path() / "rules.json");
    std::ofstream(folder.path() / "rules.json") << before;

    model().addTypedSite();
    EXPECT_EQ(model().addMessage(), std::nullopt);
    EXPECT_EQ(model().newHost(), "");
    ASSERT_EQ(controller->rules().sites.size(), 2u);
    EXPECT_EQ(model().page(), SettingsModel::Page::forSite(controller->rules().sites[1].id));
    EXPECT_NE(rulesBytes(), before);
}

TEST_F(SettingsModelTest, NothingIsSavedWhileTheRulesFileHasAProblem) {
    std::ofstream(folder.path() / "rules.json") << R"({"schemaVersion": 99})";
    start();
    const std::string before = rulesBytes();
    EXPECT_EQ(SettingsContent::detail(model()), SettingsContent::Detail::problem);
    model().setPage(SettingsModel::Page::newSites());
    EXPECT_EQ(SettingsContent::detail(model()), SettingsContent::Detail::problem) << "no editor is reachable";
    EXPECT_FALSE(model().save(RuleSet::fresh()));
    model().setNewHost("news.example");
    model().addTypedSite();
    EXPECT_EQ(model().addMessage(), "Could not save.");
    EXPECT_EQ(rulesBytes(), before);
}

TEST_F(SettingsModelTest, TheFrontSiteIsOfferedOnlyWhileABrowserCanBeRead) {
    start();
    EXPECT_EQ(model().frontSiteToAdd(), std::nullopt);
    open("www.example.com", {0, 0, 800, 600});
    controller->read();
    EXPECT_EQ(model().frontSiteToAdd(), "example.com");
    apps.setPermission(chrome, SimPermission::denied);
    controller->read();
    EXPECT_EQ(model().frontSiteToAdd(), std::nullopt);
    apps.setPermission(chrome, SimPermission::allowed);
    controller->read();
    model().addFrontSite();
    EXPECT_EQ(model().rules().sites.at(0).host, "example.com");
    EXPECT_EQ(model().frontSiteToAdd(), std::nullopt);
    EXPECT_EQ(SettingsContent::addArea(model()).frontSite.has_value(), false);
}

TEST_F(SettingsModelTest, AppsComeFromTheAppUsedLastOrThePanelAndAreRefusedWithReasons) {
    start();
    openGame({0, 0, 400, 300});
    apps.activate(gamePID);
    ASSERT_EQ(model().appToAdd(), (SettingsModel::AppToAdd{"com.example.Game", "Game"}));
    EXPECT_EQ(SettingsContent::addArea(model()).app->toolTip, "Add Game, the app you used last, to your list");
    model().addApp("com.example.Game", "Game");
    EXPECT_EQ(model().appToAdd(), std::nullopt) << "a listed app is not offered again";
    model().addApp("com.example.Game", "Game");
    EXPECT_EQ(model().addMessage(), "That app is already on your list.");

    apps.registerBundle("com.example.Chat", "/Applications/Chat.app");
    struct Case {
        std::optional<std::string> chosen;
        std::optional<std::string> message;
    };
    for (const Case& c : std::vector<Case>{
             {"/Applications/Unknown.app", "That app can't be added."},
             {"/Applications/Chat.app", std::nullopt},
         }) {
        apps.setOpenPanelResult(OpenPanelResult{1, c.chosen});
        model().chooseApp();
        EXPECT_EQ(model().addMessage(), c.message) << c.chosen.value_or("");
    }
    EXPECT_EQ(model().rules().sites.back().name, "Chat");
    model().addApp("com.google.Chrome", "Chrome");
    EXPECT_EQ(model().addMessage(), "Browsers are covered site by site. Add the sites instead.");
}

TEST_F(SettingsModelTest, DaysOffAreAddedWithTheFormsFieldsAndDescribed) {
    start();
    Calendar calendar = desktop.mainLoop().calendar();
    model().setDayOffName("  ");
    model().setDayOffDate(*calendar.date(2026, 12, 25, 12));
    model().addTypedDayOff();
    model().setDayOffName("Launch");
    model().setDayOffEveryYear(false);
    model().addTypedDayOff();
    std::vector<DaysOffEditor::Row> rows = DaysOffEditor(model()).rows();
    ASSERT_EQ(rows.size(), 2u);
    EXPECT_EQ(rows[0].name, "Day off") << "an empty name is kept empty and shown as a day off";
    EXPECT_EQ(model().rules().daysOff[0].name, "");
    EXPECT_EQ(rows[0].date, "December 25, every year");
    EXPECT_EQ(rows[1].date, "December 25, 2026");
    EXPECT_EQ(model().dayOffName(), "");
    EXPECT_FALSE(model().dayOffEveryYear()) << "date and repeat stay as they were";
    DaysOffEditor(model()).remove(rows[0].id);
    EXPECT_EQ(model().rules().daysOff.size(), 1u);
}

TEST_F(SettingsModelTest, TheSiteEditorPinsResetsAndRemovesThroughTheFile) {
    start();
    SiteRule rule = listed("news.example");
    SiteEditor editor(model(), rule);
    editor.choosePin(SitePin::showInColor);
    RuleEditor form = SiteEditor(model(), model().rules().sites[0]).ruleEditor();
    form.chooseTimeOfDay(RuleEditor::TimeOfDay::certainHours);
    EXPECT_FALSE(model().rules().sites[0].usesNewSiteDefaults);
    EXPECT_EQ(RuleStore(folder.path()).load(), controller->rules());
    SiteEditor(model(), model().rules().sites[0]).useNewSiteDefaultsAgain();
    EXPECT_TRUE(model().rules().sites[0].usesNewSiteDefaults);
    EXPECT_EQ(model().rules().sites[0].pin, SitePin::showInColor) << "the pin survives a reset";
    SiteEditor(model(), model().rules().sites[0]).remove();
    EXPECT_TRUE(RuleStore(folder.path()).load().sites.empty());
}

TEST_F(SettingsModelTest, ShowingInColorIsToldPerSite) {
    start();
    open("news.example", {0, 0, 800, 600});
    listSite("news.example");
    model().reload();
    EXPECT_EQ(model().statusText(model().rules().sites[0]), "Gray now");
    controller->showInColor(5);
    EXPECT_EQ(model().statusText(model().rules().sites[0]), "Showing in color for now");
}

TEST_F(SettingsModelTest, TheStatisticsPageNamesRowsAndClearsAfterConfirmation) {
    start();
    open("news.example", {0, 0, 800, 600});
    listSite("news.example");
    advance(3600);
    controller->read();
    model().refreshStatistics();
    StatsPage page = StatsPage::make(model());
    EXPECT_EQ(page.lead, "Today so far: 1h, 1 visit");
    EXPECT_TRUE(page.canClear);
    model().clearHistory();
    EXPECT_EQ(StatsPage::make(model()).lead, "Today so far: <1m, 0 visits");
    EXPECT_EQ(StatsPage::text(UsageKeeper::Problem::unreadable),
              "Your history couldn't be read, so it's left as it is. This shows only what was counted since Drabwise "
              "started, and it isn't saved.");
}

TEST_F(SettingsModelTest, TheWindowOpensOnAPageAndItsTitleFollows) {
    start();
    SiteRule rule = listed("news.example");
    SimApplicationShell application;
    HeadlessViews views;
    SettingsWindow window(services(), application, views);
    EXPECT_EQ(views.settings, nullptr) << "no window before the first showing";
    window.show(rule);
    ASSERT_NE(views.settings, nullptr);
    EXPECT_EQ(views.settings->title, "news.example");
    EXPECT_EQ(application.activations, 1);
    window.showStats();
    EXPECT_EQ(views.settings->title, "Last 7 Days");
    EXPECT_EQ(views.settings->presentations, 2);
    controller->addSite("video.example");
    EXPECT_EQ(window.model().rules().sites.size(), 2u) << "a rule change reloads the model";
}

}  // namespace
}  // namespace ashview
