// Reading and comparing the hosts that site rules are written in.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace ashview::Host {

/// The host of `text` in canonical form: trimmed, lower-case, without
/// trailing dots, taken out of a whole address when one is given (scheme,
/// port, path and query are dropped; no label such as "www" is removed).
/// Nothing when the text is empty, holds a blank, names no host, or names
/// one that no name server could: longer than `maxLength`, or with a label
/// longer than `maxLabelLength`.
std::optional<std::string> normalize(std::string_view text);

/// The longest host name, and the longest label of one, that DNS allows.
inline constexpr std::size_t maxLength = 253;
inline constexpr std::size_t maxLabelLength = 63;

/// Whether `text` is non-empty, made only of lower-case ASCII letters,
/// digits, hyphens and dots, does not end in a dot, and keeps within
/// `maxLength` and `maxLabelLength`. Such text is already
/// in canonical form: `normalize` gives it back unchanged. Hosts that
/// browsers report, and the hosts of site rules, are of this kind.
bool isPlainHost(std::string_view text);

/// Whether `host` is `rule` or lies under it, by whole labels:
/// "news.example.com" is under "example.com", "badexample.com" is not.
bool matches(std::string_view host, std::string_view rule);

}  // namespace ashview::Host
