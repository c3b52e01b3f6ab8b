#include "Ashview/InstanceLock.h"

#include "Ashview/Log.h"

#include <cerrno>
#include <fcntl.h>
#include <iostream>
#include <sys/file.h>
#include <system_error>
#include <unistd.h>

namespace ashview::InstanceLock {

bool anotherCopyIsRunning(const std::filesystem::path& folder, std::ostream& errors) {
    std::error_code ignored;
    std::filesystem::create_directories(folder, ignored);

    std::filesystem::path file = folder / fileName;
    int descriptor = ::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (descriptor < 0) {
        Log::plain(errors, "could not open the lock file; running without the one-copy check");
        return false;
    }
    if (::flock(descriptor, LOCK_EX | LOCK_NB) == 0) {
        // Deliberately never closed: the lock lasts as long as the process.
        return false;
    }
    int error = errno;
    ::close(descriptor);
    return error == EWOULDBLOCK;
}

bool anotherCopyIsRunning(const std::filesystem::path& folder) { return anotherCopyIsRunning(folder, std::cerr); }

}  // namespace ashview::InstanceLock
