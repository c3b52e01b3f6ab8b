// Reading addresses, through uriparser. The project parses no URL by hand.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace ashview::Url {

/// The host of the absolute URL `text`, as written (IPv6 literals without
/// their brackets). Nothing when `text` is no absolute URL, has no host, or
/// its host is empty.
std::optional<std::string> host(std::string_view text);

/// The scheme of the absolute URL `text`, lower-cased, or nothing when
/// `text` is no absolute URL.
std::optional<std::string> scheme(std::string_view text);

}  // namespace ashview::Url
