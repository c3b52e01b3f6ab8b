#include "AshviewCore/Rules/AppKey.h"

namespace ashview::AppKey {

namespace {

bool isAllowed(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' || c == '.' ||
           c == '_';
}

}  // namespace

bool isApp(std::string_view key) { return key.starts_with(prefix); }

bool isValidBundleID(std::string_view bundleID) {
    if (bundleID.empty()) return false;
    // Every byte of a non-ASCII scalar is outside the allowed set, so a
    // byte-wise test refuses exactly the scalars that are not allowed.
    for (char c : bundleID) {
        if (!isAllowed(c)) return false;
    }
    return true;
}

std::optional<std::string> make(std::string_view bundleID) {
    if (!isValidBundleID(bundleID)) return std::nullopt;
    return std::string(prefix) + std::string(bundleID);
}

std::optional<std::string> bundleID(std::string_view key) {
    if (!isApp(key)) return std::nullopt;
    return std::string(key.substr(prefix.size()));
}

}  // namespace ashview::AppKey
