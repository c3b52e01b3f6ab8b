#include "AshviewCore/UsageStore.h"

#include "AshviewCore/AtomicFile.h"
#include "AshviewCore/UsageRecorder.h"

#include "TempFolder.h"

#include <gtest/gtest.h>

#include <fstream>

namespace ashview {
namespace {

namespace fs = std::filesystem;

void put(const fs::path& path, const std::string& bytes) {
    fs::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << bytes;
}

std::string contents(const fs::path& path) { return AtomicFile::read(path).value_or("<missing>"); }

std::vector<std::string> namesIn(const fs::path& folder) {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder)) names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

UsageHistory sample() {
    UsageHistory history;
    history.began = Instant{800000000};
    history.lastRun = UsageHistory::Run{Instant{800000300}, std::nullopt};
    history.update("news.example", "2026-05-12", [](UsageHistory::Totals& totals) {
        totals.seconds = 75.5;
        totals.visits = 3;
        totals.grayStayed = 1;
    });
    history.days["2026-05-13"].unobservedSeconds = 60;
    return history;
}

TEST(UsageStore, SavesAndLoadsAndStartsFreshWithoutAFile) {
    TempFolder temp;
    UsageStore store{temp.path() / "deep" / "er"};
    UsageStore::Loaded nothing = store.load();
    EXPECT_EQ(nothing.history, UsageHistory{});
    EXPECT_FALSE(nothing.setBrokenFileAside);
    EXPECT_FALSE(fs::exists(store.directory)) << "loading writes nothing";

    store.save(sample());
    EXPECT_EQ(store.fileURL(), temp.path() / "deep" / "er" / "history.json");
    EXPECT_EQ(contents(store.fileURL()), Json::encode(sample().toJson()));
    UsageStore::Loaded loaded = store.load();
    EXPECT_EQ(loaded.history, sample());
    EXPECT_FALSE(loaded.setBrokenFileAside);
    EXPECT_EQ(namesIn(store.directory), std::vector<std::string>{"history.json"});
}

TEST(UsageStore, LeavesAFileOfANewerLayoutExactlyAsItIs) {
    TempFolder temp;
    UsageStore store{temp.path()};
    for (std::string newer : {R"({"schemaVersion": 2, "days": {}})", R"({"schemaVersion":7,"days":"elsewhere"} )",
                              R"({"schemaVersion": 2})"}) {
        put(store.fileURL(), newer);
        try {
            store.load();
            ADD_FAILURE() << "no error for " << newer;
        } catch (const UsageStoreError& error) {
            EXPECT_EQ(error.kind(), UsageStoreError::Kind::newerSchema);
            EXPECT_EQ(error.found(), newer.find('7') == std::string::npos ? 2 : 7);
        }
        EXPECT_EQ(contents(store.fileURL()), newer);
        EXPECT_EQ(namesIn(temp.path()), std::vector<std::string>{"history.json"});
    }
}

TEST(UsageStore, SetsABrokenFileAsideAndKeepsOnlyTheLatest) {
    TempFolder temp;
    UsageStore store{temp.path()};
    for (const std::string& broken : std::vector<std::string>{R"({"schemaVersion": 0, "days": {}})", R"({"schemaVersion": -3, "days": {}})",
                               R"({"schemaVersion": 1})", R"({"schemaVersion": 1, "days": {"x": 4}})",
                               std::string("garbage\0\xff", 9), std::string(), R"({"schemaVersion": "2", "days": {}})"}) {
        put(store.fileURL(), broken);
        UsageStore::Loaded loaded = store.load();
        EXPECT_EQ(loaded.history, UsageHistory{});
        EXPECT_TRUE(loaded.setBrokenFileAside);
        EXPECT_EQ(contents(store.brokenFileURL()), broken) << "the latest broken file replaces the one before";
        EXPECT_FALSE(fs::exists(store.fileURL()));
        UsageStore::Loaded again = store.load();
        EXPECT_FALSE(again.setBrokenFileAside);
        EXPECT_EQ(again.history, UsageHistory{});
    }
    // A good file leaves the broken one alone.
    store.save(sample());
    EXPECT_EQ(store.load().history, sample());
    EXPECT_TRUE(fs::exists(store.brokenFileURL()));
}

TEST(UsageStore, ThrowsWithoutMovingAnythingWhenTheDiskRefuses) {
    TempFolder temp;
    UsageStore store{temp.path()};
    // A history file that cannot be read is not set aside.
    fs::create_directories(store.fileURL() / "inside");
    EXPECT_THROW(store.load(), fs::filesystem_error);
    EXPECT_TRUE(fs::is_directory(store.fileURL() / "inside"));
    EXPECT_FALSE(fs::exists(store.brokenFileURL()));

    // A save that cannot replace the file leaves it and no temporary file.
    UsageRecorder recorder{sample()};
    recorder.clearHistory(Instant{800000400});
    EXPECT_THROW(store.save(recorder.history()), fs::filesystem_error);
    EXPECT_TRUE(recorder.hasUnsavedChanges()) << "nothing is lost in memory";
    EXPECT_EQ(namesIn(temp.path()), std::vector<std::string>{"history.json"});
    EXPECT_EQ(namesIn(store.fileURL()), std::vector<std::string>{"inside"});

    // A broken file that cannot be set aside stays where it was.
    fs::remove_all(store.fileURL());
    put(store.fileURL(), "broken");
    put(store.brokenFileURL() / "occupied", "x");
    EXPECT_THROW(store.load(), fs::filesystem_error);
    EXPECT_EQ(contents(store.fileURL()), "broken");

    // A folder that is a file cannot hold the history.
    put(temp.path() / "plain", "x");
    EXPECT_THROW((UsageStore{temp.path() / "plain"}.save(sample())), fs::filesystem_error);
}

TEST(UsageStore, ClearRemovesBothFilesAndNeedsNeither) {
    TempFolder temp;
    UsageStore store{temp.path()};
    EXPECT_NO_THROW(store.clear());
    put(store.fileURL(), "{}");
    put(store.brokenFileURL(), "[");
    put(temp.path() / "rules.json", "{}");
    store.clear();
    EXPECT_EQ(namesIn(temp.path()), std::vector<std::string>{"rules.json"});
    put(store.brokenFileURL(), "[");
    store.clear();
    EXPECT_EQ(namesIn(temp.path()), std::vector<std::string>{"rules.json"});

    // A failure stops at once and leaves the broken file.
    fs::create_directories(store.fileURL() / "inside");
    put(store.brokenFileURL(), "[");
    EXPECT_THROW(store.clear(), fs::filesystem_error);
    EXPECT_EQ(contents(store.brokenFileURL()), "[");
}

}  // namespace
}  // namespace ashview
