// An absolute point in time: seconds since 2001-01-01 00:00:00 UTC.
//
// Instants are plain values. Logic never reads a clock; it is handed `now`.
// The two far-away constants stand for "never" in either direction and compare
// below and above every instant the program can meet.
#pragma once

#include <compare>

namespace ashview {

struct Instant final {
    double seconds = 0;

    static constexpr Instant distantPast() { return Instant{-63114076800.0}; }
    static constexpr Instant distantFuture() { return Instant{63113904000.0}; }
    /// Seconds between 1970-01-01 and 2001-01-01, both UTC.
    static constexpr double unixEpochOffset = 978307200.0;

    static constexpr Instant fromUnixSeconds(double unix) { return Instant{unix - unixEpochOffset}; }
    constexpr double unixSeconds() const { return seconds + unixEpochOffset; }

    /// The instant `delta` seconds later (earlier when negative).
    constexpr Instant adding(double delta) const { return Instant{seconds + delta}; }
    /// Seconds from `earlier` to this instant; negative when `earlier` lies after.
    constexpr double since(Instant earlier) const { return seconds - earlier.seconds; }

    friend constexpr bool operator==(Instant, Instant) = default;
    friend constexpr auto operator<=>(Instant, Instant) = default;
};

constexpr Instant operator+(Instant instant, double delta) { return instant.adding(delta); }
constexpr Instant operator-(Instant instant, double delta) { return instant.adding(-delta); }
constexpr double operator-(Instant later, Instant earlier) { return later.since(earlier); }

}  // namespace ashview
