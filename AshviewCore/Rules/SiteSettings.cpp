#include "AshviewCore/Rules/SiteSettings.h"

#include "AshviewCore/Rules/RuleError.h"

namespace ashview {

namespace {

constexpr const char* minutesTooLow = "Minutes need to be at least 1.";

bool inRange(std::int64_t value, std::uint64_t highest) {
    // Unsigned, so that a negative value lands far above the range.
    return static_cast<std::uint64_t>(value) <= highest;
}

}  // namespace

SiteSettings SiteSettings::forNewSites() {
    return SiteSettings{
        std::nullopt,
        Weekday::all(),
        GrayTrigger::afterLimit(std::nullopt, 3, CountPeriod::hour),
        StayGray::untilLeave(),
    };
}

void SiteSettings::validate() const {
    if (hours) {
        if (!inRange(hours->start.hour, 23) || !inRange(hours->start.minute, 59) || !inRange(hours->end.hour, 23) ||
            !inRange(hours->end.minute, 59)) {
            throw RuleError::invalidSettings("Use an hour from 0 to 23 and a minute from 0 to 59.");
        }
    }
    if (const auto* limit = trigger.limit()) {
        if (limit->minutes && *limit->minutes < 1) throw RuleError::invalidSettings(minutesTooLow);
        if (!limit->minutes && !limit->opens) throw RuleError::invalidSettings("Pick minutes, opens, or both.");
        if (limit->opens && *limit->opens < 1) throw RuleError::invalidSettings("Opens need to be at least 1.");
    }
    if (const auto* timed = stayGray.timed(); timed && timed->minutes < 1) {
        throw RuleError::invalidSettings(minutesTooLow);
    }
}

}  // namespace ashview
