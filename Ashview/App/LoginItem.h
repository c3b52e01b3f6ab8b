// Opening the program at login: offered and registered only for a copy
// installed in an Applications folder, registered once on its first launch,
// and after that only changed by the user.
//
// Failures are written to the given stream (standard error in the program)
// as plain lines without a time, and never stop the program. Main thread only.
#pragma once

#include "Platform/AppServices.h"

#include <iosfwd>
#include <string_view>

namespace ashview::LoginItem {

/// The user-defaults flag set once the first registration has succeeded.
inline constexpr std::string_view registeredKey = "RegisteredAsLoginItem";

/// True only when the program has a bundle identifier and the folder holding
/// it, standardized, is "/Applications" or "Applications" in the user's home:
/// a build or a download that runs from elsewhere never becomes a login item.
bool isAvailable(LoginItemService& service);

/// On the first launch of an installed copy, registers it as a login item and
/// remembers that in `defaults`. Does nothing when not available or already
/// remembered. A refused registration is reported as "Drabwise could not be
/// added to login items: {description}" and leaves the flag unset, so the next
/// launch tries again.
void registerOnFirstLaunchIfInstalled(LoginItemService& service, UserDefaults& defaults, std::ostream& errors);

/// The user's choice from the settings. A failure is reported as "Open at
/// Login could not be changed: {description}"; when the system's status then
/// still differs from `on` (refused, or waiting for approval), the system's
/// login-item settings are opened so the user can finish there.
void setEnabled(bool on, LoginItemService& service, std::ostream& errors);

}  // namespace ashview::LoginItem
