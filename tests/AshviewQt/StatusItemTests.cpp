// The status item's menu: built from the model's tree at each opening, with
// its words, states, key equivalents and submenus, and each choice carried out
// after the menu closes.
#include "AshviewQt/MainMenu.h"
#include "AshviewQt/StatusGlyph.h"
#include "AshviewQt/StatusItem.h"

#include <QApplication>
#include <QLineEdit>
#include <QImage>
#include <QTimer>

#include <gtest/gtest.h>

namespace ashview {
namespace {

/// One line per action: its text, then marks for disabled, checked, a
/// shortcut and a submenu's items, indented.
void describe(const QMenu& menu, std::vector<std::string>& lines, const std::string& indent = "") {
    for (QAction* action : menu.actions()) {
        if (action->isSeparator()) {
            lines.push_back(indent + "---");
            continue;
        }
        std::string line = indent + action->text().toStdString();
        if (!action->isEnabled()) line += " [disabled]";
        if (action->isChecked()) line += " [checked]";
        if (!action->shortcut().isEmpty()) line += " [" + action->shortcut().toString().toStdString() + "]";
        lines.push_back(line);
        if (action->menu()) describe(*action->menu(), lines, indent + "  ");
    }
}

void open(StatusItem& item) {
    item.menu().popup(QPoint(0, 0));
    item.menu().hide();
}

QAction* find(const QMenu& menu, const QString& text) {
    for (QAction* action : menu.actions()) {
        if (action->text() == text) return action;
        if (action->menu()) {
            if (QAction* inner = find(*action->menu(), text)) return inner;
        }
    }
    return nullptr;
}

TEST(StatusItem, DrawsTheModelsTreeAnewAtEachOpening) {
    int openings = 0;
    std::vector<std::string> chosen;
    StatusItem item(
        [&] {
            ++openings;
            std::vector<MenuItem> items{
                MenuItem::disabled("Allow control of Safari in System Settings › Privacy & Security"),
                MenuItem::action("Opening " + std::to_string(openings), [&] { chosen.push_back("opening"); }),
                MenuItem::separator(),
                MenuItem::withSubmenu("Show in color for",
                                      {MenuItem::action("2 minutes", [&] { chosen.push_back("2"); }),
                                       MenuItem::action("Keep gray", [&] { chosen.push_back("keep"); }, true)}),
                MenuItem::system("Check for Updates…", SystemAction::checkForUpdates),
                MenuItem::action("Settings…", [&] { chosen.push_back("settings"); }),
            };
            items.back().keyEquivalent = ",";
            return items;
        },
        SystemActions{[&] { chosen.push_back("updates"); }, {}});
    EXPECT_TRUE(item.menu().actions().isEmpty());

    open(item);
    std::vector<std::string> lines;
    describe(item.menu(), lines);
    EXPECT_EQ(lines, (std::vector<std::string>{
                         "Allow control of Safari in System Settings › Privacy && Security [disabled]",
                         "Opening 1",
                         "---",
                         "Show in color for",
                         "  2 minutes",
                         "  Keep gray [checked]",
                         "Check for Updates…",
                         "Settings… [Ctrl+,]",
                     }));

    open(item);
    EXPECT_EQ(openings, 2);
    EXPECT_NE(find(item.menu(), "Opening 2"), nullptr);
    EXPECT_EQ(find(item.menu(), "Opening 1"), nullptr);
    EXPECT_EQ(item.menu().findChildren<QMenu*>().size(), 1) << "the last opening's submenus are gone";

    // Choices run from the event loop, once the menu has closed.
    for (const char* title : {"Opening 2", "Keep gray", "Check for Updates…", "Settings…"}) {
        find(item.menu(), title)->trigger();
    }
    EXPECT_TRUE(chosen.empty());
    QCoreApplication::processEvents();
    EXPECT_EQ(chosen, (std::vector<std::string>{"opening", "keep", "updates", "settings"}));
}

TEST(StatusItem, QuitEndsTheEventLoopThroughTheApplicationsNormalEnd) {
    StatusItem item([] { return std::vector<MenuItem>{MenuItem::system("Quit Drabwise", SystemAction::quit, "q")}; },
                    SystemActions{});
    open(item);
    QAction* quit = find(item.menu(), "Quit Drabwise");
    ASSERT_NE(quit, nullptr);
    EXPECT_EQ(quit->shortcut(), QKeySequence(Qt::CTRL | Qt::Key_Q));

    bool stopped = false;
    QMetaObject::Connection connection =
        QObject::connect(qApp, &QCoreApplication::aboutToQuit, [&] { stopped = true; });
    QTimer::singleShot(0, quit, &QAction::trigger);
    QTimer::singleShot(5000, [] { QCoreApplication::exit(1); });
    EXPECT_EQ(QCoreApplication::exec(), 0);
    EXPECT_TRUE(stopped);
    QObject::disconnect(connection);
}

TEST(StatusItem, KeyEquivalentsAndTheGlyph) {
    EXPECT_EQ(MenuView::keySequence(""), QKeySequence());
    EXPECT_EQ(MenuView::keySequence("z"), QKeySequence(Qt::CTRL | Qt::Key_Z));
    EXPECT_EQ(MenuView::keySequence("Z"), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z));

    QImage glyph = StatusGlyph::pixmap(18, 2.0).toImage();
    EXPECT_EQ(glyph.size(), QSize(36, 36));
    EXPECT_EQ(qAlpha(glyph.pixel(0, 0)), 0) << "the corners stay clear";
    EXPECT_GT(qAlpha(glyph.pixel(14, 18)), 200) << "the left bar is drawn";
    EXPECT_EQ(qAlpha(glyph.pixel(18, 18)), 0) << "the gap between the bars is clear";
}

TEST(MainMenu, TheApplicationAndEditMenusWithTheirKeys) {
    int about = 0, settings = 0;
    std::unique_ptr<QMenuBar> bar = makeMainMenu({[&] { ++about; }, {}, [&] { ++settings; }});
    QList<QAction*> menus = bar->actions();
    ASSERT_EQ(menus.size(), 2);
    EXPECT_TRUE(menus[0]->text().isEmpty());
    std::vector<std::pair<QString, QString>> shown;
    for (QAction* menu : menus)
        for (QAction* item : menu->menu()->actions())
            shown.emplace_back(item->text(), item->shortcut().toString(QKeySequence::PortableText));
    EXPECT_EQ(shown, (std::vector<std::pair<QString, QString>>{
                         {"About Drabwise", ""}, {"Check for Updates…", ""}, {"Settings…", "Ctrl+,"},
                         {"Close Window", "Ctrl+W"}, {"Quit Drabwise", "Ctrl+Q"}, {"Undo", "Ctrl+Z"},
                         {"Redo", "Ctrl+Shift+Z"}, {"Cut", "Ctrl+X"}, {"Copy", "Ctrl+C"}, {"Paste", "Ctrl+V"},
                         {"Select All", "Ctrl+A"}}));
    menus[0]->menu()->actions()[0]->trigger();
    menus[0]->menu()->actions()[2]->trigger();
    menus[0]->menu()->actions()[1]->trigger();  // no updater: nothing happens
    EXPECT_EQ(about, 1);
    EXPECT_EQ(settings, 1);

    QLineEdit box;
    box.setText("example.com");
    box.show();
    box.activateWindow();
    box.setFocus();
    QApplication::processEvents();
    ASSERT_EQ(QApplication::focusWidget(), &box);
    menus[1]->menu()->actions()[5]->trigger();
    EXPECT_EQ(box.selectedText(), "example.com") << "Select All acts on the focused field";
}

}  // namespace
}  // namespace ashview
