// The Mac entry of Drabwise: the Qt application as an accessory application
// (no Dock icon), the Mac adapters handed to the application delegate exactly
// as the scenario player hands over the simulated ones, launch once the event
// loop runs, and the delegate's stop when the loop is about to end. The
// process takes no arguments. The one-copy lock is taken by the delegate at
// launch: a second copy shows its alert and ends through `terminate`, which
// Qt turns into the end of its loop.
#import <AppKit/AppKit.h>

#include "Ashview/App/AppDelegate.h"
#include "Platform/Mac/MacAdapters.h"

#include <QApplication>
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

    AppDelegate delegate(AppDelegate::Services{
        *updater,
        *loginItems,
        *defaults,
        *application,
        std::cerr,
        AppDelegate::Desktop{*loop, *windowServer, *overlayWindows, *workspaceNotifications, *distributedNotifications,
                             *workspace, *appleEvents, *accessibility},
    });
    // Still to come with the Qt shell (AshviewQt): the status item and its
    // menu, and the settings, setup and About windows, made from the
    // delegate's controller with the workspace, the user defaults, the
    // application, `makeMacOpenPanel()` and `macIconPNG` for app icons.

    QObject::connect(&qt, &QCoreApplication::aboutToQuit, [&delegate] { delegate.applicationWillTerminate(); });
    QTimer::singleShot(0, &qt, [&delegate] { delegate.applicationDidFinishLaunching(); });
    return qt.exec();
}
