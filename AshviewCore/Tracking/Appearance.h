// The tracker's answer for one window, and the user's per-window wish.
#pragma once

namespace ashview {

/// How one window is to look: not covered by any rule, in color, or gray.
enum class Appearance { notListed, color, gray };

/// The user's wish for one window, held by the controller.
enum class WindowRequest { followSettings, grayThisWindow };

}  // namespace ashview
