// The Mac adapters. Built on Apple platforms only, with ARC; the Mac entry
// point makes one of each and hands them to the application, as tests hand
// over a `SimDesktop`'s. The updater and the login item come from
// `AppServices`, the boot time from `BootTime::kernel`. No Objective-C type
// appears here. Every adapter is used on the main thread, after the
// toolkit's application object exists.
#pragma once

#include "Platform/Accessibility.h"
#include "Platform/AppServices.h"
#include "Platform/AppleEvents.h"
#include "Platform/MainLoop.h"
#include "Platform/OpenPanel.h"
#include "Platform/OverlayWindows.h"
#include "Platform/SystemNotifications.h"
#include "Platform/WindowServer.h"
#include "Platform/Workspace.h"

#include <memory>
#include <vector>

namespace ashview {

/// The process's main run loop and dispatch queue, the system clocks and the
/// user's current calendar.
std::unique_ptr<MainLoop> makeMacMainLoop();
/// CoreGraphics window lists, the first screen's height and the private
/// SkyLight entry points (looked up once, on first use).
std::unique_ptr<WindowServer> makeMacWindowServer();
/// AppKit windows and views, Core Animation layers, and the private backdrop
/// layer and saturation filter, reached by name at run time.
std::unique_ptr<OverlayWindowSystem> makeMacOverlayWindows();

/// NSWorkspace, NSRunningApplication, NSBundle and NSFileManager.
std::unique_ptr<Workspace> makeMacWorkspace();
/// NSAppleScript for scripts; AEDeterminePermissionToAutomateTarget for the
/// permission query, which alone may also be called off the main thread.
std::unique_ptr<AppleEvents> makeMacAppleEvents();
/// AXIsProcessTrusted and AXObserver sources on the main run loop.
std::unique_ptr<Accessibility> makeMacAccessibility();
/// The workspace's notification center.
std::unique_ptr<SystemNotificationCenter> makeMacWorkspaceNotifications();
/// The distributed notification center, delivering even while the program
/// is not the active application.
std::unique_ptr<SystemNotificationCenter> makeMacDistributedNotifications();
/// NSOpenPanel, run modally.
std::unique_ptr<OpenPanel> makeMacOpenPanel();
/// The standard user defaults.
std::unique_ptr<UserDefaults> makeMacUserDefaults();
/// NSApp: activation, alerts, termination, becoming active.
std::unique_ptr<Application> makeMacApplication();

/// A square PNG of `pixels` on each side of an icon the Mac workspace handed
/// out, for a toolkit that draws its own images; empty for any other icon.
std::vector<unsigned char> macIconPNG(const AppIcon& icon, int pixels);

}  // namespace ashview
