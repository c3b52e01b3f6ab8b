// One window of a reading, a browser's or a listed app's, in the one shape
// the read pass works with.
#pragma once

#include "AshviewCore/Tracking/WindowKey.h"
#include "AshviewOverlay/ForeignWindow.h"

#include <optional>
#include <string>

namespace ashview {

struct ProbedWindow final {
    /// The owner's bundle identifier and its own number for the window: a
    /// browser's scripting id, an app's window-server number.
    WindowKey key;
    /// The window server's window it was paired with; absent when none was.
    std::optional<ForeignWindow> screenWindow;
    /// A browser window: the normalized host of its front tab, absent when
    /// the browser gave no address. An app window: the key of its rule.
    std::optional<std::string> host;

    friend bool operator==(const ProbedWindow&, const ProbedWindow&) = default;
};

}  // namespace ashview
