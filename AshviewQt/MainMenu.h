// The menu bar an accessory program has while one of its windows is key: the
// application menu (About, Check for Updates…, Settings…, Close Window, Quit)
// and the Edit menu, which give the windows the usual keys. On the Mac the
// menu bar without a parent window is the system's own. Main thread only.
#pragma once

#include <QMenuBar>

#include <functional>
#include <memory>

namespace ashview {

struct MainMenuActions final {
    std::function<void()> showAbout;
    std::function<void()> checkForUpdates;
    std::function<void()> showSettings;
};

/// The two menus, hanging from untitled items in this order, without
/// separators. Quit ends the program through the application's normal end;
/// the Edit items act on the widget that has the keyboard focus.
std::unique_ptr<QMenuBar> makeMainMenu(MainMenuActions actions);

}  // namespace ashview
