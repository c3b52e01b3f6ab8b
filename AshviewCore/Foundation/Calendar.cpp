#include "AshviewCore/Foundation/Calendar.h"

#include <unicode/calendar.h>
#include <unicode/datefmt.h>
#include <unicode/dtfmtsym.h>
#include <unicode/locid.h>
#include <unicode/numfmt.h>
#include <unicode/timezone.h>

#include <stdexcept>

namespace ashview {

namespace {

UDate toUDate(Instant instant) { return instant.unixSeconds() * 1000.0; }
Instant fromUDate(UDate date) { return Instant::fromUnixSeconds(date / 1000.0); }

std::string utf8(const icu::UnicodeString& text) {
    std::string out;
    text.toUTF8String(out);
    return out;
}

}  // namespace

struct Calendar::Prototype {
    icu::Locale locale;
    std::unique_ptr<icu::Calendar> calendar;
    std::unique_ptr<icu::DateFormat> shortTime;
    std::unique_ptr<icu::DateFormat> mediumDate;
    std::unique_ptr<icu::DateFormat> longDate;
    std::unique_ptr<icu::NumberFormat> integer;

    // One working calendar per prototype, reset before each use, so that a
    // question costs no ICU clone; and the fields of the last instant asked,
    // since one read pass asks about the same `now` once per rule.
    mutable std::unique_ptr<icu::Calendar> working;
    mutable std::optional<std::pair<double, DateComponents>> lastComponents;
    mutable std::optional<std::pair<double, Instant>> lastStartOfDay;

    /// The working calendar positioned at `instant`. Valid until the next call.
    icu::Calendar* at(Instant instant) const {
        if (!working) working.reset(calendar->clone());
        UErrorCode status = U_ZERO_ERROR;
        working->clear();
        working->setTime(toUDate(instant), status);
        return working.get();
    }
    /// The working calendar with every field cleared.
    icu::Calendar* cleared() const {
        if (!working) working.reset(calendar->clone());
        working->clear();
        return working.get();
    }
};

Calendar::Calendar(std::string identifier, std::string timeZone, std::string locale)
    : identifier_(std::move(identifier)), timeZone_(std::move(timeZone)), locale_(std::move(locale)) {
    auto prototype = std::make_shared<Prototype>();
    std::unique_ptr<icu::TimeZone> zone(
        icu::TimeZone::createTimeZone(icu::UnicodeString::fromUTF8(timeZone_)));
    icu::UnicodeString zoneID;
    zone->getID(zoneID);
    if (zoneID == icu::UnicodeString(UCAL_UNKNOWN_ZONE_ID)) {
        throw std::invalid_argument("unknown time zone " + timeZone_);
    }
    prototype->locale = icu::Locale::createFromName((locale_ + "@calendar=" + identifier_).c_str());
    // ICU's formats do not survive a locale name it could not take in.
    if (prototype->locale.isBogus()) throw std::invalid_argument("unusable locale " + locale_);
    UErrorCode status = U_ZERO_ERROR;
    prototype->calendar.reset(icu::Calendar::createInstance(zone->clone(), prototype->locale, status));
    if (U_FAILURE(status) || !prototype->calendar) {
        throw std::invalid_argument("unknown calendar " + identifier_);
    }
    std::string made = prototype->calendar->getType();
    if (made != identifier_ && !(identifier_ == "gregorian" && made == "gregorian")) {
        throw std::invalid_argument("unknown calendar " + identifier_);
    }
    prototype->calendar->setLenient(true);
    prototype->calendar->setSkippedWallTimeOption(UCAL_WALLTIME_NEXT_VALID);
    prototype->calendar->setRepeatedWallTimeOption(UCAL_WALLTIME_FIRST);

    prototype->shortTime.reset(icu::DateFormat::createTimeInstance(icu::DateFormat::kShort, prototype->locale));
    prototype->mediumDate.reset(icu::DateFormat::createDateInstance(icu::DateFormat::kMedium, prototype->locale));
    prototype->longDate.reset(icu::DateFormat::createDateInstance(icu::DateFormat::kLong, prototype->locale));
    UErrorCode numberStatus = U_ZERO_ERROR;
    prototype->integer.reset(icu::NumberFormat::createInstance(prototype->locale, numberStatus));
    if (U_FAILURE(numberStatus) || !prototype->integer) throw std::invalid_argument("unknown locale " + locale_);
    for (auto* format : {prototype->shortTime.get(), prototype->mediumDate.get(), prototype->longDate.get()}) {
        if (!format) throw std::invalid_argument("no date formats for locale " + locale_);
        format->setCalendar(*prototype->calendar);
    }
    prototype_ = std::move(prototype);
}

Calendar Calendar::gregorianUTC() { return Calendar("gregorian", "UTC", "en_US_POSIX"); }

Calendar Calendar::withIdentifier(std::string identifier) const {
    return Calendar(std::move(identifier), timeZone_, locale_);
}

DateComponents Calendar::components(Instant instant) const {
    const auto& cached = prototype_->lastComponents;
    if (cached && cached->first == instant.seconds) return cached->second;
    auto calendar = prototype_->at(instant);
    UErrorCode status = U_ZERO_ERROR;
    DateComponents parts;
    parts.year = calendar->get(UCAL_YEAR, status);
    parts.month = calendar->get(UCAL_MONTH, status) + 1;
    parts.day = calendar->get(UCAL_DATE, status);
    parts.hour = calendar->get(UCAL_HOUR_OF_DAY, status);
    parts.minute = calendar->get(UCAL_MINUTE, status);
    parts.second = calendar->get(UCAL_SECOND, status);
    parts.weekday = calendar->get(UCAL_DAY_OF_WEEK, status);
    if (U_FAILURE(status)) return DateComponents{};
    prototype_->lastComponents = std::pair{instant.seconds, parts};
    return parts;
}

Instant Calendar::startOfDay(Instant instant) const {
    const auto& cached = prototype_->lastStartOfDay;
    if (cached && cached->first == instant.seconds) return cached->second;
    auto calendar = prototype_->at(instant);
    calendar->set(UCAL_HOUR_OF_DAY, 0);
    calendar->set(UCAL_MINUTE, 0);
    calendar->set(UCAL_SECOND, 0);
    calendar->set(UCAL_MILLISECOND, 0);
    UErrorCode status = U_ZERO_ERROR;
    UDate start = calendar->getTime(status);
    if (U_FAILURE(status)) return instant;
    prototype_->lastStartOfDay = std::pair{instant.seconds, fromUDate(start)};
    return fromUDate(start);
}

DateInterval Calendar::dayInterval(Instant instant) const {
    Instant start = startOfDay(instant);
    Instant end = startOfDay(addingDays(start, 1));
    return DateInterval{start, end};
}

Instant Calendar::addingDays(Instant instant, long days) const {
    auto calendar = prototype_->at(instant);
    UErrorCode status = U_ZERO_ERROR;
    calendar->add(UCAL_DATE, static_cast<int32_t>(days), status);
    UDate moved = calendar->getTime(status);
    return U_FAILURE(status) ? instant : fromUDate(moved);
}

std::optional<Instant> Calendar::date(long year, long month, long day, long hour, long minute,
                                      long second) const {
    constexpr long limit = 10'000'000;
    for (long field : {year, month, day, hour, minute, second}) {
        if (field > limit || field < -limit) return std::nullopt;
    }
    auto calendar = prototype_->cleared();
    calendar->set(UCAL_YEAR, static_cast<int32_t>(year));
    calendar->set(UCAL_MONTH, static_cast<int32_t>(month - 1));
    calendar->set(UCAL_DATE, static_cast<int32_t>(day));
    calendar->set(UCAL_HOUR_OF_DAY, static_cast<int32_t>(hour));
    calendar->set(UCAL_MINUTE, static_cast<int32_t>(minute));
    calendar->set(UCAL_SECOND, static_cast<int32_t>(second));
    UErrorCode status = U_ZERO_ERROR;
    UDate made = calendar->getTime(status);
    if (U_FAILURE(status)) return std::nullopt;
    return fromUDate(made);
}

namespace {

std::vector<std::string> weekdayNames(const icu::Locale& locale, icu::DateFormatSymbols::DtWidthType width) {
    UErrorCode status = U_ZERO_ERROR;
    icu::DateFormatSymbols symbols(locale, status);
    int32_t count = 0;
    const icu::UnicodeString* names =
        symbols.getWeekdays(count, icu::DateFormatSymbols::FORMAT, width);
    std::vector<std::string> out;
    // ICU's array is indexed by UCAL_SUNDAY (1) to UCAL_SATURDAY (7).
    for (int32_t index = UCAL_SUNDAY; index <= UCAL_SATURDAY && index < count; ++index) {
        out.push_back(utf8(names[index]));
    }
    return out;
}

}  // namespace

std::vector<std::string> Calendar::weekdaySymbols() const {
    return weekdayNames(prototype_->locale, icu::DateFormatSymbols::WIDE);
}

std::vector<std::string> Calendar::shortWeekdaySymbols() const {
    return weekdayNames(prototype_->locale, icu::DateFormatSymbols::ABBREVIATED);
}

std::string Calendar::shortTimeText(Instant instant) const {
    icu::UnicodeString text;
    prototype_->shortTime->format(toUDate(instant), text);
    return utf8(text);
}

std::string Calendar::mediumDateText(Instant instant) const {
    icu::UnicodeString text;
    prototype_->mediumDate->format(toUDate(instant), text);
    return utf8(text);
}

std::string Calendar::longDateText(Instant instant) const {
    icu::UnicodeString text;
    prototype_->longDate->format(toUDate(instant), text);
    return utf8(text);
}

std::string Calendar::monthName(long month) const {
    if (month < 1 || month > 12) return {};
    UErrorCode status = U_ZERO_ERROR;
    icu::DateFormatSymbols symbols(prototype_->locale, status);
    std::int32_t count = 0;
    const icu::UnicodeString* names =
        symbols.getMonths(count, icu::DateFormatSymbols::STANDALONE, icu::DateFormatSymbols::WIDE);
    if (U_FAILURE(status) || !names || month > count) return {};
    return utf8(names[month - 1]);
}

std::string Calendar::integerText(long long value) const {
    icu::UnicodeString text;
    prototype_->integer->format(static_cast<std::int64_t>(value), text);
    return utf8(text);
}

}  // namespace ashview
