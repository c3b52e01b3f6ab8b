#include "Ashview/Reading/WebAppHosts.h"

#include "AshviewCore/Reading/BrowserCatalog.h"
#include "AshviewCore/Reading/WebAppStart.h"

#include <plist/plist.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <memory>

namespace ashview {

namespace fs = std::filesystem;

namespace {

/// Whether `path` is `root` or lies under it, both canonical.
bool isInside(const fs::path& path, const fs::path& root) {
    auto [rootEnd, pathAt] = std::mismatch(root.begin(), root.end(), path.begin(), path.end());
    return rootEnd == root.end();
}

/// `relative` under the bundle `root` (canonical), with every link resolved;
/// nothing when it does not exist or resolves to a place outside the bundle.
std::optional<fs::path> resolveInside(const fs::path& root, const fs::path& relative) {
    std::error_code error;
    fs::path resolved = fs::canonical(root / relative, error);
    if (error || !isInside(resolved, root)) return std::nullopt;
    return resolved;
}

/// The bytes of the regular file at `path`, when it has at most
/// `WebAppHosts::largestFile` of them.
std::optional<std::string> readSmallFile(const fs::path& path) {
    std::error_code error;
    if (!fs::is_regular_file(path, error) || error) return std::nullopt;
    std::ifstream stream(path, std::ios::binary);
    if (!stream) return std::nullopt;
    std::uintmax_t size = fs::file_size(path, error);
    if (error || size > WebAppHosts::largestFile) return std::nullopt;
    // One byte more than the size, so a file that grew meanwhile shows; the
    // read never goes past the limit.
    std::string bytes;
    bytes.resize(static_cast<std::size_t>(size) + 1);
    stream.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    if (stream.bad()) return std::nullopt;
    auto count = static_cast<std::size_t>(stream.gcount());
    if (count > size) return std::nullopt;
    bytes.resize(count);
    return bytes;
}

struct PlistFree {
    void operator()(plist_t node) const { plist_free(node); }
};

// Reads the string through its stored length: a string holding a zero byte
// is legal in a property list, and the copying accessor aborts on one.
std::optional<std::string> plistString(plist_t node) {
    std::uint64_t length = 0;
    const char* value = plist_get_string_ptr(node, &length);
    if (value == nullptr) return std::nullopt;
    return std::string(value, static_cast<std::size_t>(length));
}

Json::Value convert(plist_t node, int depth) {
    switch (plist_get_node_type(node)) {
    case PLIST_STRING:
        if (auto text = plistString(node)) return *text;
        return nullptr;
    case PLIST_BOOLEAN: {
        std::uint8_t value = 0;
        plist_get_bool_val(node, &value);
        return value != 0;
    }
    case PLIST_UINT: {
        std::uint64_t value = 0;
        plist_get_uint_val(node, &value);
        return value;
    }
    case PLIST_REAL: {
        double value = 0;
        plist_get_real_val(node, &value);
        return value;
    }
    case PLIST_DICT: {
        if (depth >= WebAppHosts::deepestNesting) return nullptr;
        Json::Value object = Json::Value::object();
        plist_dict_iter iterator = nullptr;
        plist_dict_new_iter(node, &iterator);
        if (iterator == nullptr) return object;
        while (true) {
            char* key = nullptr;
            plist_t value = nullptr;
            plist_dict_next_item(node, iterator, &key, &value);
            if (key == nullptr) break;
            std::string name(key);
            std::free(key);
            if (value != nullptr && !object.contains(name)) object[name] = convert(value, depth + 1);
        }
        std::free(iterator);
        return object;
    }
    default:
        // Arrays, dates, data and the like hold no start address.
        return nullptr;
    }
}

}  // namespace

const std::vector<std::string>& WebAppHosts::chromiumBrowsers() {
    static const std::vector<std::string> ids = [] {
        std::vector<std::string> found;
        for (const Browser& browser : BrowserCatalog::browsers())
            if (browser.dialect == Dialect::chromium) found.push_back(browser.bundleID);
        return found;
    }();
    return ids;
}

std::optional<std::string> WebAppHosts::host(const RunningApplication& app) {
    if (!app.bundleIdentifier) return std::nullopt;
    const std::string& bundleID = *app.bundleIdentifier;
    if (!WebAppStart::mayBeWebApp(bundleID, chromiumBrowsers())) return std::nullopt;
    if (auto kept = known_.find(bundleID); kept != known_.end()) return kept->second;
    std::optional<std::string> found = read(bundleID, app.bundlePath);
    known_[bundleID] = found;
    return found;
}

std::optional<std::string> WebAppHosts::read(const std::string& bundleID,
                                             const std::optional<std::string>& bundlePath) {
    std::vector<std::string> places;
    if (bundlePath) places.push_back(*bundlePath);
    if (auto known = workspace_->urlForApplication(bundleID)) places.push_back(*known);
    for (const std::string& place : places)
        if (auto found = host(fs::path(place))) return found;
    return std::nullopt;
}

std::optional<Json::Value> WebAppHosts::propertyList(std::string_view bytes) {
    if (bytes.empty() || bytes.size() > largestFile) return std::nullopt;
    plist_t raw = nullptr;
    plist_from_memory(bytes.data(), static_cast<std::uint32_t>(bytes.size()), &raw);
    std::unique_ptr<void, PlistFree> root(raw);
    if (!root || plist_get_node_type(root.get()) != PLIST_DICT) return std::nullopt;
    return convert(root.get(), 0);
}

std::optional<std::string> WebAppHosts::host(const fs::path& inBundle) {
    std::error_code error;
    fs::path root = fs::canonical(inBundle, error);
    if (error || !fs::is_directory(root, error)) return std::nullopt;

    if (auto infoPath = resolveInside(root, "Contents/Info.plist"))
        if (auto bytes = readSmallFile(*infoPath))
            if (auto dictionary = propertyList(*bytes))
                if (auto found = WebAppStart::host(*dictionary)) return found;

    auto resources = resolveInside(root, "Contents/Resources");
    if (!resources || !fs::is_directory(*resources, error)) return std::nullopt;
    std::vector<fs::path> manifests;
    constexpr std::size_t mostEntries = 4096;
    std::size_t seen = 0;
    for (fs::directory_iterator it(*resources, error), end; !error && it != end; it.increment(error)) {
        if (++seen > mostEntries) break;
        fs::path name = it->path().filename();
        if (name == "manifest.json" || name.extension() == ".webmanifest") manifests.push_back(name);
    }
    std::sort(manifests.begin(), manifests.end());
    for (const fs::path& name : manifests) {
        auto file = resolveInside(*resources, name);
        if (!file) continue;
        auto bytes = readSmallFile(*file);
        if (!bytes) continue;
        if (auto found = WebAppStart::host(std::string_view(*bytes))) return found;
    }
    return std::nullopt;
}

}  // namespace ashview
