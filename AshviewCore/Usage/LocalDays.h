// Local calendar days of the Gregorian calendar, in the user's time zone.
//
// Every figure of the usage statistic is filed under a day key, "2026-03-29",
// made here. Keys stay Gregorian whatever calendar system the machine is set
// to, and stay in that calendar's time zone; two keys compare as text in the
// order of their dates. Days end where the calendar says they do, so a day on
// which the clocks change is 23, 25 or 24.5 hours long. A plain value.
#pragma once

#include "AshviewCore/Foundation/Calendar.h"
#include "AshviewCore/Foundation/Instant.h"

#include <string>
#include <vector>

namespace ashview {

struct LocalDays final {
    /// Gregorian, in the time zone of the calendar it was made from.
    Calendar calendar;

    /// `calendar` itself when it is Gregorian; otherwise a Gregorian calendar
    /// in its time zone (its other settings are dropped).
    explicit LocalDays(const Calendar& calendar);

    /// One local day's share of a stretch of time.
    struct Piece final {
        std::string day;
        double seconds = 0;

        friend bool operator==(const Piece&, const Piece&) = default;
    };

    /// The day key of `date`: year, month and day zero-padded to 4, 2 and 2
    /// digits, joined by "-".
    std::string key(Instant date) const;
    /// The half-open stretch [from, to) cut at local midnights, in order; each
    /// piece is longer than zero. Empty when `from` is not before `to`.
    std::vector<Piece> split(Instant from, Instant to) const;
    /// The start of the local day `ofDay` days after the day of `from`
    /// (before it when negative).
    Instant start(long ofDay, Instant from) const;

    friend bool operator==(const LocalDays&, const LocalDays&) = default;
};

}  // namespace ashview
