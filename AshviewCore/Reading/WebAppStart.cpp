#include "AshviewCore/Reading/WebAppStart.h"

#include "AshviewCore/Rules/Host.h"
#include "AshviewCore/Foundation/Url.h"

#include <algorithm>
#include <cctype>

namespace ashview::WebAppStart {

namespace {

bool startsWith(std::string_view text, std::string_view prefix) {
    return text.size() >= prefix.size() && text.compare(0, prefix.size(), prefix) == 0;
}

bool endsInStartURL(std::string_view key) {
    std::string folded;
    folded.reserve(key.size());
    for (char c : key) {
        if (c == '_') continue;
        folded.push_back(static_cast<char>(std::tolower(static_cast<unsigned char>(c))));
    }
    constexpr std::string_view suffix = "starturl";
    return folded.size() >= suffix.size() && folded.compare(folded.size() - suffix.size(), suffix.size(), suffix) == 0;
}

// Objects keep their keys sorted, so walking one visits the keys in
// ascending order.
std::optional<std::string> startAddress(const Json::Value& dictionary) {
    for (const auto& [key, value] : dictionary.items()) {
        if (value.is_string() && endsInStartURL(key)) return value.get<std::string>();
        if (value.is_object())
            if (auto nested = startAddress(value)) return nested;
    }
    return std::nullopt;
}

}  // namespace

bool mayBeWebApp(std::string_view bundleID, const std::vector<std::string>& chromiumBrowsers) {
    if (startsWith(bundleID, safariPrefix)) return true;
    for (const std::string& browser : chromiumBrowsers)
        if (startsWith(bundleID, browser + ".app.")) return true;
    return false;
}

std::optional<std::string> webHost(std::string_view address) {
    std::optional<std::string> scheme = Url::scheme(address);
    if (!scheme || (*scheme != "https" && *scheme != "http")) return std::nullopt;
    std::optional<std::string> host = Url::host(address);
    if (!host) return std::nullopt;
    return Host::normalize(*host);
}

std::optional<std::string> host(const Json::Value& infoPlist) {
    if (!infoPlist.is_object()) return std::nullopt;
    auto shortcut = infoPlist.find("CrAppModeShortcutURL");
    if (shortcut != infoPlist.end() && shortcut->is_string()) return webHost(shortcut->get<std::string>());
    if (auto address = startAddress(infoPlist)) return webHost(*address);
    return std::nullopt;
}

std::optional<std::string> host(std::string_view manifest) {
    Json::Value document = Json::Value::parse(manifest.begin(), manifest.end(), nullptr, false);
    if (!document.is_object()) return std::nullopt;
    auto start = document.find("start_url");
    if (start == document.end() || !start->is_string()) return std::nullopt;
    return webHost(start->get<std::string>());
}

}  // namespace ashview::WebAppStart
