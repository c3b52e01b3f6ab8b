// Choosing an app to list: the open panel, and the rules that refuse an app.
#pragma once

#include "Platform/OpenPanel.h"

#include <optional>
#include <string>
#include <string_view>

namespace ashview::AppChooser {

/// The panel's settings: the Applications folder, applications only, one
/// item, "Add".
OpenPanelSettings settings();
/// Runs the panel modally; the chosen bundle's path on OK, else nothing.
std::optional<std::string> chooseApp(OpenPanel& panel);
/// Why the app `bundleID` can't be listed, in words for the user, or nothing
/// when it can. `ownBundleID` is this program's identifier.
std::optional<std::string> refusal(std::string_view bundleID, const std::optional<std::string>& ownBundleID);

}  // namespace ashview::AppChooser
