// The settings window's widgets bind to the settings model: a click or typing
// changes the rules file exactly as the model's command does, a refused edit
// shows its message and leaves the file as it was, every word comes from the
// models, and an app's pickers offer no browser choices.
#include "Ashview/Shell/DaysOffEditor.h"
#include "Ashview/Shell/SettingsContent.h"
#include "Ashview/Shell/SettingsText.h"
#include "Ashview/Shell/SiteEditor.h"
#include "Ashview/Shell/StatsPage.h"
#include "AshviewQt/Theme.h"
#include "AshviewCore/Foundation/Json.h"
#include "AshviewQt/SettingsSidebar.h"
#include "AshviewQt/SettingsWidget.h"

#include "ShellStage.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QDateEdit>
#include <QLabel>
#include <QImage>
#include <QLineEdit>
#include <QMessageBox>
#include <QSpinBox>
#include <QTest>

#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <set>

namespace ashview {
namespace {

/// Lets queued redraws and deletions run.
void settle() {
    for (int round = 0; round < 3; ++round) {
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
}

std::string contents(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

/// A stage with two listed entries, a site and an app, and its window.
class SettingsScreen : public ShellStage {
public:
    SettingsScreen() {
        startProgram();
        RuleSet rules = controller->rules();
        rules.addSite("example.com");
        rules.addApp("com.example.Game", "Game");
        setRules(rules);
        settings().setPage(SettingsModel::Page::forSite(controller->rules().sites[0].id));
        window = std::make_unique<SettingsWidget>(settings());
        window->show();
        settle();
    }

    template <typename Widget = QAbstractButton>
    Widget* find(const QString& text) {
        for (Widget* widget : window->findChildren<Widget*>()) {
            if (!widget->isVisibleTo(window.get())) continue;
            if (widget->objectName() == text) return widget;
            if constexpr (std::is_base_of_v<QAbstractButton, Widget>)
                if (widget->text() == text) return widget;
        }
        ADD_FAILURE() << "nothing shows " << text.toStdString();
        return nullptr;
    }
    void click(const QString& text) {
        if (QAbstractButton* button = find(text)) QTest::mouseClick(button, Qt::LeftButton);
        settle();
    }
    void select(const std::string& row) {
        for (int index = 0; index < window->sidebar().list().count(); ++index) {
            QListWidgetItem* item = window->sidebar().list().item(index);
            if (item->text().toStdString() == row) {
                QRect area = window->sidebar().list().visualItemRect(item);
                QTest::mouseClick(window->sidebar().list().viewport(), Qt::LeftButton, {}, area.center());
            }
        }
        settle();
    }
    const SiteRule& site(std::size_t index) const { return controller->rules().sites.at(index); }

    std::unique_ptr<SettingsWidget> window;
};

/// Every text the window shows: labels, buttons, placeholders, menus, rows
/// and the title.
std::vector<std::string> shownTexts(QWidget& window) {
    std::vector<std::string> texts{window.windowTitle().toStdString()};
    auto add = [&](const QString& text) {
        if (!text.isEmpty()) texts.push_back(text.toStdString());
    };
    for (QLabel* label : window.findChildren<QLabel*>())
        if (label->isVisibleTo(&window)) add(label->text());
    for (QAbstractButton* button : window.findChildren<QAbstractButton*>())
        if (button->isVisibleTo(&window)) add(button->text()), add(button->toolTip());
    for (QLineEdit* box : window.findChildren<QLineEdit*>())
        if (box->isVisibleTo(&window) && !box->parentWidget()->inherits("QAbstractSpinBox")) add(box->placeholderText());
    for (QComboBox* menu : window.findChildren<QComboBox*>())
        for (int index = 0; index < menu->count(); ++index) add(menu->itemText(index));
    for (QListWidget* list : window.findChildren<QListWidget*>())
        for (int index = 0; index < list->count(); ++index)
            add(list->item(index)->text()), add(list->item(index)->data(SettingsSidebar::statusRole).toString());
    return texts;
}

struct EditCase {
    const char* name;
    std::function<void(SettingsScreen&)> onScreen;
    std::function<void(SettingsScreen&)> throughModel;
};

RuleEditor siteForm(SettingsScreen& view, std::size_t index) {
    return SiteEditor(view.settings(), view.site(index)).ruleEditor();
}

TEST(SettingsWidget, ClicksAndTypingChangeTheRulesFileAsTheModelSays) {
    using Page = SettingsModel::Page;
    const EditCase cases[] = {
        {"certain hours", [](SettingsScreen& v) { v.click("Only between certain hours"); },
         [](SettingsScreen& v) { siteForm(v, 0).chooseTimeOfDay(RuleEditor::TimeOfDay::certainHours); }},
        {"end time",
         [](SettingsScreen& v) {
             v.click("Only between certain hours");
             auto* to = v.find<QTimeEdit>("To");
             to->setFocus();
             to->setTime(QTime(6, 30));
             QTest::keyClick(to, Qt::Key_Return);
             settle();
         },
         [](SettingsScreen& v) {
             siteForm(v, 0).chooseTimeOfDay(RuleEditor::TimeOfDay::certainHours);
             siteForm(v, 0).setEnd(6, 30);
         }},
        {"weekdays", [](SettingsScreen& v) { v.click("Weekdays"); },
         [](SettingsScreen& v) { siteForm(v, 0).chooseDays(RuleEditor::DaysChoice::weekdays); }},
        {"custom days, Sunday off",
         [](SettingsScreen& v) {
             v.click("Custom");
             v.click("Sun");
         },
         [](SettingsScreen& v) {
             siteForm(v, 0).chooseDays(RuleEditor::DaysChoice::custom);
             siteForm(v, 0).setDay(Weekday::sunday, false);
         }},
        {"minutes limit on, then 25", [](SettingsScreen& v) {
             v.click("Minutes on it");
             QSpinBox* minutes = v.find<QSpinBox>("Minutes on it stepper");
             minutes->setValue(25);
             settle();
         },
         [](SettingsScreen& v) {
             siteForm(v, 0).setLimitOn(RuleEditor::Limit::minutes, true);
             siteForm(v, 0).setLimitValue(RuleEditor::Limit::minutes, 25);
         }},
        {"counted in a day",
         [](SettingsScreen& v) {
             QComboBox* counted = v.find<QComboBox>("Counted");
             counted->setCurrentIndex(1);
             Q_EMIT counted->activated(1);
             settle();
         },
         [](SettingsScreen& v) { siteForm(v, 0).chooseCounted(CountPeriod::day); }},
        {"right away", [](SettingsScreen& v) { v.click("Right away"); },
         [](SettingsScreen& v) { siteForm(v, 0).chooseTurnGray(RuleEditor::TurnGray::rightAway); }},
        {"stay gray for minutes",
         [](SettingsScreen& v) { v.click("For a number of minutes, then color for the rest of that visit"); },
         [](SettingsScreen& v) { siteForm(v, 0).chooseStay(RuleEditor::StayKind::forMinutes); }},
        {"keep gray", [](SettingsScreen& v) { v.click("Keep gray"); },
         [](SettingsScreen& v) { SiteEditor(v.settings(), v.site(0)).choosePin(SitePin::grayThisSite); }},
        {"remove", [](SettingsScreen& v) { v.click("Remove from list"); },
         [](SettingsScreen& v) { SiteEditor(v.settings(), v.site(0)).remove(); }},
        {"typed site",
         [](SettingsScreen& v) {
             QLineEdit* box = v.find<QLineEdit>("newHost");
             QTest::keyClicks(box, "www.news.example.org");
             QTest::keyClick(box, Qt::Key_Return);
             settle();
         },
         [](SettingsScreen& v) {
             v.settings().setNewHost("www.news.example.org");
             v.settings().addTypedSite();
         }},
        {"defaults for new sites",
         [](SettingsScreen& v) {
             v.select("Defaults for new sites");
             v.click("Weekends");
         },
         [](SettingsScreen& v) {
             v.settings().setPage(Page::newSites());
             SettingsContent::newSitesEditor(v.settings()).chooseDays(RuleEditor::DaysChoice::weekends);
         }},
        {"day off",
         [](SettingsScreen& v) {
             v.select("Days off");
             QTest::keyClicks(v.find<QLineEdit>("Name"), "Christmas");
             v.find<QDateEdit>("Date")->setDate(QDate(2026, 12, 25));
             v.click("Add day off");
         },
         [](SettingsScreen& v) {
             v.settings().setDayOffName("Christmas");
             v.settings().setDayOffDate(*v.desktop.clock().calendar().date(2026, 12, 25, 12, 0, 0));
             v.settings().addTypedDayOff();
         }},
    };
    for (const EditCase& edit : cases) {
        SCOPED_TRACE(edit.name);
        SettingsScreen onScreen;
        SettingsScreen throughModel;
        const RuleSet before = onScreen.savedRules();
        edit.onScreen(onScreen);
        edit.throughModel(throughModel);
        RuleSet shown = onScreen.savedRules();
        RuleSet expected = throughModel.savedRules();
        ASSERT_NE(shown, before) << "the edit changed nothing";
        // New entries get new ids; everything else must agree.
        ASSERT_EQ(shown.sites.size(), expected.sites.size());
        for (std::size_t i = 0; i < shown.sites.size(); ++i) expected.sites[i].id = shown.sites[i].id;
        ASSERT_EQ(shown.daysOff.size(), expected.daysOff.size());
        for (std::size_t i = 0; i < shown.daysOff.size(); ++i) expected.daysOff[i].id = shown.daysOff[i].id;
        EXPECT_EQ(shown, expected);
        EXPECT_EQ(onScreen.window->windowTitle().toStdString(), onScreen.settings().title());
    }
}

TEST(SettingsWidget, ARefusedEditShowsItsMessageAndLeavesTheFileAsItWas) {
    const struct {
        const char* typed;
        const char* message;
    } cases[] = {
        {"example.com", "That site is already on your list."},
        {"not a host at all", "Type a web address such as example.com."},
    };
    for (const auto& refused : cases) {
        SCOPED_TRACE(refused.typed);
        SettingsScreen view;
        const std::string before = contents(view.rulesFile());
        QLineEdit* box = view.find<QLineEdit>("newHost");
        QTest::keyClicks(box, refused.typed);
        QTest::keyClick(box, Qt::Key_Return);
        settle();
        EXPECT_EQ(contents(view.rulesFile()), before);
        std::vector<std::string> texts = shownTexts(*view.window);
        EXPECT_NE(std::find(texts.begin(), texts.end(), refused.message), texts.end());
        EXPECT_EQ(box->text().toStdString(), refused.typed) << "the typed text stays for another try";
    }

    // A rules file of a later version: one text instead of every editor, on
    // every page, and nothing is ever written.
    ShellStage stage;
    std::ofstream(stage.rulesFile()) << R"({"schemaVersion": 99, "sites": []})";
    const std::string before = contents(stage.rulesFile());
    stage.startProgram();
    SettingsWidget window(stage.settings());
    window.show();
    for (auto page : {SettingsModel::Page::stats(), SettingsModel::Page::newSites(), SettingsModel::Page::daysOff()}) {
        stage.settings().setPage(page);
        settle();
        std::vector<std::string> labels;
        for (QLabel* label : window.page()->findChildren<QLabel*>()) labels.push_back(label->text().toStdString());
        EXPECT_EQ(labels, std::vector<std::string>{*SettingsContent::problemText(stage.settings())});
    }
    QTest::keyClicks(window.findChild<QLineEdit*>("newHost"), "example.org");
    QTest::keyClick(window.findChild<QLineEdit*>("newHost"), Qt::Key_Return);
    settle();
    EXPECT_EQ(stage.settings().addMessage(), "Could not save.");
    EXPECT_EQ(contents(stage.rulesFile()), before);
}

/// Every word of the model for the page that is open.
std::set<std::string> vocabulary(SettingsScreen& view) {
    SettingsModel& model = view.settings();
    std::set<std::string> words{model.title(),
                                SettingsContent::AddArea::chooseAppTitle,
                                SettingsContent::AddArea::placeholder,
                                SettingsText::whenSection,
                                SettingsText::timeOfDayLabel,
                                SettingsText::daysLabel,
                                SettingsText::turnSection,
                                SettingsText::turnGrayLabel,
                                SettingsText::countedLabel,
                                SettingsText::staySection,
                                SettingsText::stayGrayLabel,
                                SettingsText::rightNowLabel,
                                SettingsText::ruleLabel,
                                SiteEditor::removeTitle,
                                SiteEditor::overrideTitle,
                                SiteEditor::usesDefaultsText};
    for (const SettingsContent::SidebarRow& row : SettingsContent::sidebar(model)) words.insert({row.title, row.subtitle});
    for (const SiteRule& rule : model.rules().sites) {
        SiteEditor editor(model, rule);
        words.insert({editor.name(), model.statusText(rule), editor.summary(), editor.rightNow(), editor.pinLabel()});
        for (const auto& pin : SiteEditor::pinChoices()) words.insert(pin.title);
        RuleEditor form = editor.ruleEditor();
        for (const auto& choice : RuleEditor::timeOfDayChoices()) words.insert(choice.title);
        for (const auto& choice : RuleEditor::daysChoices()) words.insert(choice.title);
        for (const auto& choice : RuleEditor::turnGrayChoices()) words.insert(choice.title);
        for (const auto& choice : form.countedChoices()) words.insert(choice.title);
        for (const auto& choice : form.stayChoices()) words.insert(choice.title);
        for (const auto& row : form.limitRows()) words.insert(row.title);
        words.insert(form.explanation());
    }
    return words;
}

TEST(SettingsWidget, AnAppsRowShowsItsOwnIconWhereThePlatformDrawsOne) {
    ShellStage stage;
    stage.apps.registerBundle("com.example.Game", "/Applications/Game.app");
    stage.startProgram();
    RuleSet rules = stage.controller->rules();
    rules.addSite("example.com");
    rules.addApp("com.example.Game", "Game");
    rules.addApp("com.example.Gone", "Gone");
    stage.setRules(rules);
    QImage red(40, 40, QImage::Format_ARGB32);
    red.fill(Qt::red);
    SettingsWidget window(stage.settings(), [&](const AppIcon&) { return red; });
    QListWidget& list = window.sidebar().list();
    std::vector<std::string> ownIcons;
    for (int row = 0; row < list.count(); ++row) {
        QImage shown = list.item(row)->data(Qt::DecorationRole).value<QPixmap>().toImage();
        if (!shown.isNull() && shown.pixel(20, 20) == red.pixel(20, 20))
            ownIcons.push_back(list.item(row)->text().toStdString());
    }
    EXPECT_EQ(ownIcons, std::vector<std::string>{"Game"});
}

TEST(SettingsWidget, EveryWordComesFromTheModelAndAppsAreOfferedNoBrowserChoices) {
    const std::string browsersOnly = "Until I quit my browsers";
    for (std::size_t index : {0u, 1u}) {
        SettingsScreen view;
        view.select(view.site(index).displayName());
        std::set<std::string> words = vocabulary(view);
        std::vector<std::string> texts = shownTexts(*view.window);
        for (const std::string& text : texts) EXPECT_TRUE(words.contains(text)) << "not from the model: " << text;
        bool offersBrowsers = std::count(texts.begin(), texts.end(), browsersOnly) > 0;
        EXPECT_EQ(offersBrowsers, !view.site(index).isApp()) << view.site(index).displayName();
    }
}

TEST(SettingsWidget, TheStatisticsPageShowsEvenFiguresAndClearsOnlyAfterConfirming) {
    // Visits yesterday and two weeks ago: a row with a comparison.
    SettingsScreen view;
    for (int day : {0, 13}) {
        view.desktop.clock().advanceTo(view.at(day, 10, 1));
        view.browse("https://example.com/");
        view.advance(150);
        view.apps.quit(view.chromePID);
        view.chromePID = 0;
    }
    view.desktop.clock().advanceTo(view.at(14, 10));
    view.settings().refreshStatistics();
    view.settings().setPage(SettingsModel::Page::stats());
    settle();
    auto page = [&] {
        std::string words;
        for (QLabel* label : view.window->page()->findChildren<QLabel*>()) words += label->text().toStdString() + "\n";
        return words;
    };
    const std::string counted = page();
    EXPECT_EQ(view.window->page()->findChild<QLabel*>("lead")->text().toStdString(),
              StatsPage::make(view.settings()).lead);

    // The figures of the row: right-aligned columns of 88, 88 and 124 points.
    std::vector<int> widths;
    for (QLabel* label : view.window->page()->findChildren<QLabel*>()) {
        if (!(label->alignment() & Qt::AlignRight) || label->maximumWidth() > 200) continue;
        EXPECT_TRUE(Theme::hasEvenDigits(label->font())) << label->text().toStdString();
        widths.push_back(label->width());
    }
    EXPECT_EQ(widths, (std::vector<int>{88, 88, 124}));

    auto confirmation = [&] { return view.window->findChild<QMessageBox*>("confirmation"); };
    for (const char* answer : {StatsPage::cancelTitle, StatsPage::confirmTitle}) {
        view.click(StatsPage::clearTitle);
        QMessageBox* box = confirmation();
        ASSERT_NE(box, nullptr);
        EXPECT_EQ(box->text().toStdString(), StatsPage::confirmationTitle);
        EXPECT_EQ(box->informativeText().toStdString(), StatsPage::confirmationMessage);
        for (QAbstractButton* button : box->buttons())
            if (button->text() == answer) QTest::mouseClick(button, Qt::LeftButton);
        settle();
        EXPECT_EQ(confirmation(), nullptr);
        EXPECT_EQ(page() == counted, answer == std::string(StatsPage::cancelTitle)) << answer;
    }
    EXPECT_TRUE(StatsPage::make(view.settings()).rows.empty()) << "the history is gone";
}

TEST(SettingsWidget, APassThatOnlyMovesTheStateOnKeepsTheControlsInHand) {
    SettingsScreen view;
    QComboBox* counted = view.find<QComboBox>("Counted");
    counted->setFocus();
    const std::string before = SiteEditor(view.settings(), view.site(0)).rightNow();
    view.controller->showInColor(5);
    view.settings().reload();
    settle();
    const std::string after = SiteEditor(view.settings(), view.site(0)).rightNow();
    ASSERT_NE(after, before);
    EXPECT_EQ(view.find<QComboBox>("Counted"), counted) << "the same control, still focused";
    std::vector<std::string> texts = shownTexts(*view.window);
    EXPECT_NE(std::find(texts.begin(), texts.end(), after), texts.end());

    // A change of what the form offers builds the page anew.
    view.click("Right away");
    EXPECT_EQ(view.window->findChild<QComboBox*>("Counted"), nullptr);

    // A closed window waits for its next showing.
    view.window->hide();
    QWidget* closedPage = view.window->page();
    view.settings().setPage(SettingsModel::Page::daysOff());
    settle();
    EXPECT_EQ(view.window->page(), closedPage);
    view.window->show();
    settle();
    EXPECT_EQ(view.window->windowTitle().toStdString(), view.settings().title());
    EXPECT_NE(view.window->page(), closedPage);
}

}  // namespace
}  // namespace ashview
