// A calendar value: a calendar system, a time zone and a locale, backed by ICU.
//
// Everything the logic asks of "the calendar" is a member here: the local
// weekday, date and clock time of an instant, the start and the interval of a
// local day, adding days, weekday names and the locale's short time and medium
// date forms. Calendars are immutable values; two are equal when their three
// names are. Copies share one ICU prototype and its working state, so a copy
// is cheap; a calendar and its copies are for use on one thread at a time,
// as everything in the program runs on the main thread.
#pragma once

#include "AshviewCore/Foundation/DateInterval.h"
#include "AshviewCore/Foundation/Instant.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace ashview {

/// Local fields of an instant in some calendar. `weekday` runs from 1
/// (Sunday) to 7 (Saturday) in every calendar system; `month` from 1.
struct DateComponents final {
    long year = 0;
    long month = 0;
    long day = 0;
    long hour = 0;
    long minute = 0;
    long second = 0;
    long weekday = 0;

    friend bool operator==(const DateComponents&, const DateComponents&) = default;
};

class Calendar final {
public:
    /// A calendar of the ICU system `identifier` ("gregorian", "buddhist",
    /// "japanese", ...) in the time zone `timeZone` (an IANA name such as
    /// "Europe/Berlin") with the locale `locale` ("en_US", "de_DE", ...).
    /// Throws std::invalid_argument when ICU does not know the zone or the
    /// calendar system, or cannot take the locale's name in at all.
    Calendar(std::string identifier, std::string timeZone, std::string locale);

    /// The Gregorian calendar in UTC with the POSIX English locale.
    static Calendar gregorianUTC();

    const std::string& identifier() const { return identifier_; }
    const std::string& timeZone() const { return timeZone_; }
    const std::string& locale() const { return locale_; }

    /// The same time zone and locale in another calendar system.
    Calendar withIdentifier(std::string identifier) const;

    DateComponents components(Instant instant) const;
    long weekday(Instant instant) const { return components(instant).weekday; }

    /// The first moment of the local day that holds `instant`. On a day whose
    /// midnight the clocks skip, that is the first moment that exists.
    Instant startOfDay(Instant instant) const;
    /// The local day that holds `instant`, from its start to the next day's
    /// start: 23 or 25 hours long on days when the clocks change.
    DateInterval dayInterval(Instant instant) const;
    /// `instant` moved by `days` local days, keeping its wall-clock time
    /// where that time exists on the day reached.
    Instant addingDays(Instant instant, long days) const;
    /// The instant of the given local fields, read leniently as the platform
    /// calendars do: April 31 comes out as May 1. Nothing when ICU fails.
    std::optional<Instant> date(long year, long month, long day, long hour = 0, long minute = 0,
                                long second = 0) const;

    /// Seven names, Sunday first, in the calendar's locale.
    std::vector<std::string> weekdaySymbols() const;
    std::vector<std::string> shortWeekdaySymbols() const;
    /// The locale's short clock time of `instant` ("9:41 AM", "09:41").
    std::string shortTimeText(Instant instant) const;
    /// The locale's medium date of `instant` ("Nov 23, 2026", "23.11.2026").
    std::string mediumDateText(Instant instant) const;
    /// The locale's long date of `instant`, without a time ("November 23,
    /// 2026", "23. November 2026").
    std::string longDateText(Instant instant) const;
    /// The full name of month 1...12 in the locale, as it stands alone
    /// ("December"); empty outside that range.
    std::string monthName(long month) const;
    /// A whole number as the locale writes it ("1,234", "1.234").
    std::string integerText(long long value) const;

    friend bool operator==(const Calendar& a, const Calendar& b) {
        return a.identifier_ == b.identifier_ && a.timeZone_ == b.timeZone_ && a.locale_ == b.locale_;
    }

private:
    struct Prototype;
    std::string identifier_;
    std::string timeZone_;
    std::string locale_;
    std::shared_ptr<const Prototype> prototype_;
};

}  // namespace ashview
