#include "AshviewCore/Reading/BrowserCatalog.h"

#include <gtest/gtest.h>

namespace ashview {
namespace {

TEST(BrowserCatalog, FindsTheTenBrowsersByExactIdentifierOnly) {
    const auto& all = BrowserCatalog::browsers();
    ASSERT_EQ(all.size(), 10u);
    EXPECT_EQ(all.front().bundleID, "com.google.Chrome");
    // The eight Chromium browsers come first, then the two Safaris.
    for (std::size_t i = 0; i < 10; ++i) EXPECT_EQ(all[i].dialect, i < 8 ? Dialect::chromium : Dialect::safari) << i;
    for (const Browser& entry : all) EXPECT_EQ(BrowserCatalog::browser(entry.bundleID), entry);
    for (const char* unknown : {"com.google.chrome", "com.google.Chrome.app.abc", ""}) {
        EXPECT_EQ(BrowserCatalog::browser(unknown), std::nullopt) << unknown;
    }
}

TEST(BrowserCatalog, CountsTheEarliestLaunchedLiveInstance) {
    using I = InstanceFacts;
    Instant early{100}, late{200};
    EXPECT_EQ(BrowserCatalog::countingInstance({}), std::nullopt);
    EXPECT_EQ(BrowserCatalog::countingInstance({I{true, early}, I{true, std::nullopt}}), std::nullopt);
    EXPECT_EQ(BrowserCatalog::countingInstance({I{false, late}, I{false, early}}), 1u);
    // A dated instance beats an undated one wherever it stands.
    EXPECT_EQ(BrowserCatalog::countingInstance({I{false, std::nullopt}, I{false, late}}), 1u);
    // A terminated instance never counts, however old.
    EXPECT_EQ(BrowserCatalog::countingInstance({I{true, early}, I{false, late}}), 1u);
    // Ties keep the first in the list, dated or not.
    EXPECT_EQ(BrowserCatalog::countingInstance({I{false, late}, I{false, late}}), 0u);
    EXPECT_EQ(BrowserCatalog::countingInstance({I{true, {}}, I{false, {}}, I{false, {}}}), 1u);
}

}  // namespace
}  // namespace ashview
