// One entry of a menu as the shell's models describe it, with no toolkit type:
// the status menu builds a tree of these at each opening, and a view turns it
// into the platform's menu.
//
// An item is a separator, or a titled entry that either runs its `handler`,
// asks for a `systemAction` that the application itself carries out (so that
// quitting goes through the program's normal end), or opens its `submenu`.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace ashview {

/// What the application, not the menu, does for an item.
enum class SystemAction { checkForUpdates, quit };

struct MenuItem final {
    std::string title;
    bool isSeparator = false;
    bool enabled = true;
    bool checked = false;
    /// The key that chooses the item with the command key ("," or "q").
    std::string keyEquivalent;
    std::function<void()> handler;
    std::optional<SystemAction> systemAction;
    std::vector<MenuItem> submenu;

    static MenuItem separator() {
        MenuItem item;
        item.isSeparator = true;
        return item;
    }
    /// A titled item that runs `handler`, checked or not.
    static MenuItem action(std::string title, std::function<void()> handler, bool checked = false) {
        MenuItem item;
        item.title = std::move(title);
        item.handler = std::move(handler);
        item.checked = checked;
        return item;
    }
    /// A titled item that does nothing when chosen: it only tells.
    static MenuItem disabled(std::string title) {
        MenuItem item;
        item.title = std::move(title);
        item.enabled = false;
        return item;
    }
    static MenuItem system(std::string title, SystemAction action, std::string keyEquivalent = {}) {
        MenuItem item;
        item.title = std::move(title);
        item.systemAction = action;
        item.keyEquivalent = std::move(keyEquivalent);
        return item;
    }
    static MenuItem withSubmenu(std::string title, std::vector<MenuItem> submenu) {
        MenuItem item;
        item.title = std::move(title);
        item.submenu = std::move(submenu);
        return item;
    }
};

}  // namespace ashview
