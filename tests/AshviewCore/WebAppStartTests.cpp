#include "AshviewCore/Reading/BrowserCatalog.h"
#include "AshviewCore/Reading/WebAppStart.h"

#include <gtest/gtest.h>

namespace ashview {
namespace {

using namespace std::string_view_literals;
using Host = std::optional<std::string>;

TEST(WebAppStart, OnlySafariWebAppsAndChromiumShimsMayBeWebApps) {
    std::vector<std::string> chromium;
    for (const Browser& browser : BrowserCatalog::browsers())
        if (browser.dialect == Dialect::chromium) chromium.push_back(browser.bundleID);
    const std::pair<const char*, bool> cases[] = {
        {"com.google.Chrome.app.abcdef", true},  {"com.brave.Browser.app.x", true},
        {"com.apple.Safari.WebApp.1234", true},  {"com.google.Chrome", false},
        {"com.google.Chrome.beta", false},       {"com.google.Chrome.application", false},
        {"com.google.chrome.app.abc", false},    {"com.apple.SafariTechnologyPreview.app.abc", false},
        {"com.apple.Safari.WebApp", false},
    };
    for (const auto& [id, may] : cases) EXPECT_EQ(WebAppStart::mayBeWebApp(id, chromium), may) << id;
    EXPECT_FALSE(WebAppStart::mayBeWebApp("com.google.Chrome.app.abc", {}));
}

TEST(WebAppStart, ReadsTheShimAddressFirstThenTheFirstStartAddressBySortedKey) {
    using V = Json::Value;
    const std::pair<V, Host> cases[] = {
        {V{{"CrAppModeShortcutURL", "https://Mail.Example.com/inbox"}}, "mail.example.com"},
        // The shim key decides alone, even when its address is unusable...
        {V{{"CrAppModeShortcutURL", "ftp://files.example.com"}, {"StartURL", "https://example.com"}}, {}},
        // ...unless it holds no text.
        {V{{"CrAppModeShortcutURL", 7}, {"StartURL", "https://example.com"}}, "example.com"},
        // Any case, any underscores, any prefix; but the key must end in the word.
        {V{{"Manifest_Start_URL", "HTTP://a.example"}}, "a.example"},
        {V{{"startURLs", "https://c.example"}}, {}},
        // Keys go in ascending order and a nested dictionary is searched
        // before later keys: "A" sorts before "StartURL".
        {V{{"StartURL", "https://top.example"}, {"A", {{"deep", {{"start_url", "https://nested.example"}}}}}},
         "nested.example"},
        // The first matching string decides even when it gives no host.
        {V{{"AStartURL", "/relative"}, {"BStartURL", "https://later.example"}}, {}},
        // A matching key that holds a dictionary is searched, not taken; arrays are not searched.
        {V{{"StartURL", {{"x_start_url", "https://inner.example"}}}}, "inner.example"},
        {V{{"StartURL", V::array({"https://x.example"})}}, {}},
        {V::array({V{{"StartURL", "https://x.example"}}}), {}},
    };
    for (const auto& [plist, host] : cases) EXPECT_EQ(WebAppStart::host(plist), host) << plist.dump();
}

TEST(WebAppStart, ReadsOnlyAnAbsoluteWebStartAddressFromAManifest) {
    const std::pair<std::string_view, Host> cases[] = {
        {R"({"name": "Mail", "start_url": "https://WWW.example.com/app"})"sv, "www.example.com"},
        {R"({"start_url": "/app/"})"sv, {}},
        {R"({"start_url": "chrome-extension://abc/"})"sv, {}},
        {R"({"start_url": 5})"sv, {}},
        {R"({"start_url": "https://example.com")"sv, {}},
        {"\xff\xfe"sv, {}},
    };
    for (const auto& [manifest, host] : cases) EXPECT_EQ(WebAppStart::host(manifest), host) << manifest;
}

}  // namespace
}  // namespace ashview
