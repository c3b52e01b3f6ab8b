// Notifications of the system that carry nothing but their name: the
// displays going to sleep and waking, the user's session being switched away
// and back, the active Space changing, the machine about to log out or power
// off, and the screen being locked and unlocked.
//
// On the Mac the first five come from the workspace's notification center and
// the lock pair from the distributed notification center; each center is one
// `SystemNotificationCenter`. Handlers run on the main thread, one at a time.
// An adapter passes on what the system posted and decides nothing.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace ashview {

/// The names the program listens for, as the system spells them.
namespace SystemNotification {
inline constexpr std::string_view screensDidSleep = "NSWorkspaceScreensDidSleepNotification";
inline constexpr std::string_view screensDidWake = "NSWorkspaceScreensDidWakeNotification";
inline constexpr std::string_view sessionDidResignActive = "NSWorkspaceSessionDidResignActiveNotification";
inline constexpr std::string_view sessionDidBecomeActive = "NSWorkspaceSessionDidBecomeActiveNotification";
inline constexpr std::string_view activeSpaceDidChange = "NSWorkspaceActiveSpaceDidChangeNotification";
inline constexpr std::string_view willPowerOff = "NSWorkspaceWillPowerOffNotification";
/// Posted on the distributed center.
inline constexpr std::string_view screenIsLocked = "com.apple.screenIsLocked";
inline constexpr std::string_view screenIsUnlocked = "com.apple.screenIsUnlocked";
}  // namespace SystemNotification

/// Keeps one handler registered. Destroying it unregisters the handler; after
/// the destructor returns the handler is never called again.
class NotificationObservation {
public:
    virtual ~NotificationObservation() = default;
};

class SystemNotificationCenter {
public:
    SystemNotificationCenter() = default;
    SystemNotificationCenter(const SystemNotificationCenter&) = delete;
    SystemNotificationCenter& operator=(const SystemNotificationCenter&) = delete;
    virtual ~SystemNotificationCenter() = default;

    /// Calls `handler` on the main thread each time `name` is posted, until
    /// the returned observation is destroyed. Handlers of one name run in the
    /// order they were added.
    [[nodiscard]] virtual std::unique_ptr<NotificationObservation> observe(std::string_view name,
                                                                           std::function<void()> handler) = 0;
};

}  // namespace ashview
