// The per-user data folder on Linux, after the XDG base directory rules.
#include "AshviewCore/Rules/RuleStore.h"

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>

namespace ashview {

std::filesystem::path RuleStore::userDataFolder() {
    // XDG asks that a relative $XDG_DATA_HOME be ignored.
    if (const char* xdg = std::getenv("XDG_DATA_HOME"); xdg && *xdg == '/') return std::filesystem::path(xdg);
    std::filesystem::path home;
    if (const char* variable = std::getenv("HOME"); variable && *variable != '\0') {
        home = variable;
    } else if (const passwd* entry = ::getpwuid(::getuid()); entry && entry->pw_dir) {
        home = entry->pw_dir;
    } else {
        home = std::filesystem::temp_directory_path();
    }
    return home / ".local" / "share";
}

}  // namespace ashview
