// The one-copy check: at most one running copy of the program per data folder.
//
// The lock is an advisory, exclusive `flock` on the file ".drabwise.lock" in
// the data folder. The copy that takes it keeps the descriptor open for the
// rest of its life, so the lock ends with the process, also when it crashes or
// is killed. Two copies with different data folders run side by side. Main
// thread only; the descriptor is never handed to a child process.
#pragma once

#include <filesystem>
#include <iosfwd>

namespace ashview::InstanceLock {

/// The name of the lock file in the data folder.
inline constexpr const char* fileName = ".drabwise.lock";

/// Creates `folder` when needed, then tries to take the lock in it.
///
/// False when this process now holds the lock (and holds it until it ends),
/// and also when the lock file cannot be opened, after writing "could not
/// open the lock file; running without the one-copy check" to `errors`: the
/// program runs unguarded rather than not at all. True only when another open
/// of the file holds the lock. A failure of `flock` for any other reason
/// answers false.
bool anotherCopyIsRunning(const std::filesystem::path& folder, std::ostream& errors);
/// The same, writing to standard error.
bool anotherCopyIsRunning(const std::filesystem::path& folder);

/// Whether this process holds the lock on `folder`.
bool holds(const std::filesystem::path& folder);

/// Lets go of the lock this process holds on `folder`, as the end of the
/// process would. For a host that plays several runs of the program in one
/// process (the scenario player); the program itself never calls it.
void letGo(const std::filesystem::path& folder);

}  // namespace ashview::InstanceLock
