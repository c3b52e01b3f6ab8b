#include "AshviewCore/Foundation/AtomicFile.h"
#include "AshviewCore/Rules/RuleError.h"
#include "AshviewCore/Rules/RuleStore.h"
#include "AshviewCore/Rules/RulesDocument.h"

#include "ScopedVariable.h"
#include "TempFolder.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <iostream>
#include <sstream>

namespace ashview {
namespace {

namespace fs = std::filesystem;
using Kind = RuleStoreError::Kind;

class RuleStoreTest : public ::testing::Test {
protected:
    TempFolder temp;
    RuleStore store{temp.path() / "data" / "Drabwise"};

    void writeRules(const std::string& bytes) { AtomicFile::write(store.fileURL(), bytes); }
    std::string fileBytes() const { return AtomicFile::read(store.fileURL()).value_or("<missing>"); }
    std::optional<std::string> backupBytes() const { return AtomicFile::read(store.backupURL()); }

    /// The error that `load` and `loadOrCreate` both throw.
    std::optional<RuleStoreError> loadError() {
        std::optional<RuleStoreError> first, second;
        try {
            store.load();
        } catch (const RuleStoreError& error) {
            first = error;
        }
        try {
            store.loadOrCreate();
        } catch (const RuleStoreError& error) {
            second = error;
        }
        EXPECT_EQ(first, second);
        return first;
    }
};

/// A document of one valid rule under the given version.
std::string document(std::int64_t version) {
    RuleSet rules = RuleSet::fresh();
    rules.addSite("example.com");
    rules.schemaVersion = version;
    return RulesDocument::encode(rules);
}

TEST_F(RuleStoreTest, CreatesTheFileOnceAndSavesOnlyValidRules) {
    RuleSet rules = store.loadOrCreate();
    EXPECT_EQ(rules, RuleSet::fresh());
    EXPECT_EQ(fileBytes(), RulesDocument::encode(RuleSet::fresh()));

    rules.addSite("example.com");
    rules.newSiteDefaults.stayGray = StayGray::forMinutes(7);
    store.save(rules);
    std::string saved = fileBytes();
    RuleSet reread = store.loadOrCreate();
    EXPECT_EQ(reread, rules.savingSnapshot());
    store.save(reread);
    EXPECT_EQ(fileBytes(), saved);

    rules.daysOff.push_back(DayOff{Uuid::random(), "Never", 2, 30, std::nullopt});
    EXPECT_THROW(store.save(rules), RuleError);
    EXPECT_EQ(fileBytes(), saved);
    EXPECT_FALSE(backupBytes());
    RuleStore elsewhere(temp.path() / "other");
    EXPECT_THROW(elsewhere.save(rules), RuleError);
    EXPECT_FALSE(fs::exists(elsewhere.directory));
}

TEST_F(RuleStoreTest, FilesItCannotTakeAreLeftExactlyAsTheyAre) {
    std::string badPin = document(3);
    badPin.replace(badPin.find("followSettings"), 14, "followRules");
    std::string upperHost = document(3);
    upperHost.replace(upperHost.find("example.com"), 7, "EXAMPLE");
    std::string brokenV2 = document(2);
    brokenV2.replace(brokenV2.find("example.com"), 7, "exa mpl");
    const std::string grayZero = R"({"schemaVersion": 1, "daysOff": [], "sites": [],
        "newSiteDefaults": {"days": [], "pin": "followSettings", "when": {"kind": "grayForMinutes", "minutes": 0}}})";
    const std::int64_t far = 9'223'372'036'854'775'807;
    const std::tuple<const char*, std::string, Kind, std::optional<std::int64_t>> cases[] = {
        {"no version", R"({"sites": []})", Kind::unreadable, {}},
        {"version beyond 64 bits", R"({"schemaVersion": 1e300})", Kind::unreadable, {}},
        {"current, bad pin", badPin, Kind::unreadable, {}},
        {"current, invalid host", upperHost, Kind::unreadable, {}},
        {"second, invalid host", brokenV2, Kind::unreadable, {}},
        {"first, gray for 0 minutes", grayZero, Kind::unreadable, {}},
        {"newer, undecodable body", R"({"schemaVersion": 4, "sites": "whatever"})", Kind::newerSchema, 4},
        {"far newer", document(far), Kind::newerSchema, far},
    };
    for (const auto& [what, bytes, kind, found] : cases) {
        writeRules(bytes);
        auto error = loadError();
        ASSERT_TRUE(error) << what;
        EXPECT_EQ(error->kind(), kind) << what;
        EXPECT_EQ(error->found(), found) << what;
        EXPECT_EQ(fileBytes(), bytes) << what;
        EXPECT_FALSE(backupBytes()) << what;
    }
}

TEST_F(RuleStoreTest, VersionsBelowOneAreCopiedToTheBackupAndRefused) {
    for (std::int64_t version : {std::int64_t{0}, std::int64_t{-5}}) {
        std::string bytes = document(version);
        writeRules(bytes);
        EXPECT_EQ(loadError(), RuleStoreError::unsupportedSchema(version));
        EXPECT_EQ(fileBytes(), bytes);
        EXPECT_EQ(backupBytes(), bytes);
    }
}

TEST_F(RuleStoreTest, VersionTwoIsBackedUpAndRewrittenUnlessTheBackupFails) {
    std::string old = document(2);
    writeRules(old);
    fs::create_directories(store.backupURL() / "in the way");
    EXPECT_THROW(store.load(), fs::filesystem_error);
    EXPECT_EQ(fileBytes(), old);

    fs::remove_all(store.backupURL());
    RuleSet rules = store.load();
    EXPECT_EQ(rules.schemaVersion, 3);
    EXPECT_EQ(rules.sites.at(0).host, "example.com");
    EXPECT_EQ(backupBytes(), old);
    EXPECT_EQ(fileBytes(), RulesDocument::encode(rules));
}

TEST_F(RuleStoreTest, VersionOneConvertsAndTellsWhatWasLost) {
    // One rule of its own that loses its limit of opens; the follower's own
    // old settings are never converted and tell nothing.
    const std::string old = R"({"schemaVersion": 1, "daysOff": [],
  "newSiteDefaults": {"days": ["saturday"], "opensInColorPerHour": 3, "pin": "grayThisSite",
                      "when": {"kind": "wheneverOpen"}},
  "sites": [{"host": "example.com", "id": "11111111-2222-4333-8444-555555555555", "usesNewSiteDefaults": false,
             "settings": {"days": [], "opensInColorPerHour": 2, "pin": "showInColor",
                          "when": {"kind": "grayForMinutes", "minutes": 20}}},
            {"host": "news.example.com", "id": "11111111-2222-4333-8444-666666666666", "usesNewSiteDefaults": true,
             "settings": {"days": [], "opensInColorPerHour": 9, "pin": "followSettings",
                          "when": {"kind": "grayForMinutes", "minutes": 1}}}]})";
    writeRules(old);
    std::ostringstream errors;
    std::streambuf* previous = std::cerr.rdbuf(errors.rdbuf());
    RuleSet rules = store.load();
    std::cerr.rdbuf(previous);
    EXPECT_EQ(errors.str(),
              "Converted rules: example.com: kept gray for 20 minutes; its limit of 2 opens an hour could not be "
              "carried over.\n");
    EXPECT_EQ(backupBytes(), old);
    EXPECT_EQ(fileBytes(), RulesDocument::encode(rules));
    EXPECT_EQ(rules.sites.at(0).settings.stayGray, StayGray::forMinutes(20));
}

TEST(RuleStoreFolders, LegacyFolderMovesOnlyIntoAnEmptyPlace) {
    TempFolder temp;
    fs::path from = temp.path() / "Ashview";
    fs::path to = temp.path() / "Drabwise";
    using Move = RuleStore::FolderMove;
    AtomicFile::write(from, "a plain file");
    EXPECT_EQ(RuleStore::moveLegacyFolder(from, to), Move::noOldFolder);
    fs::remove(from);
    AtomicFile::write(from / "rules.json", "{}");
    EXPECT_EQ(RuleStore::moveLegacyFolder(from, from / "inside"), Move::failed);
    fs::create_symlink(temp.path() / "nowhere", to);
    EXPECT_EQ(RuleStore::moveLegacyFolder(from, to), Move::newFolderExists);
    fs::remove(to);
    EXPECT_EQ(RuleStore::moveLegacyFolder(from, to), Move::moved);
    EXPECT_EQ(AtomicFile::read(to / "rules.json"), "{}");
    EXPECT_EQ(RuleStore::moveLegacyFolder(from, to), Move::newFolderExists);
}

TEST(RuleStoreFolders, TheDataFolderComesFromTheEnvironment) {
    ScopedVariable xdg("XDG_DATA_HOME", "/srv/xdg");
    ScopedVariable home("HOME", "/home/ana");
    // An empty choice of folder is no choice; the usual case is pinned at start-up.
    ScopedVariable custom("DRABWISE_DATA_DIR", "");
    EXPECT_EQ(RuleStore::applicationSupport().directory, fs::path("/srv/xdg/Drabwise"));
    for (const char* unusable : {"", "relative/data"}) {
        ScopedVariable other("XDG_DATA_HOME", unusable);
        EXPECT_EQ(RuleStore::applicationSupport().directory, fs::path("/home/ana/.local/share/Drabwise"));
    }
    ScopedVariable set("DRABWISE_DATA_DIR", "/tmp/elsewhere");
    EXPECT_EQ(RuleStore::applicationSupport().backupURL(), fs::path("/tmp/elsewhere/rules.json.bak"));
}

}  // namespace
}  // namespace ashview
