#include "AshviewCore/Usage/UsageStore.h"

#include "AshviewCore/Foundation/AtomicFile.h"

#include "TempFolder.h"

#include <gtest/gtest.h>

#include <fstream>

namespace ashview {
namespace {

namespace fs = std::filesystem;
using Names = std::vector<std::string>;

void put(const fs::path& path, const std::string& bytes) { std::ofstream(path, std::ios::binary) << bytes; }
std::string contents(const fs::path& path) { return AtomicFile::read(path).value_or("<missing>"); }
Names namesIn(const fs::path& folder) {
    Names names;
    for (const auto& entry : fs::directory_iterator(folder)) names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

// A newer file left as it is, and a broken one replacing the one set aside
// before, are pinned through the usage keeper.

TEST(UsageStore, SavesAndLoadsTheSameHistory) {
    TempFolder temp;
    UsageStore store{temp.path() / "deep" / "er"};
    EXPECT_EQ(store.load().history, UsageHistory{});
    UsageHistory history;
    history.began = Instant{800000000};
    history.update("news.example", "2026-05-12", [](UsageHistory::Totals& totals) { totals.seconds = 75.5; });
    store.save(history);
    EXPECT_EQ(contents(store.fileURL()), Json::encode(history.toJson()));
    UsageStore::Loaded loaded = store.load();
    EXPECT_EQ(loaded.history, history);
    EXPECT_FALSE(loaded.setBrokenFileAside);
}

TEST(UsageStore, SetsAsideFilesOfNoKnownVersionOrWithoutDays) {
    TempFolder temp;
    UsageStore store{temp.path()};
    for (const std::string& broken : Names{R"({"schemaVersion": 0, "days": {}})", R"({"schemaVersion": 1})"}) {
        put(store.fileURL(), broken);
        UsageStore::Loaded loaded = store.load();
        EXPECT_EQ(loaded.history, UsageHistory{});
        EXPECT_TRUE(loaded.setBrokenFileAside);
        EXPECT_EQ(contents(store.brokenFileURL()), broken);
        EXPECT_EQ(namesIn(temp.path()), Names{"history.json.broken"});
        EXPECT_FALSE(store.load().setBrokenFileAside);
    }
    put(store.fileURL(), "{}");
    store.clear();
    EXPECT_TRUE(namesIn(temp.path()).empty());
    EXPECT_NO_THROW(store.clear());
}

TEST(UsageStore, MovesNothingWhenTheDiskRefuses) {
    TempFolder temp;
    UsageStore store{temp.path()};
    // Clearing stops at the first failure and leaves the broken file.
    fs::create_directories(store.fileURL() / "inside");
    put(store.brokenFileURL(), "[");
    EXPECT_THROW(store.clear(), fs::filesystem_error);
    EXPECT_EQ(contents(store.brokenFileURL()), "[");
    // A broken file that cannot be set aside stays where it was.
    fs::remove_all(store.fileURL());
    fs::remove(store.brokenFileURL());
    put(store.fileURL(), "broken");
    fs::create_directories(store.brokenFileURL() / "occupied");
    EXPECT_THROW(store.load(), fs::filesystem_error);
    EXPECT_EQ(contents(store.fileURL()), "broken");
}

}  // namespace
}  // namespace ashview
