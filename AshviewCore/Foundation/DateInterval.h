// A span of time from `start` to `end`, start inclusive and end exclusive.
#pragma once

#include "AshviewCore/Foundation/Instant.h"

#include <algorithm>
#include <optional>

namespace ashview {

struct DateInterval final {
    Instant start;
    Instant end;

    constexpr double duration() const { return end - start; }
    /// True when `start <= instant < end`.
    constexpr bool contains(Instant instant) const { return start <= instant && instant < end; }
    /// The common part of both spans, or nothing when they do not overlap
    /// by a positive length.
    constexpr std::optional<DateInterval> intersection(DateInterval other) const {
        Instant from = std::max(start, other.start);
        Instant to = std::min(end, other.end);
        if (!(from < to)) return std::nullopt;
        return DateInterval{from, to};
    }

    friend constexpr bool operator==(DateInterval, DateInterval) = default;
};

}  // namespace ashview
