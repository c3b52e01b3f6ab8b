// A notification center of the simulated desktop. `post` delivers at once,
// on the calling (main) thread, to every handler of that name in the order
// they were added; tests and scenarios post what the system would.
#pragma once

#include "Platform/SystemNotifications.h"

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace ashview {

class SimNotificationCenter final : public SystemNotificationCenter {
public:
    SimNotificationCenter();
    ~SimNotificationCenter() override;

    std::unique_ptr<NotificationObservation> observe(std::string_view name, std::function<void()> handler) override;

    /// Runs every handler registered for `name` when the post begins. A
    /// handler added during the post first runs at the next one; a handler
    /// removed during the post does not run. Returns how many handlers ran.
    std::size_t post(std::string_view name);
    /// Handlers registered for `name` now.
    std::size_t observerCount(std::string_view name) const;
    /// Every name posted so far, in order.
    const std::vector<std::string>& posted() const { return posted_; }

private:
    struct Registry;
    class Observation;

    std::shared_ptr<Registry> registry_;
    std::vector<std::string> posted_;
};

}  // namespace ashview
