#include "Platform/BootTime.h"

#include "AshviewCore/Foundation/AtomicFile.h"

#include <string>

namespace ashview::BootTime {

std::optional<Instant> kernel() {
    std::optional<std::string> text = AtomicFile::read("/proc/stat");
    if (!text) return std::nullopt;
    return fromProcStat(*text);
}

}  // namespace ashview::BootTime
