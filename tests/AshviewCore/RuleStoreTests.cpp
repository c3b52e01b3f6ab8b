#include "AshviewCore/AtomicFile.h"
#include "AshviewCore/RuleError.h"
#include "AshviewCore/RuleStore.h"
#include "AshviewCore/RulesDocument.h"

#include "TempFolder.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <iostream>
#include <sstream>

namespace ashview {
namespace {

namespace fs = std::filesystem;

/// Everything written to std::cerr while it lives.
class CapturedErrors final {
public:
    CapturedErrors() : previous_(std::cerr.rdbuf(text_.rdbuf())) {}
    ~CapturedErrors() { std::cerr.rdbuf(previous_); }
    std::string text() const { return text_.str(); }

private:
    std::ostringstream text_;
    std::streambuf* previous_;
};

/// Sets an environment variable for one scope, restoring it afterwards.
class ScopedVariable final {
public:
    ScopedVariable(const char* name, const char* value) : name_(name) {
        if (const char* old = std::getenv(name)) old_ = old;
        if (value) {
            ::setenv(name, value, 1);
        } else {
            ::unsetenv(name);
        }
    }
    ~ScopedVariable() {
        if (old_) {
            ::setenv(name_, old_->c_str(), 1);
        } else {
            ::unsetenv(name_);
        }
    }

private:
    const char* name_;
    std::optional<std::string> old_;
};

class RuleStoreTest : public ::testing::Test {
protected:
    TempFolder temp;
    RuleStore store{temp.path() / "data" / "Drabwise"};

    void writeRules(const std::string& bytes) { AtomicFile::write(store.fileURL(), bytes); }
    std::string fileBytes() const { return AtomicFile::read(store.fileURL()).value_or("<missing>"); }
    std::optional<std::string> backupBytes() const { return AtomicFile::read(store.backupURL()); }

    /// The error `load` and `loadOrCreate` both throw.
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

/// A version 3 document of one valid rule, with its version replaced.
std::string document(std::int64_t version) {
    RuleSet rules = RuleSet::fresh();
    rules.addSite("example.com");
    rules.schemaVersion = version;
    return RulesDocument::encode(rules);
}

TEST_F(RuleStoreTest, CreatesTheFolderAndFileOnceAndReadsThemBack) {
    RuleSet first = store.loadOrCreate();
    EXPECT_EQ(first, RuleSet::fresh());
    EXPECT_EQ(fileBytes(), RulesDocument::encode(RuleSet::fresh()));
    EXPECT_FALSE(backupBytes());

    first.addSite("example.com");
    first.addApp("com.example.tool", "Tool");
    first.newSiteDefaults.stayGray = StayGray::forMinutes(7);
    store.save(first);
    std::string saved = fileBytes();
    RuleSet second = store.loadOrCreate();
    EXPECT_EQ(second, first.savingSnapshot());
    EXPECT_EQ(second.sites[0].settings.stayGray, StayGray::forMinutes(7));  // refreshed from the defaults
    store.save(second);
    EXPECT_EQ(fileBytes(), saved);
}

TEST_F(RuleStoreTest, InvalidRulesNeverReachTheDisk) {
    RuleSet rules = RuleSet::fresh();
    RuleSet limitless = rules;
    limitless.newSiteDefaults.trigger = GrayTrigger::afterLimit(std::nullopt, std::nullopt, CountPeriod::day);
    EXPECT_THROW(store.save(limitless), RuleError);
    EXPECT_FALSE(fs::exists(store.directory));

    store.save(rules);
    std::string before = fileBytes();
    rules.sites.push_back(SiteRule{Uuid::random(), "Example.com", std::nullopt, true, {}, SitePin::followSettings});
    EXPECT_THROW(store.save(rules), RuleError);
    rules.sites.clear();
    rules.daysOff.push_back(DayOff{Uuid::random(), "Never", 2, 30, std::nullopt});
    EXPECT_THROW(store.save(rules), RuleError);
    EXPECT_EQ(fileBytes(), before);
    EXPECT_EQ(fs::directory_iterator(store.directory)->path().filename(), "rules.json");  // no leftovers
}

TEST_F(RuleStoreTest, FilesItCannotTakeAreLeftExactlyAsTheyAre) {
    std::string truncated = document(3).substr(0, 60);
    std::string invalidUtf8 = document(3);
    invalidUtf8.replace(invalidUtf8.find("example.com"), 3, "\xC3\x28x");
    std::string badPin = document(3);
    badPin.replace(badPin.find("followSettings"), 14, "followRules");
    std::string upperHost = document(3);
    upperHost.replace(upperHost.find("example.com"), 7, "EXAMPLE");
    std::string brokenV2 = document(2);
    brokenV2.replace(brokenV2.find("example.com"), 7, "exa mpl");
    const std::string grayZero = R"({"schemaVersion": 1, "daysOff": [], "sites": [],
        "newSiteDefaults": {"days": [], "pin": "followSettings", "when": {"kind": "grayForMinutes", "minutes": 0}}})";

    using Kind = RuleStoreError::Kind;
    struct Case {
        const char* what;
        std::string bytes;
        Kind kind;
        std::optional<std::int64_t> found;
    };
    const Case cases[] = {
        {"empty", "", Kind::unreadable, {}},
        {"blanks", " \n\t ", Kind::unreadable, {}},
        {"not JSON", "rules: yes", Kind::unreadable, {}},
        {"truncated", truncated, Kind::unreadable, {}},
        {"invalid UTF-8", invalidUtf8, Kind::unreadable, {}},
        {"no version", R"({"sites": []})", Kind::unreadable, {}},
        {"version as text", R"({"schemaVersion": "3"})", Kind::unreadable, {}},
        {"version beyond 64 bits", R"({"schemaVersion": 1e300})", Kind::unreadable, {}},
        {"an array", "[3]", Kind::unreadable, {}},
        {"current, bad pin", badPin, Kind::unreadable, {}},
        {"current, invalid host", upperHost, Kind::unreadable, {}},
        {"second, invalid host", brokenV2, Kind::unreadable, {}},
        {"first, gray for 0 minutes", grayZero, Kind::unreadable, {}},
        {"first, not decodable", R"({"schemaVersion": 1, "sites": 5})", Kind::unreadable, {}},
        {"newer, undecodable body", R"({"schemaVersion": 4, "sites": "whatever"})", Kind::newerSchema, 4},
        {"far newer", document(9'223'372'036'854'775'807), Kind::newerSchema, 9'223'372'036'854'775'807},
    };
    for (const Case& item : cases) {
        writeRules(item.bytes);
        auto error = loadError();
        ASSERT_TRUE(error) << item.what;
        EXPECT_EQ(error->kind(), item.kind) << item.what;
        EXPECT_EQ(error->found(), item.found) << item.what;
        EXPECT_EQ(fileBytes(), item.bytes) << item.what;
        EXPECT_FALSE(backupBytes()) << item.what;
    }
    fs::remove(store.fileURL());
    fs::create_directory(store.fileURL());
    EXPECT_EQ(loadError()->kind(), Kind::unreadable);
    EXPECT_TRUE(fs::is_directory(store.fileURL()));
}

TEST_F(RuleStoreTest, VersionsBelowOneAreCopiedToTheBackupAndRefused) {
    for (std::int64_t version : {std::int64_t{0}, std::int64_t{-5}}) {
        std::string bytes = document(version);
        writeRules(bytes);
        std::optional<RuleStoreError> error = loadError();
        ASSERT_TRUE(error);
        EXPECT_EQ(*error, RuleStoreError::unsupportedSchema(version));
        EXPECT_EQ(fileBytes(), bytes);
        EXPECT_EQ(backupBytes(), bytes);
    }
}

TEST_F(RuleStoreTest, VersionTwoIsBackedUpAndRewrittenAsTheCurrentVersion) {
    std::string old = document(2);
    writeRules(old);
    RuleSet rules = store.load();
    EXPECT_EQ(rules.schemaVersion, 3);
    ASSERT_EQ(rules.sites.size(), 1u);
    EXPECT_EQ(rules.sites[0].host, "example.com");
    EXPECT_EQ(backupBytes(), old);
    EXPECT_EQ(RulesDocument::decode(fileBytes()), rules);
    EXPECT_EQ(store.load(), rules);  // now current: no second conversion
    EXPECT_EQ(backupBytes(), old);
}

TEST_F(RuleStoreTest, VersionOneConvertsAndTellsWhatWasLost) {
    const std::string old = R"({
  "schemaVersion": 1,
  "daysOff": [{"id": "00000000-0000-4000-8000-000000000001", "name": "Holiday", "month": 12, "day": 26}],
  "newSiteDefaults": {"days": ["saturday", "sunday"], "opensInColorPerHour": 3, "pin": "grayThisSite",
                      "when": {"kind": "wheneverOpen"}},
  "sites": [
    {"host": "example.com", "id": "11111111-2222-4333-8444-555555555555", "usesNewSiteDefaults": false,
     "settings": {"days": ["monday"], "opensInColorPerHour": 2, "pin": "showInColor",
                  "when": {"kind": "grayForMinutes", "minutes": 20}}},
    {"host": "news.example.com", "id": "11111111-2222-4333-8444-666666666666", "usesNewSiteDefaults": true,
     "settings": {"days": [], "opensInColorPerHour": 9, "pin": "followSettings",
                  "when": {"kind": "grayForMinutes", "minutes": 1}}}
  ]
})";
    writeRules(old);
    RuleSet rules;
    {
        CapturedErrors errors;
        rules = store.load();
        EXPECT_EQ(errors.text(),
                  "Converted rules: example.com: kept gray for 20 minutes; its limit of 2 opens an hour could not "
                  "be carried over.\n");
    }
    EXPECT_EQ(backupBytes(), old);
    RuleSet onDisk = RulesDocument::decode(fileBytes());
    EXPECT_EQ(onDisk.schemaVersion, 3);
    EXPECT_EQ(onDisk, rules);
    EXPECT_EQ(rules.newSiteDefaults.trigger, GrayTrigger::afterLimit(std::nullopt, 3, CountPeriod::hour));
    EXPECT_EQ(rules.sites[0].settings.stayGray, StayGray::forMinutes(20));
    EXPECT_EQ(rules.sites[0].pin, SitePin::showInColor);
    EXPECT_EQ(rules.sites[1].settings, rules.newSiteDefaults);
    EXPECT_EQ(rules.daysOff.at(0).name, "Holiday");
}

TEST_F(RuleStoreTest, AFailedBackupLeavesTheOldFileAndPassesTheErrorOn) {
    std::string old = document(2);
    writeRules(old);
    fs::create_directories(store.backupURL() / "in the way");
    EXPECT_THROW(store.load(), fs::filesystem_error);
    EXPECT_EQ(fileBytes(), old);
}

TEST(RuleStoreFolders, LegacyFolderMovesOnlyIntoAnEmptyPlace) {
    TempFolder temp;
    fs::path from = temp.path() / "Ashview";
    fs::path to = temp.path() / "Drabwise";
    using Move = RuleStore::FolderMove;
    EXPECT_EQ(RuleStore::moveLegacyFolder(from, to), Move::noOldFolder);
    AtomicFile::write(from, "a plain file");
    EXPECT_EQ(RuleStore::moveLegacyFolder(from, to), Move::noOldFolder);
    fs::remove(from);

    AtomicFile::write(from / "rules.json", "{}");
    EXPECT_EQ(RuleStore::moveLegacyFolder(from, from / "inside"), Move::failed);
    AtomicFile::write(to, "");
    EXPECT_EQ(RuleStore::moveLegacyFolder(from, to), Move::newFolderExists);
    fs::remove(to);
    fs::create_symlink(temp.path() / "nowhere", to);
    EXPECT_EQ(RuleStore::moveLegacyFolder(from, to), Move::newFolderExists);
    fs::remove(to);
    EXPECT_EQ(RuleStore::moveLegacyFolder(from, to), Move::moved);
    EXPECT_EQ(AtomicFile::read(to / "rules.json"), "{}");
    EXPECT_FALSE(fs::exists(from));
}

TEST(RuleStoreFolders, TheDataFolderComesFromTheEnvironment) {
    ScopedVariable xdg("XDG_DATA_HOME", "/srv/xdg");
    ScopedVariable home("HOME", "/home/ana");
    {
        ScopedVariable custom("DRABWISE_DATA_DIR", "");
        EXPECT_EQ(RuleStore::customDirectory(), std::nullopt);
        EXPECT_EQ(RuleStore::applicationSupport().directory, fs::path("/srv/xdg/Drabwise"));
        EXPECT_EQ(RuleStore::legacyDirectory(), fs::path("/srv/xdg/Ashview"));
    }
    {
        ScopedVariable custom("DRABWISE_DATA_DIR", "/tmp/elsewhere");
        EXPECT_EQ(RuleStore::applicationSupport().directory, fs::path("/tmp/elsewhere"));
        EXPECT_EQ(RuleStore::applicationSupport().fileURL(), fs::path("/tmp/elsewhere/rules.json"));
        EXPECT_EQ(RuleStore::applicationSupport().backupURL(), fs::path("/tmp/elsewhere/rules.json.bak"));
    }
    ScopedVariable custom("DRABWISE_DATA_DIR", nullptr);
    for (const char* unusable : {"", "relative/data"}) {
        ScopedVariable other("XDG_DATA_HOME", unusable);
        EXPECT_EQ(RuleStore::applicationSupport().directory, fs::path("/home/ana/.local/share/Drabwise"));
    }
}

}  // namespace
}  // namespace ashview
