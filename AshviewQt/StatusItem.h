// The program's status item: the glyph in the menu bar (the system tray where
// the platform has one) and a menu that is rebuilt from the shell's menu
// model each time it is about to show, so that it says what is true at that
// moment. Owned by the application's entry; main thread only.
#pragma once

#include "Ashview/Shell/MenuItem.h"
#include "AshviewQt/MenuView.h"

#include <QIcon>
#include <QMenu>
#include <QObject>
#include <QSystemTrayIcon>

#include <functional>
#include <memory>
#include <vector>

namespace ashview {

class StatusItem final : public QObject {
public:
    /// Builds the menu's items; called at each opening, on the main thread.
    using Provider = std::function<std::vector<MenuItem>()>;

    StatusItem(Provider provider, SystemActions actions);
    StatusItem(const StatusItem&) = delete;
    StatusItem& operator=(const StatusItem&) = delete;
    ~StatusItem() override;

    /// The menu; empty until it first opens.
    QMenu& menu() { return *menu_; }
    const QIcon& icon() const { return icon_; }
    /// Puts the glyph in the system tray, with the tool tip "Drabwise";
    /// false where the platform has no tray (the offscreen platform).
    bool showInTray();

private:
    void rebuild();

    Provider provider_;
    SystemActions actions_;
    QIcon icon_;
    std::unique_ptr<QMenu> menu_;
    std::unique_ptr<QSystemTrayIcon> tray_;
};

}  // namespace ashview
