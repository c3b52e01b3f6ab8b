// A local wall-clock time of day, and the span of the day a rule is active in.
#pragma once

#include "AshviewCore/Foundation/Calendar.h"
#include "AshviewCore/Foundation/Instant.h"

#include <cstdint>
#include <string>

namespace ashview {

struct ClockTime final {
    /// 0 to 23 in a valid rule; the range is checked by validation, never
    /// by decoding, so any value may stand here.
    std::int64_t hour = 0;
    /// 0 to 59 in a valid rule.
    std::int64_t minute = 0;

    /// Whether the local clock time of `now` lies in the span from this time
    /// (inside) to `end` (outside), to the minute. A span whose start lies
    /// after its end runs over midnight; equal times are an empty span.
    bool contains(Instant now, const Calendar& calendar, ClockTime end) const;
    /// The time as the calendar's locale writes a short clock time ("9:05 AM",
    /// "09:05"), in plain blanks only: the no-break spaces some locales put
    /// before the day-period mark come out as U+0020. Out-of-range fields are
    /// carried over as a clock does (25:00 reads as 1:00).
    std::string formatted(const Calendar& calendar) const;

    friend bool operator==(const ClockTime&, const ClockTime&) = default;
};

/// The hours of the day a rule is active. No order is imposed on the two
/// ends: a `start` later than `end` spans midnight, equal ends mean never.
struct ActiveHours final {
    ClockTime start;
    ClockTime end;

    friend bool operator==(const ActiveHours&, const ActiveHours&) = default;
};

}  // namespace ashview
