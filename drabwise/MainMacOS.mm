// The Mac entry of Drabwise: the Qt application as an accessory application
// (no Dock icon), the Mac adapters handed to the application delegate exactly
// as the scenario player hands over the simulated ones, launch once the event
// loop runs, and the delegate's stop when the loop is about to end. The
// process takes no arguments. The one-copy lock is taken by the delegate at
// launch: a second copy shows its alert and ends through `terminate`, which
// Qt turns into the end of its loop.
#import <AppKit/AppKit.h>

#include "Ashview/App/AppDelegate.h"
#include "AshviewQt/MainMenu.h"
#include "AshviewQt/QtWindowViews.h"
#include "AshviewQt/StatusItem.h"
#include "Platform/Mac/MacAdapters.h"

#include <QApplication>
#include <QImage>
#include <QTimer>

#include <iostream>

int main(int argc, char** argv) {
    using namespace ashview;

    QApplication qt(argc, argv);
    // The status menu and the windows keep running the program after the
    // last window closes; only Quit ends it.
    qt.setQuitOnLastWindowClosed(false);
    [NSApp setActivationPolicy:NSApplicationActivationPolicyAccessory];

    std::unique_ptr<MainLoop> loop = makeMacMainLoop();
    std::unique_ptr<WindowServer> windowServer = makeMacWindowServer();
    std::unique_ptr<OverlayWindowSystem> overlayWindows = makeMacOverlayWindows();
    std::unique_ptr<SystemNotificationCenter> workspaceNotifications = makeMacWorkspaceNotifications();
    std::unique_ptr<SystemNotificationCenter> distributedNotifications = makeMacDistributedNotifications();
    std::unique_ptr<Workspace> workspace = makeMacWorkspace();
    std::unique_ptr<AppleEvents> appleEvents = makeMacAppleEvents();
    std::unique_ptr<Accessibility> accessibility = makeMacAccessibility();
    std::unique_ptr<Updater> updater = AppServices::systemUpdater();
    std::unique_ptr<LoginItemService> loginItems = AppServices::systemLoginItemService();
    std::unique_ptr<UserDefaults> defaults = makeMacUserDefaults();
    std::unique_ptr<Application> application = makeMacApplication();
    std::unique_ptr<OpenPanel> openPanel = makeMacOpenPanel();

    // The windows: links open through the workspace, and apps' own icons are
    // drawn from the PNG the workspace gives for them.
    QtWindowViews views([&workspace](const std::string& url) { workspace->openURL(url); },
                        [](const AppIcon& icon) {
                            std::vector<unsigned char> png = macIconPNG(icon, 64);
                            QImage image;
                            if (!png.empty()) image.loadFromData(png.data(), static_cast<int>(png.size()), "PNG");
                            return image;
                        });

    AppDelegate delegate(AppDelegate::Services{
        *updater,
        *loginItems,
        *defaults,
        *application,
        views,
        std::cerr,
        AppDelegate::Desktop{*loop, *windowServer, *overlayWindows, *workspaceNotifications, *distributedNotifications,
                             *workspace, *appleEvents, *accessibility, *openPanel},
    });

    // The status item: its menu is rebuilt from the status menu at each
    // opening; empty for a second copy, which never gets that far.
    StatusItem statusItem(
        [&delegate]() -> std::vector<MenuItem> {
            if (!delegate.statusMenu()) return {};
            return delegate.statusMenu()->menuNeedsUpdate();
        },
        SystemActions{[&delegate] { delegate.checkForUpdates(); }, {}});

    // The menu bar of the program's windows, with their usual keys.
    std::unique_ptr<QMenuBar> mainMenu = makeMainMenu(MainMenuActions{
        [&delegate] {
            if (delegate.isRunning()) delegate.aboutWindow().show();
        },
        [&delegate] { delegate.checkForUpdates(); },
        [&delegate] {
            if (SettingsWindow* settings = delegate.settingsWindow()) settings->show(std::nullopt);
        },
    });

    QObject::connect(&qt, &QCoreApplication::aboutToQuit, [&delegate] { delegate.applicationWillTerminate(); });
    QTimer::singleShot(0, &qt, [&delegate, &statusItem] {
        delegate.applicationDidFinishLaunching();
        if (delegate.isRunning()) statusItem.showInTray();
    });
    return qt.exec();
}
