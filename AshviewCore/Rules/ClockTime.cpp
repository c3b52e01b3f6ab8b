#include "AshviewCore/Rules/ClockTime.h"

#include <limits>

namespace ashview {

namespace {

/// Minutes since midnight; saturates instead of overflowing, so times that
/// failed validation still compare without undefined behaviour.
std::int64_t minutesSinceMidnight(std::int64_t hour, std::int64_t minute) {
    std::int64_t total = 0;
    if (__builtin_mul_overflow(hour, std::int64_t{60}, &total) || __builtin_add_overflow(total, minute, &total)) {
        bool negative = hour < 0 || (hour == 0 && minute < 0);
        return negative ? std::numeric_limits<std::int64_t>::min() : std::numeric_limits<std::int64_t>::max();
    }
    return total;
}

}  // namespace

bool ClockTime::contains(Instant now, const Calendar& calendar, ClockTime end) const {
    DateComponents parts = calendar.components(now);
    std::int64_t current = minutesSinceMidnight(parts.hour, parts.minute);
    std::int64_t start = minutesSinceMidnight(hour, minute);
    std::int64_t stop = minutesSinceMidnight(end.hour, end.minute);
    if (start == stop) return false;
    if (start < stop) return current >= start && current < stop;
    return current >= start || current < stop;
}

}  // namespace ashview
