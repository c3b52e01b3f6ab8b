#include "AshviewCore/Rules/Weekday.h"

namespace ashview {

namespace {

constexpr std::array<std::string_view, 7> names{"monday", "tuesday",  "wednesday", "thursday",
                                                "friday", "saturday", "sunday"};

}  // namespace

WeekdaySet Weekday::all() { return WeekdaySet(allCases.begin(), allCases.end()); }

std::optional<Weekday> Weekday::from(Instant date, const Calendar& calendar) {
    return fromCalendarNumber(calendar.weekday(date));
}

std::optional<Weekday> Weekday::fromCalendarNumber(long number) {
    if (number < 1 || number > 7) return std::nullopt;
    // Calendar numbers begin with Sunday; the cases begin with Monday.
    return allCases[static_cast<std::size_t>((number + 5) % 7)];
}

std::optional<Weekday> Weekday::named(std::string_view text) {
    for (std::size_t index = 0; index < names.size(); ++index) {
        if (names[index] == text) return allCases[index];
    }
    return std::nullopt;
}

std::string_view Weekday::name() const { return names[static_cast<std::size_t>(value_)]; }

long Weekday::calendarNumber() const { return static_cast<long>(symbolIndex()) + 1; }

std::size_t Weekday::symbolIndex() const { return (static_cast<std::size_t>(value_) + 1) % 7; }

std::string Weekday::shortName(const Calendar& calendar) const {
    auto symbols = calendar.shortWeekdaySymbols();
    std::size_t index = symbolIndex();
    return index < symbols.size() ? symbols[index] : std::string(name());
}

}  // namespace ashview
