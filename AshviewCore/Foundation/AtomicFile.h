// Whole-file reads and crash-safe whole-file writes, for every store.
//
// A write goes to a temporary file in the same folder, is flushed to disk and
// then renamed over the target, so a reader or a crash sees the old file or
// the new one and never a torn one.
#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace ashview::AtomicFile {

/// Replaces the file at `path` by `bytes`, creating missing parent folders.
/// Throws std::filesystem::filesystem_error when anything fails; the old
/// file is then as it was and no temporary file is left behind.
void write(const std::filesystem::path& path, std::string_view bytes);

/// The whole content of the regular file at `path`, or nothing when it is
/// missing, unreadable, not a regular file, or larger than `maxBytes`.
std::optional<std::string> read(const std::filesystem::path& path, std::size_t maxBytes = 64u << 20);

}  // namespace ashview::AtomicFile
