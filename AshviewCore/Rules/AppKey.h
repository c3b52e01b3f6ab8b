// The text form of a listed app's key: "app:" followed by its bundle
// identifier. Apps and sites share one list, and only this prefix tells them
// apart.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace ashview::AppKey {

inline constexpr std::string_view prefix = "app:";

/// Whether `key` begins with the prefix.
bool isApp(std::string_view key);

/// Whether `bundleID` is non-empty and made only of ASCII letters, digits,
/// "-", "." and "_".
bool isValidBundleID(std::string_view bundleID);

/// The key of the app `bundleID`, or nothing when the identifier is not
/// valid in the sense of `isValidBundleID`.
std::optional<std::string> make(std::string_view bundleID);

/// The text behind the prefix, unchecked; nothing when `key` has no prefix.
std::optional<std::string> bundleID(std::string_view key);

}  // namespace ashview::AppKey
