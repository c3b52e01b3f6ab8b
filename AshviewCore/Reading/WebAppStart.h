// Which site a web app stands for, from what its bundle holds: a Safari web
// app or an app shim of a Chromium browser. Pure: the caller reads the files
// and hands over the property list (as a JSON-like value) and manifest bytes.
//
// Every failure (an unusable value, bad JSON, an address that is relative,
// has no host or is not http or https) gives no host; nothing throws.
#pragma once

#include "AshviewCore/Foundation/Json.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ashview::WebAppStart {

/// The start of every Safari web app's bundle identifier.
inline constexpr std::string_view safariPrefix = "com.apple.Safari.WebApp.";

/// True when `bundleID` begins with `safariPrefix`, or with "{browser}.app."
/// for one of `chromiumBrowsers`; the test is case-sensitive. Ordinary apps
/// fail it, so their files are never looked at.
bool mayBeWebApp(std::string_view bundleID, const std::vector<std::string>& chromiumBrowsers);

/// The normalized host a bundle's Info.plist points at, or nothing. `infoPlist`
/// must be an object to give anything; property-list strings are strings and
/// dictionaries objects, other values may be anything else.
///
/// A string under "CrAppModeShortcutURL" (a Chromium app shim) decides alone,
/// even when it gives no host. Otherwise the first string whose key, lowercased
/// and without "_", ends in "starturl" decides, searched key by key in
/// ascending order, descending into a dictionary value before going on to the
/// next key.
std::optional<std::string> host(const Json::Value& infoPlist);

/// The normalized host of a web manifest's "start_url", or nothing when the
/// bytes are no JSON object or the value is no absolute http(s) address.
std::optional<std::string> host(std::string_view manifest);

/// The normalized host of an absolute http or https address (the scheme in
/// any case), or nothing.
std::optional<std::string> webHost(std::string_view address);

}  // namespace ashview::WebAppStart
