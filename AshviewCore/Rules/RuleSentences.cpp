// The English words the program says a rule back with. Everything here is
// fixed text except day names and clock times, which the calendar's locale
// supplies. Plurals are written out: "s" unless the count is exactly 1.
#include "AshviewCore/Rules/AppKey.h"
#include "AshviewCore/Rules/ClockTime.h"
#include "AshviewCore/Rules/GrayTrigger.h"
#include "AshviewCore/Rules/RuleSet.h"
#include "AshviewCore/Rules/SiteSettings.h"
#include "AshviewCore/Tracking/SiteStatus.h"
#include "AshviewCore/Foundation/Text.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

namespace ashview {

namespace {

std::string counted(std::int64_t count, std::string_view unit) {
    std::string text = std::to_string(count);
    text += ' ';
    text += unit;
    if (count != 1) text += 's';
    return text;
}

/// Replaces every occurrence of `from` in `text` by a plain blank.
void blankOut(std::string& text, std::string_view from) {
    for (auto at = text.find(from); at != std::string::npos; at = text.find(from, at + 1)) {
        text.replace(at, from.size(), " ");
    }
}

/// The minute of the day a clock shows for these fields, carrying over as a
/// lenient calendar does, without overflow for any 64-bit input.
std::int64_t minuteOfDay(std::int64_t hour, std::int64_t minute) {
    constexpr std::int64_t day = 24 * 60;
    auto wrap = [](std::int64_t value) { return ((value % day) + day) % day; };
    return wrap(wrap(hour) * 60 + wrap(minute));
}

std::string dayPhrase(const WeekdaySet& days, const Calendar& calendar) {
    const WeekdaySet weekdays{Weekday::monday, Weekday::tuesday, Weekday::wednesday, Weekday::thursday,
                              Weekday::friday};
    const WeekdaySet weekends{Weekday::saturday, Weekday::sunday};
    if (days.size() == 7) return "every day";
    if (days == weekdays) return "weekdays";
    if (days == weekends) return "weekends";
    if (days.empty()) return "no days";

    std::vector<std::string> symbols = calendar.weekdaySymbols();
    auto name = [&](Weekday day) {
        std::size_t index = day.symbolIndex();
        return index < symbols.size() ? symbols[index] : std::string(day.name());
    };
    if (days.size() == 6) {
        for (Weekday day : Weekday::allCases) {
            if (!days.contains(day)) return "every day except " + name(day);
        }
    }
    std::string joined;
    for (Weekday day : days) {
        if (!joined.empty()) joined += ", ";
        joined += name(day);
    }
    return joined;
}

std::string triggerPhrase(const GrayTrigger& trigger) {
    const GrayTrigger::AfterLimit* limit = trigger.limit();
    if (!limit) return "turns gray as soon as you open it";
    std::string limits;
    if (limit->minutes) limits = counted(*limit->minutes, "minute");
    if (limit->opens) {
        if (!limits.empty()) limits += " or ";
        limits += counted(*limit->opens, "open");
    }
    return "turns gray after " + limits + " " + std::string(phrase(limit->per));
}

std::string stayPhrase(const StayGray& stay) {
    switch (stay.kind()) {
        case StayGray::Kind::forMinutes:
            return ", stays gray for " + counted(stay.timed()->minutes, "minute") +
                   ", then color for the rest of that visit";
        case StayGray::Kind::untilLeave:
            return " and stays gray until you leave it";
        case StayGray::Kind::untilChromeQuits:
            return " and stays gray until you quit your browsers";
    }
    return {};
}

}  // namespace

std::string_view phrase(CountPeriod period) {
    switch (period) {
        case CountPeriod::hour: return "in an hour";
        case CountPeriod::day: return "in a day";
        case CountPeriod::session: return "in one browsing session";
    }
    return {};
}

std::string ClockTime::formatted(const Calendar& calendar) const {
    std::int64_t minutes = minuteOfDay(hour, minute);
    // The first day of the calendar's first year, as a date built from an
    // hour and a minute alone would be: far from any change of the clocks, so
    // every time of day exists and reads back as it was given.
    std::optional<Instant> date = calendar.date(1, 1, 1, static_cast<long>(minutes / 60), static_cast<long>(minutes % 60));
    std::string text = calendar.shortTimeText(date.value_or(Instant{}));
    blankOut(text, "\u202F");
    blankOut(text, "\u00A0");
    return text;
}

std::string SiteSettings::sentence(const Calendar& calendar) const {
    std::string text = Text::uppercasingFirst(dayPhrase(days, calendar));
    if (hours) {
        text += " from " + hours->start.formatted(calendar) + " to " + hours->end.formatted(calendar);
    }
    text += ", it ";
    text += triggerPhrase(trigger);
    text += stayPhrase(stayGray);
    text += ".";
    return text;
}

std::string SiteStatus::text() const {
    switch (state) {
        case State::keptGray: return "Kept gray";
        case State::keptInColor: return "Kept in color";
        case State::dayOff: return "Off today: day off";
        case State::notToday: return "Off today";
        case State::outsideHours: return "Off now: outside its hours";
        case State::gray: return "Gray now";
        case State::color: break;
    }
    if (!period) return "Turns gray when you open it";
    // The unit's plural follows the limit, so "0 of 1 minute" and "1 of 1 minute".
    auto part = [](std::int64_t used, std::int64_t limit, std::string_view unit) {
        std::string text = std::to_string(std::min(used, limit)) + " of " + std::to_string(limit) + " ";
        text += unit;
        if (limit != 1) text += 's';
        return text;
    };
    std::string parts;
    if (minutesLimit) parts = part(minutesUsed, *minutesLimit, "minute");
    if (opensLimit) {
        if (!parts.empty()) parts += " and ";
        parts += part(opensUsed, *opensLimit, "open");
    }
    std::string_view when = *period == CountPeriod::hour  ? "this hour"
                            : *period == CountPeriod::day ? "today"
                                                          : "this browsing session";
    return "In color: " + parts + " " + std::string(when);
}

std::string RuleSet::summary(const SiteRule& rule, Instant now, const Calendar& calendar) const {
    SiteSettings settings = effectiveSettings(rule);
    std::string text = settings.sentence(calendar);
    if (rule.pin == SitePin::grayThisSite) text += " Keep gray is on.";
    if (rule.pin == SitePin::showInColor) text += " Keep in color is on.";
    std::optional<Weekday> today = Weekday::from(now, calendar);
    bool activeToday = !isSharedDayOff(now, calendar) && today && settings.days.contains(*today);
    if (!activeToday) text += " Off today.";
    return text;
}

std::string RuleSet::displayName(std::string_view host) const {
    for (const SiteRule& rule : sites) {
        if (rule.host == host) return rule.displayName();
    }
    return AppKey::bundleID(host).value_or(std::string(host));
}

}  // namespace ashview
