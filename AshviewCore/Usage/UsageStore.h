// The usage history on disk: "history.json" in the data folder, and
// "history.json.broken", the latest document that could not be read.
//
// A file of a newer layout is never changed: loading it throws. A broken file
// is never lost: it is set aside before counting starts again. Saving replaces
// the file atomically, so a failure or a crash leaves the previous one. Runs
// synchronously on the caller's thread.
#pragma once

#include "AshviewCore/Usage/UsageHistory.h"

#include <cstdint>
#include <filesystem>
#include <stdexcept>

namespace ashview {

/// Why the history file cannot be used by this program.
class UsageStoreError final : public std::runtime_error {
public:
    enum class Kind { newerSchema };

    /// The file was written by a newer program, in layout `found`.
    static UsageStoreError newerSchema(std::int64_t found);

    Kind kind() const { return kind_; }
    /// The layout version found in the file.
    std::int64_t found() const { return found_; }

private:
    UsageStoreError(Kind kind, std::int64_t found, const std::string& message);

    Kind kind_;
    std::int64_t found_;
};

struct UsageStore final {
    /// The folder that holds both files; the rules file lives there too.
    std::filesystem::path directory;

    /// What `load` found.
    struct Loaded final {
        UsageHistory history;
        /// True when an unreadable file was moved to `brokenFileURL()`.
        bool setBrokenFileAside = false;
    };

    std::filesystem::path fileURL() const { return directory / "history.json"; }
    std::filesystem::path brokenFileURL() const { return directory / "history.json.broken"; }

    /// The stored history, or a fresh one when there is no file. A file of a
    /// newer layout throws `UsageStoreError` and stays as it is. A file that
    /// cannot be decoded, or of a layout below 1, replaces any earlier broken
    /// file and a fresh history is returned. Throws
    /// std::filesystem::filesystem_error when the file cannot be read or
    /// cannot be set aside; the file then stays where it was, though an
    /// earlier broken file may already have been removed.
    Loaded load() const;
    /// Writes `history` atomically, creating the folder when missing. Throws
    /// std::filesystem::filesystem_error when the disk refuses (and
    /// Json::DecodingError for a host that is not UTF-8); the previous file
    /// then stays as it was.
    void save(const UsageHistory& history) const;
    /// Removes the file, then the broken one. Missing files are no failure;
    /// a failure throws at once and leaves the broken file alone.
    void clear() const;

    friend bool operator==(const UsageStore&, const UsageStore&) = default;
};

}  // namespace ashview
