// The tracker's counters on disk: "running.json" in the data folder.
//
// Counters are not worth bothering the user for: a file that is missing,
// unreadable, broken or of another layout reads as nothing, silently, and is
// left exactly as it is. Saving replaces the file atomically, so a failure or
// a crash leaves the previous one. Runs synchronously on the caller's thread.
#pragma once

#include "AshviewCore/Tracking/TrackerSnapshot.h"

#include <filesystem>
#include <optional>

namespace ashview {

struct TrackerSnapshotStore final {
    /// The data folder, the same as the rules'.
    std::filesystem::path directory;

    std::filesystem::path fileURL() const { return directory / "running.json"; }

    /// Writes `snapshot`, creating the folder with any missing parents.
    /// Throws std::filesystem::filesystem_error when the disk refuses (and
    /// Json::DecodingError for a host that is not UTF-8); the previous file
    /// then stays as it was.
    void save(const TrackerSnapshot& snapshot) const;
    /// The stored snapshot, or nothing when the file is missing, unreadable,
    /// does not decode or is of another layout. Never throws, never logs,
    /// never changes the file.
    std::optional<TrackerSnapshot> load() const noexcept;

    friend bool operator==(const TrackerSnapshotStore&, const TrackerSnapshotStore&) = default;
};

}  // namespace ashview
