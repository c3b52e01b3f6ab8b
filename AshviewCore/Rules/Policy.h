// Whether a rule is in force at a moment: its days, its hours, and the days
// off shared by all rules.
#pragma once

#include "AshviewCore/Foundation/Calendar.h"
#include "AshviewCore/Foundation/Instant.h"
#include "AshviewCore/Rules/SiteSettings.h"

namespace ashview {

struct RuleSet;

namespace Policy {

/// False on a shared day off of `rules`, on a weekday outside
/// `settings.days` (or when the calendar gives no weekday), and outside
/// `settings.hours` when there are hours; true otherwise. The weekday is
/// always that of `now`, also in the small hours of a span over midnight.
bool ruleIsActive(const SiteSettings& settings, const RuleSet& rules, Instant now, const Calendar& calendar);

}  // namespace Policy

}  // namespace ashview
