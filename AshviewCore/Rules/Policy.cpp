#include "AshviewCore/Rules/Policy.h"

#include "AshviewCore/Rules/RuleSet.h"

namespace ashview::Policy {

bool ruleIsActive(const SiteSettings& settings, const RuleSet& rules, Instant now, const Calendar& calendar) {
    if (rules.isSharedDayOff(now, calendar)) return false;
    auto weekday = Weekday::from(now, calendar);
    if (!weekday || !settings.days.contains(*weekday)) return false;
    if (!settings.hours) return true;
    return settings.hours->start.contains(now, calendar, settings.hours->end);
}

}  // namespace ashview::Policy
