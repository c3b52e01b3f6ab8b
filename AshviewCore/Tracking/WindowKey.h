// The identity of one window across read passes: the bundle identifier of
// its owner and the owner's own number for it.
#pragma once

#include "AshviewCore/Foundation/Json.h"

#include <cstdint>
#include <functional>
#include <string>

namespace ashview {

struct WindowKey final {
    std::string browser;
    std::int64_t window = 0;

    /// "{browser}#{window}", as log lines show it.
    std::string description() const { return browser + "#" + std::to_string(window); }

    friend bool operator==(const WindowKey&, const WindowKey&) = default;
    friend auto operator<=>(const WindowKey&, const WindowKey&) = default;
};

/// The object form {"browser": ..., "window": ...}.
Json::Value toJson(const WindowKey& key);
/// Throws `Json::DecodingError` when a field is missing or of the wrong type.
WindowKey windowKeyFromJson(const Json::Value& value, std::string_view where);

}  // namespace ashview

template <>
struct std::hash<ashview::WindowKey> {
    std::size_t operator()(const ashview::WindowKey& key) const noexcept {
        return std::hash<std::string>{}(key.browser) * 31 + std::hash<std::int64_t>{}(key.window);
    }
};
