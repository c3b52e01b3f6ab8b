#include "Platform/BootTime.h"

#include <charconv>

namespace ashview::BootTime {

std::optional<Instant> fromProcStat(std::string_view text) {
    constexpr std::string_view label = "btime ";
    std::size_t at = 0;
    while (at < text.size()) {
        std::size_t end = text.find('\n', at);
        if (end == std::string_view::npos) end = text.size();
        std::string_view line = text.substr(at, end - at);
        at = end + 1;
        if (!line.starts_with(label)) continue;
        std::string_view digits = line.substr(label.size());
        long long seconds = 0;
        auto [rest, error] = std::from_chars(digits.data(), digits.data() + digits.size(), seconds);
        if (error != std::errc() || rest != digits.data() + digits.size() || seconds <= 0) return std::nullopt;
        return Instant::fromUnixSeconds(static_cast<double>(seconds));
    }
    return std::nullopt;
}

}  // namespace ashview::BootTime
