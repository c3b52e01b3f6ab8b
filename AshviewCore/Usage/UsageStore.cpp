#include "AshviewCore/Usage/UsageStore.h"

#include "AshviewCore/Foundation/AtomicFile.h"
#include "AshviewCore/Foundation/Json.h"

#include <system_error>

namespace ashview {

namespace fs = std::filesystem;

UsageStoreError::UsageStoreError(Kind kind, std::int64_t found, const std::string& message)
    : std::runtime_error(message), kind_(kind), found_(found) {}

UsageStoreError UsageStoreError::newerSchema(std::int64_t found) {
    return UsageStoreError(Kind::newerSchema, found,
                           "the usage history has layout " + std::to_string(found) + ", newer than this program reads");
}

namespace {

/// True when `path` exists; throws when that cannot even be found out. A
/// path under something that is no folder names nothing, like any other
/// missing file.
bool isPresent(const fs::path& path) {
    std::error_code error;
    fs::file_status status = fs::symlink_status(path, error);
    if (error && error != std::errc::no_such_file_or_directory && error != std::errc::not_a_directory) {
        throw fs::filesystem_error("cannot look at the usage history", path, error);
    }
    return fs::exists(status);
}

}  // namespace

UsageStore::Loaded UsageStore::load() const {
    fs::path file = fileURL();
    if (!isPresent(file)) return Loaded{UsageHistory{}, false};
    std::optional<std::string> bytes = AtomicFile::read(file);
    if (!bytes) {
        throw fs::filesystem_error("cannot read the usage history", file, std::make_error_code(std::errc::io_error));
    }
    if (auto version = Json::probeSchemaVersion(*bytes); version && *version > UsageHistory::currentSchemaVersion) {
        throw UsageStoreError::newerSchema(*version);
    }
    try {
        UsageHistory history = UsageHistory::fromJson(Json::parse(*bytes));
        if (history.schemaVersion == UsageHistory::currentSchemaVersion) return Loaded{std::move(history), false};
    } catch (const Json::DecodingError&) {
        // Broken: set aside below.
    }
    fs::path broken = brokenFileURL();
    if (isPresent(broken)) fs::remove(broken);
    fs::rename(file, broken);
    return Loaded{UsageHistory{}, true};
}

void UsageStore::save(const UsageHistory& history) const {
    AtomicFile::makeFolder(directory);
    AtomicFile::write(fileURL(), Json::encode(history.toJson()));
}

void UsageStore::clear() const {
    for (const fs::path& path : {fileURL(), brokenFileURL()}) {
        if (isPresent(path)) fs::remove(path);
    }
}

}  // namespace ashview
