// A date on which every rule is off, shared by all rules.
#pragma once

#include "AshviewCore/Foundation/Uuid.h"

#include <cstdint>
#include <optional>
#include <string>

namespace ashview {

struct DayOff final {
    Uuid id;
    /// The user's label, also used in the message of `validate`.
    std::string name;
    /// 1 to 12 in a valid day off.
    std::int64_t month = 1;
    /// Day of the month.
    std::int64_t day = 1;
    /// Absent: the date repeats every year.
    std::optional<std::int64_t> year;

    /// Throws `RuleError::invalidSettings` with "{name} is not a real date."
    /// unless the date exists in the Gregorian calendar. A yearly date is
    /// judged in a leap year, so a yearly February 29 is accepted.
    void validate() const;

    friend bool operator==(const DayOff&, const DayOff&) = default;
};

}  // namespace ashview
