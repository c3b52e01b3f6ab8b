// Running applications and the workspace around them, as the system reports
// them: the process list, the application in front, the five application
// lifecycle notifications, where an application's bundle lies and its icon,
// and this program's own identity.
//
// Everything is raw. A `RunningApplication` is what the system said of one
// process at the moment of the call; whether it counts as a browser, which of
// several instances counts, and what a notification means is decided above.
// Main thread only: handlers run on the main thread, one at a time. The
// adapter is owned by whoever builds the desktop and must outlive its users.
#pragma once

#include "AshviewCore/Foundation/Instant.h"
#include "Platform/SystemNotifications.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace ashview {

/// One process as the system described it.
struct RunningApplication final {
    std::int32_t processIdentifier = 0;
    /// Absent for a process without a bundle (a command-line tool).
    std::optional<std::string> bundleIdentifier;
    /// When the process began; the system does not always know.
    std::optional<Instant> launchDate;
    /// True for a process that has ended but is still listed.
    bool isTerminated = false;
    /// 0 regular (in the Dock), 1 accessory, 2 background only.
    std::int64_t activationPolicy = 0;
    /// The folder of the running bundle, when it has one.
    std::optional<std::string> bundlePath;
    /// The name the system shows for it.
    std::string localizedName;

    friend bool operator==(const RunningApplication&, const RunningApplication&) = default;
};

/// The five lifecycle notifications of the workspace's notification center.
enum class ApplicationEvent { didLaunch, didTerminate, didActivate, didHide, didUnhide };

/// An application's icon, opaque to the program: it is only handed on to the
/// menu and the settings.
class AppIcon {
public:
    virtual ~AppIcon() = default;
};

class Workspace {
public:
    Workspace() = default;
    Workspace(const Workspace&) = delete;
    Workspace& operator=(const Workspace&) = delete;
    virtual ~Workspace() = default;

    /// Every process the system lists now, in its order.
    virtual std::vector<RunningApplication> runningApplications() = 0;
    /// Every listed process with exactly this bundle identifier, in the
    /// system's order, terminated ones included.
    virtual std::vector<RunningApplication> runningApplications(const std::string& bundleIdentifier) = 0;
    /// The application in front, if any.
    virtual std::optional<RunningApplication> frontmostApplication() = 0;

    /// Calls `handler` on the main thread each time `event` is posted, with
    /// the application under the notification's application key (absent when
    /// the notification carried none), until the observation is destroyed.
    [[nodiscard]] virtual std::unique_ptr<NotificationObservation> observe(
        ApplicationEvent event, std::function<void(const std::optional<RunningApplication>&)> handler) = 0;

    /// The bundle folder the system knows under this identifier, or nothing.
    virtual std::optional<std::string> urlForApplication(const std::string& bundleIdentifier) = 0;
    /// The icon of the file or bundle at `path`; the system gives a generic
    /// icon for a path it cannot read, so this may still be null.
    virtual std::shared_ptr<const AppIcon> iconForFile(const std::string& path) = 0;
    /// Opens `url` with the application the system chooses for it (a
    /// browser, System Settings); false when the system refused.
    virtual bool openURL(const std::string& url) = 0;
    /// The name the file manager shows for the item at `path`.
    virtual std::string displayName(const std::string& path) = 0;
    /// The bundle identifier of the bundle at `path`; nothing when the path
    /// is no bundle or the bundle has none.
    virtual std::optional<std::string> bundleIdentifier(const std::string& path) = 0;

    /// This program's own bundle identifier (absent when run unbundled).
    virtual std::optional<std::string> mainBundleIdentifier() = 0;
    /// This program's own process identifier.
    virtual std::int32_t ownProcessIdentifier() = 0;
};

}  // namespace ashview
