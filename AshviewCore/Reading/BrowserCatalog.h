// The ten browsers this program can read, known only by bundle identifier.
//
// There is no other way for a browser to become known: no setting, no file,
// no guess from behaviour. The order of `browsers()` is meaningful: it is the
// order of the running browsers in a reading and in the setup window.
#pragma once

#include "AshviewCore/Foundation/Instant.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ashview {

/// Which scripting vocabulary a browser speaks.
enum class Dialect { chromium, safari };

struct Browser final {
    /// Also the key of every per-browser map and the `browser` of a `WindowKey`.
    std::string bundleID;
    /// Shown to the user and used in log lines.
    std::string name;
    Dialect dialect = Dialect::chromium;
    /// Whether the browser has been tried with this program; informative only.
    bool isTested = false;

    friend bool operator==(const Browser&, const Browser&) = default;
};

/// What the choice of a browser's counting instance needs to know of one
/// running process.
struct InstanceFacts final {
    bool isTerminated = false;
    /// When the process began; absent when the system does not say.
    std::optional<Instant> launchDate;

    friend bool operator==(const InstanceFacts&, const InstanceFacts&) = default;
};

namespace BrowserCatalog {

/// The ten known browsers in their fixed order.
const std::vector<Browser>& browsers();

/// The first entry whose bundle identifier equals `bundleID` exactly (case
/// is not folded); nothing for any other identifier.
std::optional<Browser> browser(std::string_view bundleID);

/// Of the processes of one bundle identifier, in the order the system gave
/// them, the index of the one that counts for the browser: not terminated,
/// and the earliest launched. An undated process counts as launched in the
/// far future; on equal dates the earlier in the list stays. Nothing when
/// every process is terminated or the list is empty.
std::optional<std::size_t> countingInstance(const std::vector<InstanceFacts>& instances);

}  // namespace BrowserCatalog

}  // namespace ashview

template <>
struct std::hash<ashview::Browser> {
    std::size_t operator()(const ashview::Browser& browser) const noexcept {
        std::size_t seed = std::hash<std::string>{}(browser.bundleID);
        seed = seed * 31 + std::hash<std::string>{}(browser.name);
        seed = seed * 31 + static_cast<std::size_t>(browser.dialect);
        return seed * 31 + (browser.isTested ? 1 : 0);
    }
};
