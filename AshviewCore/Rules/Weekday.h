// The seven days of the week, Monday first, and the sets of them that rules
// are active on.
//
// `Weekday` is a small value: its order is Monday to Sunday whatever the
// user's calendar takes as the first day of the week, and it maps to the
// calendar's own weekday numbers (1 = Sunday ... 7 = Saturday) by a fixed table.
#pragma once

#include "AshviewCore/Foundation/Calendar.h"
#include "AshviewCore/Foundation/Instant.h"

#include <array>
#include <compare>
#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <string_view>

namespace ashview {

class Weekday final {
public:
    enum class Case : std::uint8_t { monday, tuesday, wednesday, thursday, friday, saturday, sunday };

    constexpr Weekday(Case value) : value_(value) {}  // NOLINT: a Case is a Weekday

    static const Weekday monday;
    static const Weekday tuesday;
    static const Weekday wednesday;
    static const Weekday thursday;
    static const Weekday friday;
    static const Weekday saturday;
    static const Weekday sunday;

    /// The seven days, Monday first.
    static const std::array<Weekday, 7> allCases;
    /// The set of all seven days.
    static std::set<Weekday> all();

    /// The local weekday of `date` in `calendar`; nothing when the calendar
    /// gives a weekday number outside 1 to 7.
    static std::optional<Weekday> from(Instant date, const Calendar& calendar);
    /// The day of the calendar's weekday number (1 = Sunday ... 7 = Saturday).
    static std::optional<Weekday> fromCalendarNumber(long number);
    /// The day whose written name is `text` ("monday" ... "sunday").
    static std::optional<Weekday> named(std::string_view text);

    constexpr Case value() const { return value_; }
    /// The written name: "monday" ... "sunday".
    std::string_view name() const;
    /// The calendar's weekday number: Sunday 1, Monday 2 ... Saturday 7.
    long calendarNumber() const;
    /// Index into the calendar's weekday symbols, which begin with Sunday.
    std::size_t symbolIndex() const;
    /// The calendar's short weekday symbol for this day ("Mon", "Mo.").
    std::string shortName(const Calendar& calendar) const;

    friend constexpr bool operator==(Weekday, Weekday) = default;
    friend constexpr auto operator<=>(Weekday, Weekday) = default;

private:
    Case value_;
};

inline constexpr Weekday Weekday::monday{Weekday::Case::monday};
inline constexpr Weekday Weekday::tuesday{Weekday::Case::tuesday};
inline constexpr Weekday Weekday::wednesday{Weekday::Case::wednesday};
inline constexpr Weekday Weekday::thursday{Weekday::Case::thursday};
inline constexpr Weekday Weekday::friday{Weekday::Case::friday};
inline constexpr Weekday Weekday::saturday{Weekday::Case::saturday};
inline constexpr Weekday Weekday::sunday{Weekday::Case::sunday};
inline constexpr std::array<Weekday, 7> Weekday::allCases{Weekday::monday,   Weekday::tuesday, Weekday::wednesday,
                                                          Weekday::thursday, Weekday::friday,  Weekday::saturday,
                                                          Weekday::sunday};

/// A set of weekdays. Ordered Monday to Sunday, so walking it is stable.
using WeekdaySet = std::set<Weekday>;

}  // namespace ashview
