// The application's services around the engine: the check for updates, the
// login item, and the user-defaults flags that remember choices between runs.
//
// On the Mac the updater is Sparkle's standard controller and the login item
// is the main app's `SMAppService`; on Linux neither exists, and the adapters
// say so through the same error descriptions the Mac ones would carry. Every
// decision (when to register, whether a copy is installed) lies above, in
// `LoginItem` and `AppDelegate`. Main thread only.
#pragma once

#include "Platform/SystemNotifications.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace ashview {

class Updater {
public:
    Updater() = default;
    Updater(const Updater&) = delete;
    Updater& operator=(const Updater&) = delete;
    virtual ~Updater() = default;

    /// Starts the periodic check for updates. Nothing on success, else the
    /// error's localized description.
    virtual std::optional<std::string> start() = 0;
    /// Checks at once, as the user asked.
    virtual void checkForUpdates() = 0;
};

/// The system's record of this program as an item opened at login.
class LoginItemService {
public:
    LoginItemService() = default;
    LoginItemService(const LoginItemService&) = delete;
    LoginItemService& operator=(const LoginItemService&) = delete;
    virtual ~LoginItemService() = default;

    /// The running program's bundle identifier; absent when run unbundled.
    virtual std::optional<std::string> mainBundleIdentifier() = 0;
    /// The folder that holds the running application, as given by the system
    /// (not yet standardized).
    virtual std::string applicationFolder() = 0;
    /// The user's home folder.
    virtual std::string homeFolder() = 0;
    /// Whether the item's status is "enabled".
    virtual bool isEnabled() = 0;
    /// Registers (or unregisters) the item. Nothing on success, else the
    /// error's localized description.
    virtual std::optional<std::string> registerItem() = 0;
    virtual std::optional<std::string> unregisterItem() = 0;
    /// Opens the system's settings page of login items.
    virtual void openSystemSettingsLoginItems() = 0;
};

/// The user defaults of the program: flags and texts kept between runs. A
/// flag never set reads false; a text never set, or removed, reads nothing.
class UserDefaults {
public:
    UserDefaults() = default;
    UserDefaults(const UserDefaults&) = delete;
    UserDefaults& operator=(const UserDefaults&) = delete;
    virtual ~UserDefaults() = default;

    virtual bool boolValue(std::string_view key) const = 0;
    virtual void setBool(std::string_view key, bool value) = 0;
    /// The text under `key`; nothing when none is set or the value is no text.
    virtual std::optional<std::string> stringValue(std::string_view key) const = 0;
    virtual void setString(std::string_view key, const std::string& value) = 0;
    /// Forgets the value under `key`, of whatever kind.
    virtual void remove(std::string_view key) = 0;
};

/// The application object of the process: its alerts, its activation and
/// its end.
class Application {
public:
    Application() = default;
    Application(const Application&) = delete;
    Application& operator=(const Application&) = delete;
    virtual ~Application() = default;

    /// Brings the program to the front.
    virtual void activate() = 0;
    /// Shows a modal alert with one button and returns when it is dismissed.
    virtual void runModalAlert(const std::string& message, const std::string& informativeText) = 0;
    /// Ends the process's run: the delegate's termination runs, then the run
    /// loop stops.
    virtual void terminate() = 0;
    /// A text of the main bundle's information ("CFBundleShortVersionString",
    /// "CFBundleVersion"); nothing when the program runs unbundled or the
    /// bundle has no such text.
    virtual std::optional<std::string> infoDictionaryText(const std::string& key) = 0;
    /// Calls `handler` on the main thread each time the program becomes the
    /// active application, until the observation is destroyed.
    [[nodiscard]] virtual std::unique_ptr<NotificationObservation> observeDidBecomeActive(
        std::function<void()> handler) = 0;
};

/// The services of the platform the program is built for.
namespace AppServices {
std::unique_ptr<Updater> systemUpdater();
std::unique_ptr<LoginItemService> systemLoginItemService();
}  // namespace AppServices

}  // namespace ashview
