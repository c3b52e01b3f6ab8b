// What one read pass saw of one rule; the usage recorder's input.
#pragma once

#include <string>

namespace ashview {

struct SiteSighting final {
    /// The rule's `host` (a site's host or an app's key).
    std::string host;
    /// At least one window of the rule is on screen.
    bool visible = false;
    /// `visible`, and every on-screen window of the rule is gray.
    bool gray = false;
    /// `gray`, and by the rule's own doing rather than the user's pin or
    /// per-window request.
    bool automaticGray = false;

    friend bool operator==(const SiteSighting&, const SiteSighting&) = default;
};

}  // namespace ashview
