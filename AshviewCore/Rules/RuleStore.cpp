#include "AshviewCore/Rules/RuleStore.h"

#include "AshviewCore/Foundation/AtomicFile.h"
#include "AshviewCore/Foundation/Json.h"
#include "AshviewCore/Rules/RuleError.h"
#include "AshviewCore/Rules/RuleSetV1.h"
#include "AshviewCore/Rules/RulesDocument.h"

#include <cstdlib>
#include <iostream>

namespace ashview {

namespace fs = std::filesystem;

namespace {

std::string describe(RuleStoreError::Kind kind, std::optional<std::int64_t> found) {
    switch (kind) {
        case RuleStoreError::Kind::newerSchema: return "rules file of newer version " + std::to_string(*found);
        case RuleStoreError::Kind::unsupportedSchema:
            return "rules file of unsupported version " + std::to_string(*found);
        case RuleStoreError::Kind::unreadable: return "rules file unreadable";
    }
    return "rules file error";
}

/// Whether anything at all stands at `path`, a dangling link included. A
/// place that cannot be looked at counts as taken, so it is never written.
bool somethingAt(const fs::path& path) {
    std::error_code error;
    fs::file_status status = fs::symlink_status(path, error);
    if (error) return error != std::errc::no_such_file_or_directory;
    return fs::exists(status);
}

/// The rules decoded and checked by `read`, or `unreadable` for any fault.
template <class Read>
RuleSet understood(Read read) {
    try {
        RuleSet rules = read();
        rules.validate();
        return rules;
    } catch (const Json::DecodingError&) {
    } catch (const RuleError&) {
    }
    throw RuleStoreError::unreadable();
}

}  // namespace

RuleStoreError::RuleStoreError(Kind kind, std::optional<std::int64_t> found)
    : std::runtime_error(describe(kind, found)), kind_(kind), found_(found) {}

RuleStoreError RuleStoreError::newerSchema(std::int64_t found) { return RuleStoreError(Kind::newerSchema, found); }

RuleStoreError RuleStoreError::unsupportedSchema(std::int64_t found) {
    return RuleStoreError(Kind::unsupportedSchema, found);
}

RuleStoreError RuleStoreError::unreadable() { return RuleStoreError(Kind::unreadable, std::nullopt); }

std::optional<fs::path> RuleStore::customDirectory() {
    const char* value = std::getenv("DRABWISE_DATA_DIR");
    if (!value || *value == '\0') return std::nullopt;
    return fs::path(value);
}

fs::path RuleStore::normalDirectory() { return userDataFolder() / "Drabwise"; }

fs::path RuleStore::legacyDirectory() { return userDataFolder() / "Ashview"; }

RuleStore RuleStore::applicationSupport() { return RuleStore(customDirectory().value_or(normalDirectory())); }

RuleStore::FolderMove RuleStore::moveLegacyFolder(const fs::path& from, const fs::path& to) {
    if (somethingAt(to)) return FolderMove::newFolderExists;
    std::error_code error;
    if (!fs::is_directory(from, error)) return FolderMove::noOldFolder;
    try {
        AtomicFile::makeFolder(to.parent_path());
    } catch (const fs::filesystem_error&) {
        // The move below fails then, and says so.
    }
    fs::rename(from, to, error);
    return error ? FolderMove::failed : FolderMove::moved;
}

RuleSet RuleStore::loadOrCreate() const {
    if (somethingAt(fileURL())) return load();
    RuleSet rules = RuleSet::fresh();
    save(rules);
    return rules;
}

RuleSet RuleStore::load() const {
    std::optional<std::string> bytes = AtomicFile::read(fileURL());
    if (!bytes) throw RuleStoreError::unreadable();
    std::optional<std::int64_t> version = Json::probeSchemaVersion(*bytes);
    if (!version) throw RuleStoreError::unreadable();

    if (*version > RuleSet::currentSchemaVersion) throw RuleStoreError::newerSchema(*version);
    if (*version == RuleSet::currentSchemaVersion) {
        return understood([&] { return RulesDocument::decode(*bytes); });
    }
    if (*version == 2) {
        // The second layout is the current one under an older number.
        RuleSet rules = understood([&] {
            RuleSet read = RulesDocument::decode(*bytes);
            read.schemaVersion = RuleSet::currentSchemaVersion;
            return read;
        });
        AtomicFile::write(backupURL(), *bytes);
        save(rules);
        return rules;
    }
    if (*version == 1) {
        std::vector<std::string> notes;
        RuleSet rules = understood([&] {
            auto [converted, conversionNotes] = RuleSetV1::decode(*bytes).converted();
            notes = std::move(conversionNotes);
            return converted;
        });
        AtomicFile::write(backupURL(), *bytes);
        save(rules);
        for (const std::string& note : notes) std::cerr << "Converted rules: " << note << "\n";
        std::cerr.flush();
        return rules;
    }
    // No program ever wrote such a version; keep a copy for whoever looks
    // into it, and leave the file itself alone.
    AtomicFile::write(backupURL(), *bytes);
    throw RuleStoreError::unsupportedSchema(*version);
}

void RuleStore::save(const RuleSet& rules) const {
    RuleSet snapshot = rules.savingSnapshot();
    snapshot.validate();
    AtomicFile::makeFolder(directory);
    AtomicFile::write(fileURL(), RulesDocument::encode(snapshot));
}

}  // namespace ashview
