// When and how one rule applies: its hours, its days, what turns it gray and
// how long it stays gray.
#pragma once

#include "AshviewCore/Rules/ClockTime.h"
#include "AshviewCore/Rules/GrayTrigger.h"
#include "AshviewCore/Rules/StayGray.h"
#include "AshviewCore/Rules/Weekday.h"

#include <optional>
#include <string>

namespace ashview {

struct SiteSettings final {
    /// Absent: active the whole day.
    std::optional<ActiveHours> hours;
    /// The days the rule is active on; empty means never, and is legal.
    WeekdaySet days;
    GrayTrigger trigger;
    StayGray stayGray;

    /// The built-in defaults: every day, at all hours, three opens an hour
    /// stay in color, the fourth turns gray until the user leaves the site.
    static SiteSettings forNewSites();

    /// Throws `RuleError::invalidSettings` with the user's words for the
    /// first problem found: clock times out of range, a limit below 1, a
    /// limit trigger with no limit, or a gray time below 1 minute. Sets no
    /// upper bound, and accepts equal start and end times.
    void validate() const;

    /// The settings told back as one English sentence, beginning with a
    /// capital letter and ending in ".": "Weekdays from 9:00 AM to 5:00 PM,
    /// it turns gray after 20 minutes or 5 opens in a day and stays gray until
    /// you leave it." Only day names and clock times come from the calendar's
    /// locale.
    std::string sentence(const Calendar& calendar) const;

    friend bool operator==(const SiteSettings&, const SiteSettings&) = default;
};

}  // namespace ashview
