// When the machine last started, as the operating system's kernel records it.
// A real main loop answers `bootTime()` with this; the simulated one has its
// own, settable value.
#pragma once

#include "AshviewCore/Foundation/Instant.h"

#include <optional>
#include <string_view>

namespace ashview::BootTime {

/// The kernel's boot time, or nothing when the system cannot tell.
std::optional<Instant> kernel();

/// The boot time in the text of a Linux "/proc/stat" (its "btime" line, in
/// whole seconds since 1970), or nothing when that line is missing or not a
/// positive number.
std::optional<Instant> fromProcStat(std::string_view text);

}  // namespace ashview::BootTime
