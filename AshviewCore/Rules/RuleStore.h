// The rules file: where the program's data folder is, how the rules are read
// and written, and how older files are carried forward.
//
// The store is a value holding one folder; it keeps no rules in memory. Its
// first concern is never to lose what the user wrote: a file that cannot be
// understood, or that a newer version wrote, is left exactly as it is; a file
// that is converted is first copied to a backup; and nothing invalid is ever
// written. All calls come from one thread; the atomic write keeps readers
// elsewhere safe without a lock.
#pragma once

#include "AshviewCore/Rules/RuleSet.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <stdexcept>

namespace ashview {

/// Why the rules file could not be taken as it is. The cases carry no words
/// for the user; the program tells them in its own.
class RuleStoreError final : public std::runtime_error {
public:
    enum class Kind { newerSchema, unsupportedSchema, unreadable };

    /// A later version of the program wrote the file.
    static RuleStoreError newerSchema(std::int64_t found);
    /// The file carries a version below the first one.
    static RuleStoreError unsupportedSchema(std::int64_t found);
    /// The file cannot be read or understood.
    static RuleStoreError unreadable();

    Kind kind() const { return kind_; }
    /// The version found, for the two schema cases.
    std::optional<std::int64_t> found() const { return found_; }

    friend bool operator==(const RuleStoreError& a, const RuleStoreError& b) {
        return a.kind_ == b.kind_ && a.found_ == b.found_;
    }

private:
    RuleStoreError(Kind kind, std::optional<std::int64_t> found);
    Kind kind_;
    std::optional<std::int64_t> found_;
};

struct RuleStore final {
    /// How moving the older data folder went.
    enum class FolderMove { moved, newFolderExists, noOldFolder, failed };

    /// The folder all of the program's data lives in.
    std::filesystem::path directory;

    explicit RuleStore(std::filesystem::path directory) : directory(std::move(directory)) {}

    /// The store of `customDirectory` when it is set, else of `normalDirectory`.
    static RuleStore applicationSupport();
    /// The folder named by a non-empty "DRABWISE_DATA_DIR"; nothing when the
    /// variable is unset or empty.
    static std::optional<std::filesystem::path> customDirectory();
    /// "Drabwise" in the user's data folder of the platform.
    static std::filesystem::path normalDirectory();
    /// "Ashview", the older name, in the same place.
    static std::filesystem::path legacyDirectory();
    /// Where the platform keeps per-user program data: Application Support
    /// on the Mac; $XDG_DATA_HOME, else ~/.local/share, on Linux. Supplied by
    /// one platform file chosen by the build.
    static std::filesystem::path userDataFolder();

    /// Moves the folder `from` to `to` unless anything exists at `to`
    /// (`newFolderExists`) or `from` is no folder (`noOldFolder`). A move
    /// that fails gives `failed` and throws nothing.
    static FolderMove moveLegacyFolder(const std::filesystem::path& from, const std::filesystem::path& to);

    /// `directory`/rules.json.
    std::filesystem::path fileURL() const { return directory / "rules.json"; }
    /// `directory`/rules.json.bak, written only by a conversion.
    std::filesystem::path backupURL() const { return directory / "rules.json.bak"; }

    /// `load()` when anything stands at `fileURL`; otherwise saves and
    /// returns fresh rules.
    RuleSet loadOrCreate() const;

    /// The rules in the file. A current file is returned as it is. A file of
    /// version 1 or 2 is converted: the old bytes go to the backup, the
    /// converted rules are saved, and for version 1 each conversion note is
    /// written to standard error as "Converted rules: {note}". Throws
    /// `RuleStoreError`: `unreadable` (nothing written), `newerSchema`
    /// (nothing written), `unsupportedSchema` for a version below 1 (after
    /// copying the bytes to the backup, the rules file untouched); or a
    /// `std::filesystem::filesystem_error` when the backup or the converted
    /// file cannot be written, with the rules file then as it was.
    RuleSet load() const;

    /// Writes the saving snapshot of `rules` atomically, creating the folder
    /// as needed. Throws `RuleError` when the snapshot is invalid, before
    /// anything is written; or a `std::filesystem::filesystem_error`, with the
    /// old file then as it was. Keeps no backup.
    void save(const RuleSet& rules) const;
};

}  // namespace ashview
