// One window as the visit tracker sees it, a browser's or an app's.
#pragma once

#include "AshviewCore/Tracking/WindowKey.h"

#include <optional>
#include <string>

namespace ashview {

struct BrowserWindow final {
    WindowKey id;
    /// A browser window: the host of its visible tab. An app window: the
    /// app's key ("app:" and the bundle identifier). Absent: nothing is
    /// known of the window, and it matches no rule.
    std::optional<std::string> host;
    /// Whether the user can see the window now, as the read pass decided.
    bool isOnScreen = false;

    friend bool operator==(const BrowserWindow&, const BrowserWindow&) = default;
};

}  // namespace ashview
