// One window of a reading, a browser's or a listed app's: its identity, the
// window server's window it was paired with, and what it shows.
#pragma once

#include "AshviewCore/WindowKey.h"
#include "AshviewOverlay/ForeignWindow.h"

#include <optional>
#include <string>

namespace ashview {

struct ProbedWindow final {
    WindowKey key;
    /// The window server's window, when one could be paired with it.
    std::optional<ForeignWindow> screenWindow;
    /// A browser window: the host of its visible tab. An app window: the
    /// key of the rule that lists the app. Absent when nothing is known.
    std::optional<std::string> host;

    friend bool operator==(const ProbedWindow&, const ProbedWindow&) = default;
};

}  // namespace ashview
