#include "AshviewCore/BrowserCatalog.h"
#include "AshviewCore/WebAppStart.h"

#include <gtest/gtest.h>

namespace ashview {
namespace {

std::vector<std::string> chromiumBrowsers() {
    std::vector<std::string> ids;
    for (const Browser& browser : BrowserCatalog::browsers())
        if (browser.dialect == Dialect::chromium) ids.push_back(browser.bundleID);
    return ids;
}

TEST(WebAppStart, OnlySafariWebAppsAndChromiumShimsMayBeWebApps) {
    auto chromium = chromiumBrowsers();
    EXPECT_TRUE(WebAppStart::mayBeWebApp("com.google.Chrome.app.abcdef", chromium));
    EXPECT_TRUE(WebAppStart::mayBeWebApp("com.brave.Browser.app.x", chromium));
    EXPECT_TRUE(WebAppStart::mayBeWebApp("com.apple.Safari.WebApp.1234", chromium));
    EXPECT_FALSE(WebAppStart::mayBeWebApp("com.google.Chrome", chromium));
    EXPECT_FALSE(WebAppStart::mayBeWebApp("com.google.Chrome.beta", chromium));
    EXPECT_FALSE(WebAppStart::mayBeWebApp("com.google.Chrome.application", chromium));
    EXPECT_FALSE(WebAppStart::mayBeWebApp("com.google.chrome.app.abc", chromium));
    EXPECT_FALSE(WebAppStart::mayBeWebApp("com.apple.SafariTechnologyPreview.app.abc", chromium));
    EXPECT_FALSE(WebAppStart::mayBeWebApp("com.apple.Safari", chromium));
    EXPECT_FALSE(WebAppStart::mayBeWebApp("com.apple.Safari.WebApp", chromium));
    EXPECT_FALSE(WebAppStart::mayBeWebApp("com.google.Chrome.app.abc", {}));
}

TEST(WebAppStart, ReadsTheShimAddressFirstThenTheFirstStartAddressBySortedKey) {
    using V = Json::Value;
    EXPECT_EQ(WebAppStart::host(V{{"CrAppModeShortcutURL", "https://Mail.Example.com/inbox"}}), "mail.example.com");
    // The shim key decides alone, even when its address is unusable.
    EXPECT_EQ(WebAppStart::host(V{{"CrAppModeShortcutURL", "ftp://files.example.com"},
                                  {"StartURL", "https://example.com"}}),
              std::nullopt);
    // A shim key that holds no text is as good as absent.
    EXPECT_EQ(WebAppStart::host(V{{"CrAppModeShortcutURL", 7}, {"StartURL", "https://example.com"}}), "example.com");
    // Any case, any underscores, any prefix; but the key must end in the word.
    EXPECT_EQ(WebAppStart::host(V{{"Manifest_Start_URL", "HTTP://a.example"}}), "a.example");
    EXPECT_EQ(WebAppStart::host(V{{"start_url", "https://b.example"}}), "b.example");
    EXPECT_EQ(WebAppStart::host(V{{"startURLs", "https://c.example"}}), std::nullopt);
    // Keys go in ascending order and a nested dictionary is searched before
    // later keys: "A" sorts before "StartURL".
    EXPECT_EQ(WebAppStart::host(V{{"StartURL", "https://top.example"},
                                  {"A", {{"deep", {{"start_url", "https://nested.example"}}}}}}),
              "nested.example");
    // The first matching string decides even when it gives no host.
    EXPECT_EQ(WebAppStart::host(V{{"AStartURL", "/relative"}, {"BStartURL", "https://later.example"}}), std::nullopt);
    // A matching key that holds a dictionary is searched, not taken.
    EXPECT_EQ(WebAppStart::host(V{{"StartURL", {{"x_start_url", "https://inner.example"}}}}), "inner.example");
    EXPECT_EQ(WebAppStart::host(V{{"StartURL", V::array({"https://x.example"})}}), std::nullopt);
    EXPECT_EQ(WebAppStart::host(V::array({V{{"StartURL", "https://x.example"}}})), std::nullopt);
    EXPECT_EQ(WebAppStart::host(V{{"StartURL", "mailto:someone@example.com"}}), std::nullopt);
    EXPECT_EQ(WebAppStart::host(V{{"StartURL", "https:///nohost"}}), std::nullopt);
}

TEST(WebAppStart, ReadsOnlyAnAbsoluteWebStartAddressFromAManifest) {
    using namespace std::string_view_literals;
    EXPECT_EQ(WebAppStart::host(R"({"name": "Mail", "start_url": "https://WWW.example.com/app"})"sv),
              "www.example.com");
    EXPECT_EQ(WebAppStart::host(R"({"start_url": "/app/"})"sv), std::nullopt);
    EXPECT_EQ(WebAppStart::host(R"({"start_url": "chrome-extension://abc/"})"sv), std::nullopt);
    EXPECT_EQ(WebAppStart::host(R"({"start_url": 5})"sv), std::nullopt);
    EXPECT_EQ(WebAppStart::host(R"(["https://example.com"])"sv), std::nullopt);
    EXPECT_EQ(WebAppStart::host(R"({"start_url": "https://example.com")"sv), std::nullopt);
    EXPECT_EQ(WebAppStart::host("\xff\xfe"sv), std::nullopt);
    EXPECT_EQ(WebAppStart::host(""sv), std::nullopt);
}

}  // namespace
}  // namespace ashview
