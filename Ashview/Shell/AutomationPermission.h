// Where this program stands with the user's permission to control one
// browser by Apple events, read from the status of the system's permission
// query. Pure; any thread.
#pragma once

#include <cstdint>

namespace ashview::AutomationPermission {

/// The four states, in the order the setup window thinks of them.
enum class Access { allowed, notAsked, denied, notRunning };

/// The query's status when the browser is not running, so that the system
/// cannot say (procNotFound).
inline constexpr std::int32_t processNotFound = -600;

/// 0 is `allowed`, -1743 `denied`, -600 `notRunning`; every other status,
/// the system's "would have to ask the user" among them, is `notAsked`.
Access access(std::int32_t status);

}  // namespace ashview::AutomationPermission
