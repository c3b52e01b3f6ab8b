#include "AshviewCore/Rules/DayOff.h"

#include "AshviewCore/Foundation/Calendar.h"
#include "AshviewCore/Rules/RuleError.h"

namespace ashview {

void DayOff::validate() const {
    // A leap year, so that a yearly February 29 passes.
    std::int64_t judgedYear = year.value_or(2024);
    Calendar calendar = Calendar::gregorianUTC();
    // The calendar reads fields leniently (April 31 becomes May 1), so the
    // date exists only if the same fields read back from it.
    auto made = calendar.date(static_cast<long>(judgedYear), static_cast<long>(month), static_cast<long>(day));
    bool real = false;
    if (made) {
        DateComponents back = calendar.components(*made);
        real = back.year == judgedYear && back.month == month && back.day == day;
    }
    if (!real) throw RuleError::invalidSettings(name + " is not a real date.");
}

}  // namespace ashview
