// Which site a running web app stands for, read from the files of its bundle
// and kept per bundle identifier while its process runs.
//
// Only identifiers that may be a Safari web app or a Chromium app shim ever
// cost a look at files; every other app costs one prefix test. Reading a
// bundle never leaves it (a link that leads outside is not followed), never
// reads a file larger than `largestFile`, and never fails loudly: whatever
// cannot be read or understood gives no host. Main thread only.
#pragma once

#include "AshviewCore/Foundation/Json.h"
#include "Platform/Workspace.h"

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace ashview {

class WebAppHosts final {
public:
    /// Files above this many bytes are not read.
    static constexpr std::uintmax_t largestFile = 1 << 20;

    /// `workspace` must outlive this object.
    explicit WebAppHosts(Workspace& workspace) : workspace_(&workspace) {}
    WebAppHosts(const WebAppHosts&) = delete;
    WebAppHosts& operator=(const WebAppHosts&) = delete;

    /// The bundle identifiers of the catalog's Chromium browsers, in order.
    static const std::vector<std::string>& chromiumBrowsers();

    /// The normalized host of the site `app` stands for, or nothing. The
    /// first look at an identifier that may be a web app reads its bundle
    /// (the running one, then the one the system knows by that identifier);
    /// the answer, a host or none, is kept until `forget`.
    std::optional<std::string> host(const RunningApplication& app);
    /// Drops what is kept for `bundleID`, so its next process is read afresh.
    void forget(const std::string& bundleID) { known_.erase(bundleID); }
    /// What is kept: a host, or none for an app that is no web app.
    const std::unordered_map<std::string, std::optional<std::string>>& known() const { return known_; }

    /// The host a bundle folder points at: its Info.plist first, then the
    /// manifests directly in Contents/Resources (files named
    /// "manifest.json" or ending in ".webmanifest", by name order).
    static std::optional<std::string> host(const std::filesystem::path& inBundle);
    /// The dictionary of an XML or binary property list, as a JSON-like
    /// value (dictionaries become objects, strings strings, numbers and
    /// Booleans themselves, anything else null); nothing when `bytes` is no
    /// property list or its root is no dictionary. Dictionaries nested deeper
    /// than `deepestNesting` are left out.
    static std::optional<Json::Value> propertyList(std::string_view bytes);
    static constexpr int deepestNesting = 64;

private:
    std::optional<std::string> read(const std::string& bundleID, const std::optional<std::string>& bundlePath);

    Workspace* workspace_;
    std::unordered_map<std::string, std::optional<std::string>> known_;
};

}  // namespace ashview
