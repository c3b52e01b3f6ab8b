// The Mac adapters of the main loop, the window server and the overlay
// windows. Built on Apple platforms only, with ARC; the Mac entry point makes
// one of each and hands them to the application, as tests hand over a
// `SimDesktop`'s. No Objective-C type appears here.
#pragma once

#include "Platform/MainLoop.h"
#include "Platform/OverlayWindows.h"
#include "Platform/WindowServer.h"

#include <memory>

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

}  // namespace ashview
