#include "Ashview/App/InstanceLock.h"

#include "Ashview/Controller/Log.h"
#include "AshviewCore/Foundation/AtomicFile.h"

#include <cerrno>
#include <fcntl.h>
#include <iostream>
#include <map>
#include <vector>
#include <sys/file.h>
#include <system_error>
#include <unistd.h>

namespace ashview::InstanceLock {

namespace {

/// The descriptors this process holds, by folder.
std::map<std::filesystem::path, std::vector<int>>& held() {
    static std::map<std::filesystem::path, std::vector<int>> descriptors;
    return descriptors;
}

}  // namespace

bool anotherCopyIsRunning(const std::filesystem::path& folder, std::ostream& errors) {
    try {
        AtomicFile::makeFolder(folder);
    } catch (const std::filesystem::filesystem_error&) {
        // Opening the lock file fails then, and says so.
    }

    std::filesystem::path file = folder / fileName;
    int descriptor = ::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (descriptor < 0) {
        Log::plain(errors, "could not open the lock file; running without the one-copy check");
        return false;
    }
    if (::flock(descriptor, LOCK_EX | LOCK_NB) == 0) {
        // Closed only by `letGo`: the lock lasts as long as the process.
        held()[std::filesystem::weakly_canonical(folder)].push_back(descriptor);
        return false;
    }
    int error = errno;
    ::close(descriptor);
    if (error == EWOULDBLOCK) return true;
    // Another failure (no locks on this file system, say) must not keep the
    // program from starting, but the user should learn it runs unguarded.
    Log::plain(errors, "could not lock the lock file; running without the one-copy check");
    return false;
}

bool anotherCopyIsRunning(const std::filesystem::path& folder) { return anotherCopyIsRunning(folder, std::cerr); }

bool holds(const std::filesystem::path& folder) {
    return held().contains(std::filesystem::weakly_canonical(folder));
}

void letGo(const std::filesystem::path& folder) {
    auto found = held().find(std::filesystem::weakly_canonical(folder));
    if (found == held().end()) return;
    for (int descriptor : found->second) ::close(descriptor);
    held().erase(found);
}

}  // namespace ashview::InstanceLock
