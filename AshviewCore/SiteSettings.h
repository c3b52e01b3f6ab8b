// When and how one rule applies: its hours, its days, what turns it gray and
// how long it stays gray.
#pragma once

#include "AshviewCore/ClockTime.h"
#include "AshviewCore/GrayTrigger.h"
#include "AshviewCore/StayGray.h"
#include "AshviewCore/Weekday.h"

#include <optional>

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

    friend bool operator==(const SiteSettings&, const SiteSettings&) = default;
};

}  // namespace ashview
