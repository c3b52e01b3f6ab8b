#include "Platform/BootTime.h"

#include <sys/sysctl.h>
#include <sys/time.h>

namespace ashview::BootTime {

// The kernel keeps the boot time as a timeval: seconds and microseconds
// since 1970.
std::optional<Instant> kernel() {
    struct timeval boot {};
    std::size_t size = sizeof boot;
    if (sysctlbyname("kern.boottime", &boot, &size, nullptr, 0) != 0 || size != sizeof boot || boot.tv_sec <= 0)
        return std::nullopt;
    return Instant::fromUnixSeconds(static_cast<double>(boot.tv_sec) + static_cast<double>(boot.tv_usec) / 1e6);
}

}  // namespace ashview::BootTime
