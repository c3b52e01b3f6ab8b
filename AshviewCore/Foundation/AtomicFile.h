// Whole-file reads and crash-safe whole-file writes, for every store.
//
// A write goes to a temporary file in the same folder, is flushed to disk and
// then renamed over the target, so a reader or a crash sees the old file or
// the new one and never a torn one. Files and folders made here are the
// owner's alone (0600 and 0700), whatever the umask: they are a record of
// what a person browses.
#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ashview::AtomicFile {

/// Replaces the file at `path` by `bytes` (mode 0600), creating missing
/// parent folders as `makeFolder` does. Throws
/// std::filesystem::filesystem_error when anything fails; the old file is
/// then as it was and no temporary file is left behind. A crash part-way
/// may leave one, named ".NAME.XXXXXX" beside the file: see `removeLeftovers`.
void write(const std::filesystem::path& path, std::string_view bytes);

/// Makes `folder` and any missing parents, each new one with mode 0700.
/// Folders that exist keep their mode. Throws
/// std::filesystem::filesystem_error when a folder cannot be made.
void makeFolder(const std::filesystem::path& folder);

/// Removes from `folder` the temporary files that a `write` of a file named
/// one of `names` left behind when it was cut short, and nothing else.
/// Only for a caller that knows no other process writes there now. Never
/// throws; the number of files removed.
std::size_t removeLeftovers(const std::filesystem::path& folder, const std::vector<std::string>& names);

/// The whole content of the regular file at `path`, or nothing when it is
/// missing, unreadable, not a regular file, or larger than `maxBytes`.
std::optional<std::string> read(const std::filesystem::path& path, std::size_t maxBytes = 64u << 20);

}  // namespace ashview::AtomicFile
