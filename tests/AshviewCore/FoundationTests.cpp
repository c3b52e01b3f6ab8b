#include "AshviewCore/Foundation/AtomicFile.h"
#include "AshviewCore/Foundation/Json.h"
#include "AshviewCore/Foundation/Url.h"
#include "AshviewCore/Foundation/Uuid.h"

#include "TempFolder.h"

#include <gmock/gmock.h>

#include <sys/stat.h>

namespace ashview {
namespace {

TEST(Uuid, WritesUpperCaseAndParsesOnlyTheCanonicalForm) {
    auto parsed = Uuid::parse("e621e1f8-c36c-495a-93fc-0c247a3e6e5f");
    ASSERT_TRUE(parsed);
    EXPECT_EQ(parsed->text(), "E621E1F8-C36C-495A-93FC-0C247A3E6E5F");
    EXPECT_EQ(Uuid::parse(parsed->text()), parsed);
    for (const char* bad : {"", "E621E1F8C36C495A93FC0C247A3E6E5F", "E621E1F8-C36C-495A-93FC-0C247A3E6E5FF",
                            "G621E1F8-C36C-495A-93FC-0C247A3E6E5F", " E621E1F8-C36C-495A-93FC-0C247A3E6E5"}) {
        EXPECT_FALSE(Uuid::parse(bad)) << bad;
    }
    EXPECT_NE(Uuid::random(), Uuid::random());
}

TEST(Url, GivesTheHostOfAbsoluteAddressesOnly) {
    const std::pair<const char*, std::optional<std::string>> cases[] = {
        {"https://news.example.com:8443/a/b?c=d#e", "news.example.com"}, {"http://user:pw@example.org", "example.org"},
        {"https://[::1]:80/", "::1"}, {"example.com/path", {}}, {"file:///tmp/x", {}}, {"https://exa mple.com", {}},
        {"https:///nohost", {}}, {"", {}}};
    for (const auto& [address, host] : cases) EXPECT_EQ(Url::host(address), host) << address;
    EXPECT_EQ(Url::scheme("HTTPS://example.com"), "https");
}

TEST(Json, EncodesSortedPrettyAndStable) {
    Json::Value document = {{"zeta", 1}, {"alpha", {{"b", true}, {"a", "x"}}}};
    EXPECT_EQ(Json::encode(document),
              "{\n  \"alpha\": {\n    \"a\": \"x\",\n    \"b\": true\n  },\n  \"zeta\": 1\n}\n");
    EXPECT_EQ(Json::encode(Json::parse(Json::encode(document))), Json::encode(document));
}

TEST(Json, ReadsStrictlyWithPaths) {
    Json::Value document = Json::parse(R"({"n": 3, "f": 2.0, "half": 2.5, "s": "x", "z": null,
                                           "big": 18446744073709551615, "b": false})");
    Json::Object object(document, "doc");
    EXPECT_EQ(object.integer("n"), 3);
    EXPECT_EQ(object.integer("f"), 2);
    EXPECT_EQ(object.optionalInteger("z"), std::nullopt);
    EXPECT_EQ(object.optionalInteger("absent"), std::nullopt);
    EXPECT_FALSE(object.boolean("b"));
    EXPECT_THROW(object.integer("half"), Json::DecodingError);
    EXPECT_THROW(object.integer("big"), Json::DecodingError);
    EXPECT_THROW(object.integer("s"), Json::DecodingError);
    EXPECT_THROW(object.string("n"), Json::DecodingError);
    EXPECT_THROW(object.boolean("n"), Json::DecodingError);
    EXPECT_THROW(Json::number(Json::parse("1e400"), "huge"), Json::DecodingError);
    using namespace ::testing;
    EXPECT_THAT([&] { object.string("z"); }, ThrowsMessage<Json::DecodingError>(HasSubstr("doc.z")));
}

TEST(Json, RejectsBrokenBytesAndProbesOnlyTheVersion) {
    for (const char* broken : {"{\"a\": \"\xff\"}", "{\"a\": 1", ""})
        EXPECT_THROW(Json::parse(broken), Json::DecodingError) << broken;
    EXPECT_EQ(Json::probeSchemaVersion(R"({"schemaVersion": 4, "sites": "nonsense"})"), 4);
    for (const char* unversioned : {R"({"schemaVersion": "3"})", "[3]", "not json"})
        EXPECT_EQ(Json::probeSchemaVersion(unversioned), std::nullopt) << unversioned;
}

TEST(AtomicFile, ReplacesWholeFilesAndLeavesNothingBehindOnFailure) {
    namespace fs = std::filesystem;
    TempFolder folder;
    auto path = folder.path() / "deep" / "er" / "file.json";
    fs::create_directory(folder.path() / "shared");
    fs::permissions(folder.path() / "shared", fs::perms::all);
    mode_t umask = ::umask(0);
    AtomicFile::write(path, "first");
    AtomicFile::write(path, "second");
    AtomicFile::write(folder.path() / "shared" / "file.json", "x");
    ::umask(umask);
    EXPECT_EQ(AtomicFile::read(path), "second");
    // The owner's alone, whatever the umask; a folder that was there keeps its mode.
    for (const fs::path& made : {path.parent_path().parent_path(), path.parent_path()}) {
        EXPECT_EQ(fs::status(made).permissions(), fs::perms::owner_all) << made;
    }
    EXPECT_EQ(fs::status(path).permissions(), fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_EQ(fs::status(folder.path() / "shared").permissions(), fs::perms::all);
    fs::remove_all(folder.path() / "shared");
    EXPECT_EQ(AtomicFile::read(path, 3), std::nullopt);
    EXPECT_EQ(AtomicFile::read(folder.path() / "missing"), std::nullopt);
    EXPECT_EQ(AtomicFile::read(folder.path()), std::nullopt);

    // A folder standing where the file should go: the rename fails.
    std::filesystem::create_directories(folder.path() / "blocked" / "inner");
    EXPECT_THROW(AtomicFile::write(folder.path() / "blocked", "x"), std::filesystem::filesystem_error);
    auto entries = std::distance(std::filesystem::directory_iterator(folder.path()),
                                 std::filesystem::directory_iterator());
    EXPECT_EQ(entries, 2);  // "deep" and "blocked", no temporary file
}

TEST(AtomicFile, RemovesOnlyTheTemporaryFilesOfTheNamedDocuments) {
    TempFolder folder;
    const std::pair<const char*, bool> cases[] = {
        {".rules.json.Ab9xZ0", true},  {".history.json.000000", true}, {".rules.json.Ab9xZ", false},
        {".rules.json.Ab9xZ00", false}, {".rules.json.Ab-xZ0", false}, {".notes.json.Ab9xZ0", false},
        {"rules.json", false},          {".drabwise.lock", false},     {"rules.json.Ab9xZ0", false},
    };
    for (const auto& [name, removed] : cases) AtomicFile::write(folder.path() / name, "x");
    std::filesystem::create_directory(folder.path() / ".history.json.folder");
    std::filesystem::create_symlink("rules.json", folder.path() / ".history.json.linked");

    EXPECT_EQ(AtomicFile::removeLeftovers(folder.path(), {"rules.json", "history.json"}), 2u);
    for (const auto& [name, gone] : cases) EXPECT_EQ(std::filesystem::exists(folder.path() / name), !gone) << name;
    EXPECT_TRUE(std::filesystem::is_directory(folder.path() / ".history.json.folder"));
    EXPECT_TRUE(std::filesystem::is_symlink(folder.path() / ".history.json.linked"));
    EXPECT_EQ(AtomicFile::removeLeftovers(folder.path() / "missing", {"rules.json"}), 0u);
}

}  // namespace
}  // namespace ashview
