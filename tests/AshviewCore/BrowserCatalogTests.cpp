#include "AshviewCore/BrowserCatalog.h"

#include <gtest/gtest.h>

#include <unordered_set>

namespace ashview {
namespace {

TEST(BrowserCatalog, ListsTenBrowsersInTheirFixedOrderAndFindsThemByExactIdentifier) {
    const auto& all = BrowserCatalog::browsers();
    ASSERT_EQ(all.size(), 10u);
    EXPECT_EQ(all.front().bundleID, "com.google.Chrome");
    EXPECT_EQ(all[5].name, "Microsoft Edge");
    EXPECT_EQ(all[8].bundleID, "com.apple.Safari");
    EXPECT_EQ(all[8].dialect, Dialect::safari);
    EXPECT_EQ(all[9].dialect, Dialect::safari);
    for (std::size_t i = 0; i < 8; ++i) EXPECT_EQ(all[i].dialect, Dialect::chromium) << all[i].name;
    std::unordered_set<Browser> distinct(all.begin(), all.end());
    EXPECT_EQ(distinct.size(), 10u);

    for (const Browser& entry : all) EXPECT_EQ(BrowserCatalog::browser(entry.bundleID), entry);
    EXPECT_EQ(BrowserCatalog::browser("com.google.chrome"), std::nullopt);
    EXPECT_EQ(BrowserCatalog::browser("com.google.Chrome.app.abc"), std::nullopt);
    EXPECT_EQ(BrowserCatalog::browser(""), std::nullopt);
    // `isTested` takes part in equality.
    Browser changed = all[0];
    changed.isTested = false;
    EXPECT_NE(changed, all[0]);
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
    EXPECT_EQ(BrowserCatalog::countingInstance({I{true, std::nullopt}, I{false, std::nullopt}, I{false, std::nullopt}}),
              1u);
}

}  // namespace
}  // namespace ashview
