// Turns the shell's toolkit-free menu tree into a QMenu: titles, separators,
// enabled and checked states, key equivalents and submenus, with each chosen
// item's handler or system action run on the main thread once the menu has
// closed. Holds no state of its own; main thread only.
#pragma once

#include "Ashview/Shell/MenuItem.h"

#include <QKeySequence>
#include <QMenu>

#include <functional>
#include <string>
#include <vector>

namespace ashview {

/// What the application, not the menu, carries out for a `SystemAction`.
struct SystemActions final {
    std::function<void()> checkForUpdates;
    /// Quitting through the application's normal end; QCoreApplication::quit
    /// when left empty, so that the delegate's stop runs on the way out.
    std::function<void()> quit;
};

namespace MenuView {

/// The command-key shortcut of a key equivalent: "," gives Cmd+, (Ctrl+, off
/// the Mac); an upper-case letter adds Shift. Empty for an empty text.
QKeySequence keySequence(const std::string& keyEquivalent);
/// A title as a menu shows it: an ampersand stays an ampersand.
QString title(const std::string& text);
/// Empties `menu` (and deletes its submenus) and fills it with `items`.
void fill(QMenu& menu, const std::vector<MenuItem>& items, const SystemActions& actions);

}  // namespace MenuView
}  // namespace ashview
