#include "AshviewOverlay/SkyLight.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>

namespace ashview {

namespace {

std::uint32_t checkedWindowNumber(std::int64_t number) {
    if (number < 0 || number > std::int64_t{std::numeric_limits<std::uint32_t>::max()}) {
        std::fprintf(stderr, "window number %lld does not fit 32 unsigned bits\n", static_cast<long long>(number));
        std::abort();
    }
    return static_cast<std::uint32_t>(number);
}

}  // namespace

SkyLight::SkyLight(WindowServer& server) : entry_(&server.skyLight()) {
    available_ = entry_->mainConnectionID && entry_->getWindowBounds && entry_->registerNotifyProc &&
                 entry_->requestNotificationsForWindows;
}

std::int32_t SkyLight::connection() {
    if (!connection_) connection_ = entry_->mainConnectionID();
    return *connection_;
}

std::optional<Rect> SkyLight::bounds(std::int64_t of) {
    std::uint32_t window = checkedWindowNumber(of);
    if (!available_) return std::nullopt;
    Rect rect{};
    if (entry_->getWindowBounds(connection(), window, &rect) != 0) return std::nullopt;
    return rect;
}

std::int32_t SkyLight::onEvent(std::uint32_t event, NotifyProc callback) {
    if (!available_) return missingStatus;
    return entry_->registerNotifyProc(callback, event, nullptr);
}

std::int32_t SkyLight::requestEvents(const std::vector<std::int64_t>& windows) {
    std::vector<std::uint32_t> packed;
    packed.reserve(windows.size());
    for (std::int64_t number : windows) packed.push_back(checkedWindowNumber(number));
    if (!available_) return missingStatus;
    return entry_->requestNotificationsForWindows(connection(), packed.data(), static_cast<std::int32_t>(packed.size()));
}

std::optional<std::uint32_t> SkyLight::windowNumber(const void* data) {
    if (data == nullptr) return std::nullopt;
    std::uint32_t number = 0;
    std::memcpy(&number, data, sizeof number);
    return number;
}

}  // namespace ashview
