#include "Ashview/Reading/BrowserProbe.h"

#include <gtest/gtest.h>

namespace ashview {
namespace {

using V = ScriptValue;

V item(std::int64_t id, std::int64_t left, std::int64_t top, std::int64_t right, std::int64_t bottom, V address) {
    return V::list({V::number(id), V::number(left), V::number(top), V::number(right), V::number(bottom), address});
}

TEST(BrowserProbeScript, IsExactlyTheSeventeenLinesOfEachDialect) {
    const std::string chrome =
        "if application id \"com.google.Chrome\" is running then\n"
        "    with timeout of 3 seconds\n"
        "        tell application id \"com.google.Chrome\"\n"
        "            set out to {}\n"
        "            repeat with w in windows\n"
        "                try\n"
        "                    set b to bounds of w\n"
        "                    set end of out to {id of w, item 1 of b, item 2 of b, item 3 of b, item 4 of b, "
        "URL of active tab of w}\n"
        "                on error number n\n"
        "                    if n is -1712 then error number n\n"
        "                end try\n"
        "            end repeat\n"
        "            return out\n"
        "        end tell\n"
        "    end timeout\n"
        "end if\n"
        "return {}";
    EXPECT_EQ(BrowserProbe::source(*BrowserCatalog::browser("com.google.Chrome")), chrome);

    std::string safari = chrome;
    for (std::size_t at; (at = safari.find("com.google.Chrome")) != std::string::npos;)
        safari.replace(at, 17, "com.apple.SafariTechnologyPreview");
    safari.replace(safari.find("active tab"), 10, "current tab");
    EXPECT_EQ(BrowserProbe::source(*BrowserCatalog::browser("com.apple.SafariTechnologyPreview")), safari);
}

TEST(BrowserProbeReply, KeepsOnlyItemsOfSixAndReadsAbsentFieldsAsZero) {
    V reply = V::list({
        item(7, 10, 20, 810, 620, V::string("https://example.com/a")),
        V::list({V::number(1), V::number(2), V::number(3), V::number(4), V::number(5)}),
        V::list({V::number(1), V::number(2), V::number(3), V::number(4), V::number(5), V::number(6), V::number(7)}),
        V::string("stray"),
        V::list({V::missingValue(), V::decimal(-5.7), V::string("3"), V::number(4LL << 32), V::truth(true),
                 V::missingValue()}),
        item(-3, 0, 0, 100, 100, V::number(42)),
    });
    std::vector<ReplyItem> items = BrowserProbe::items(reply);
    ASSERT_EQ(items.size(), 3u);
    EXPECT_EQ(items[0], (ReplyItem{7, Rect{10, 20, 800, 600}, "https://example.com/a"}));
    // Missing, textual, out-of-range and Boolean numbers count as 0; a real
    // is cut to its integral part.
    EXPECT_EQ(items[1], (ReplyItem{0, Rect{-5, 0, 5, 0}, std::nullopt}));
    // A negative id is kept with its sign; an address that is no text is none.
    EXPECT_EQ(items[2], (ReplyItem{-3, Rect{0, 0, 100, 100}, std::nullopt}));

    EXPECT_TRUE(BrowserProbe::items(V::list({})).empty());
    EXPECT_TRUE(BrowserProbe::items(V::string("not a list")).empty());
    EXPECT_TRUE(BrowserProbe::items(V::missingValue()).empty());
}

TEST(BrowserProbeReply, PairsWindowsAndKeepsEarlierPartnersByWindowNumber) {
    const double height = 900;
    // Quartz (10, 20, 800x600) is Cocoa (10, 280, 800x600) on a 900-high display.
    std::vector<ForeignWindow> screen{
        {301, Rect{10, 280, 800, 600}, true},
        {302, Rect{10, 280, 800, 600}, true},
        {303, Rect{500, 100, 400, 300}, false},
    };
    std::vector<ReplyItem> items{
        {1, Rect{10, 20, 800, 600}, "https://WWW.Example.com/x"},
        {2, Rect{10, 20, 800, 600}, "chrome://newtab/"},
        {3, Rect{0, 0, 50, 50}, std::nullopt},
        {4, Rect{500, 500, 400, 300}, "favorites://"},
    };
    auto windows = BrowserProbe::windows("com.google.Chrome", items, screen, {}, height);
    ASSERT_EQ(windows.size(), 4u);
    EXPECT_EQ(windows[0], (ProbedWindow{{"com.google.Chrome", 1}, screen[0], "www.example.com"}));
    EXPECT_EQ(windows[1].screenWindow, screen[1]);
    EXPECT_EQ(windows[2], (ProbedWindow{{"com.google.Chrome", 3}, std::nullopt, std::nullopt}));
    EXPECT_EQ(windows[3], (ProbedWindow{{"com.google.Chrome", 4}, screen[2], std::nullopt}));

    // Window 2 was paired with 301 last time: it keeps it, and window 1 takes
    // the other of the two same-sized windows. A previous number that is gone
    // is forgotten, and geometry decides.
    std::unordered_map<WindowKey, std::int64_t> previous{{{"com.google.Chrome", 2}, 301},
                                                         {{"com.google.Chrome", 1}, 999}};
    windows = BrowserProbe::windows("com.google.Chrome", items, screen, previous, height);
    EXPECT_EQ(windows[1].screenWindow->number, 301);
    EXPECT_EQ(windows[0].screenWindow->number, 302);
}

}  // namespace
}  // namespace ashview
