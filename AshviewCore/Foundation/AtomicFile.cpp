#include "AshviewCore/Foundation/AtomicFile.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <system_error>
#include <vector>

namespace ashview::AtomicFile {

namespace fs = std::filesystem;

namespace {

[[noreturn]] void fail(const char* what, const fs::path& path, int error) {
    throw fs::filesystem_error(what, path, std::error_code(error, std::generic_category()));
}

/// A file descriptor that closes itself.
class Descriptor {
public:
    explicit Descriptor(int fd) : fd_(fd) {}
    ~Descriptor() {
        if (fd_ >= 0) ::close(fd_);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    int get() const { return fd_; }
    /// Closes now, reporting the error close gives.
    int close() {
        int result = ::close(fd_);
        fd_ = -1;
        return result;
    }

private:
    int fd_;
};

void writeAll(int fd, std::string_view bytes, const fs::path& path) {
    while (!bytes.empty()) {
        ssize_t written = ::write(fd, bytes.data(), bytes.size());
        if (written < 0) {
            if (errno == EINTR) continue;
            fail("cannot write", path, errno);
        }
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
}

void syncFolder(const fs::path& folder) {
    Descriptor fd(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (fd.get() >= 0) ::fsync(fd.get());
}

/// How many characters mkostemp puts in place of "XXXXXX".
constexpr std::size_t randomLength = 6;

/// The name of a temporary file of `write` for the file named `name`, with
/// `random` standing for what mkostemp fills in.
std::string temporaryName(const std::string& name, std::string_view random) {
    return "." + name + "." + std::string(random);
}

/// Whether `name` is one that mkostemp makes from the pattern of `file`.
bool isTemporaryOf(std::string_view name, const std::string& file) {
    std::string prefix = temporaryName(file, "");
    if (name.size() != prefix.size() + randomLength || !name.starts_with(prefix)) return false;
    return std::all_of(name.begin() + static_cast<std::ptrdiff_t>(prefix.size()), name.end(), [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
    });
}

}  // namespace

void makeFolder(const fs::path& folder) {
    std::error_code error;
    if (folder.empty() || fs::is_directory(folder, error)) return;
    fs::path parent = folder.parent_path();
    if (parent != folder) makeFolder(parent);
    if (::mkdir(folder.c_str(), 0700) != 0) {
        int failure = errno;
        if (failure == EEXIST && fs::is_directory(folder, error)) return;
        fail("cannot create a folder", folder, failure);
    }
    // The umask may have taken the owner's own rights away.
    ::chmod(folder.c_str(), 0700);
}

std::size_t removeLeftovers(const fs::path& folder, const std::vector<std::string>& names) {
    std::size_t removed = 0;
    std::error_code error;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
        std::string name = entry->path().filename().string();
        bool ours = std::any_of(names.begin(), names.end(), [&](const std::string& file) {
            return isTemporaryOf(name, file);
        });
        std::error_code ignored;
        bool file = entry->is_regular_file(ignored) && !entry->is_symlink(ignored);
        if (ours && file && fs::remove(entry->path(), ignored)) ++removed;
    }
    return removed;
}

void write(const fs::path& path, std::string_view bytes) {
    fs::path folder = path.parent_path().empty() ? fs::path(".") : path.parent_path();
    makeFolder(folder);
    std::string pattern = (folder / temporaryName(path.filename().string(), "XXXXXX")).string();
    std::vector<char> name(pattern.begin(), pattern.end());
    name.push_back('\0');
    Descriptor fd(::mkostemp(name.data(), O_CLOEXEC));
    if (fd.get() < 0) fail("cannot create a temporary file", path, errno);
    fs::path temporary(name.data());
    try {
        ::fchmod(fd.get(), 0600);
        writeAll(fd.get(), bytes, temporary);
        if (::fsync(fd.get()) != 0) fail("cannot flush", temporary, errno);
        if (fd.close() != 0) fail("cannot close", temporary, errno);
        if (::rename(temporary.c_str(), path.c_str()) != 0) fail("cannot rename", path, errno);
    } catch (...) {
        std::error_code ignored;
        fs::remove(temporary, ignored);
        throw;
    }
    syncFolder(folder);
}

std::optional<std::string> read(const fs::path& path, std::size_t maxBytes) {
    Descriptor fd(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (fd.get() < 0) return std::nullopt;
    struct stat info {};
    if (::fstat(fd.get(), &info) != 0 || !S_ISREG(info.st_mode)) return std::nullopt;
    std::string bytes;
    char buffer[65536];
    while (true) {
        ssize_t got = ::read(fd.get(), buffer, sizeof buffer);
        if (got < 0) {
            if (errno == EINTR) continue;
            return std::nullopt;
        }
        if (got == 0) break;
        if (bytes.size() + static_cast<std::size_t>(got) > maxBytes) return std::nullopt;
        bytes.append(buffer, static_cast<std::size_t>(got));
    }
    return bytes;
}

}  // namespace ashview::AtomicFile
