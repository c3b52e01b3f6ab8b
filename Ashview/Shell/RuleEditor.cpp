#include "Ashview/Shell/RuleEditor.h"

#include <algorithm>

namespace ashview {

namespace {

std::string withNoun(std::int64_t value, std::string_view noun) {
    return std::to_string(value) + " " + std::string(noun) + (value == 1 ? "" : "s");
}

const WeekdaySet& weekdaysSet() {
    static const WeekdaySet days{Weekday::monday, Weekday::tuesday, Weekday::wednesday, Weekday::thursday,
                                 Weekday::friday};
    return days;
}

const WeekdaySet& weekendsSet() {
    static const WeekdaySet days{Weekday::saturday, Weekday::sunday};
    return days;
}

}  // namespace

RuleEditor::RuleEditor(SiteSettings settings, bool showsCustomDays, bool isApp, Calendar calendar,
                       std::function<void(const SiteSettings&)> onChange, std::function<void(bool)> setShowsCustomDays)
    : settings_(std::move(settings)),
      showsCustomDays_(showsCustomDays),
      isApp_(isApp),
      calendar_(std::move(calendar)),
      onChange_(std::move(onChange)),
      setShowsCustomDays_(std::move(setShowsCustomDays)) {}

void RuleEditor::change(SiteSettings settings) {
    if (settings == settings_) return;
    settings_ = settings;
    if (onChange_) onChange_(settings_);
}

// When does this apply?

std::vector<RuleEditor::Choice<RuleEditor::TimeOfDay>> RuleEditor::timeOfDayChoices() {
    return {{TimeOfDay::allDay, "All day"}, {TimeOfDay::certainHours, "Only between certain hours"}};
}

RuleEditor::TimeOfDay RuleEditor::timeOfDay() const {
    return settings_.hours ? TimeOfDay::certainHours : TimeOfDay::allDay;
}

void RuleEditor::chooseTimeOfDay(TimeOfDay choice) {
    if (choice == timeOfDay()) return;
    SiteSettings next = settings_;
    if (choice == TimeOfDay::certainHours)
        next.hours = ActiveHours{ClockTime{9, 0}, ClockTime{17, 0}};
    else
        next.hours.reset();
    change(next);
}

void RuleEditor::setStart(std::int64_t hour, std::int64_t minute) {
    if (!settings_.hours) return;
    SiteSettings next = settings_;
    next.hours->start = ClockTime{hour, minute};
    change(next);
}

void RuleEditor::setEnd(std::int64_t hour, std::int64_t minute) {
    if (!settings_.hours) return;
    SiteSettings next = settings_;
    next.hours->end = ClockTime{hour, minute};
    change(next);
}

std::optional<std::string> RuleEditor::hoursNote() const {
    if (!settings_.hours) return std::nullopt;
    const ClockTime& start = settings_.hours->start;
    const ClockTime& end = settings_.hours->end;
    if (start == end) return "Pick different start and end times.";
    if (std::pair(end.hour, end.minute) < std::pair(start.hour, start.minute)) return "Ends the next morning.";
    return std::nullopt;
}

std::vector<RuleEditor::Choice<RuleEditor::DaysChoice>> RuleEditor::daysChoices() {
    return {{DaysChoice::everyDay, "Every day"},
            {DaysChoice::weekdays, "Weekdays"},
            {DaysChoice::weekends, "Weekends"},
            {DaysChoice::custom, "Custom"}};
}

RuleEditor::DaysChoice RuleEditor::daysChoice() const {
    if (showsCustomDays_) return DaysChoice::custom;
    if (settings_.days == Weekday::all()) return DaysChoice::everyDay;
    if (settings_.days == weekdaysSet()) return DaysChoice::weekdays;
    if (settings_.days == weekendsSet()) return DaysChoice::weekends;
    return DaysChoice::custom;
}

void RuleEditor::chooseDays(DaysChoice choice) {
    showsCustomDays_ = choice == DaysChoice::custom;
    if (setShowsCustomDays_) setShowsCustomDays_(showsCustomDays_);
    SiteSettings next = settings_;
    switch (choice) {
        case DaysChoice::everyDay: next.days = Weekday::all(); break;
        case DaysChoice::weekdays: next.days = weekdaysSet(); break;
        case DaysChoice::weekends: next.days = weekendsSet(); break;
        case DaysChoice::custom: break;
    }
    change(next);
}

std::vector<RuleEditor::DayBox> RuleEditor::dayBoxes() const {
    std::vector<DayBox> boxes;
    for (Weekday day : Weekday::allCases)
        boxes.push_back(DayBox{day, day.shortName(calendar_), settings_.days.contains(day)});
    return boxes;
}

void RuleEditor::setDay(Weekday day, bool checked) {
    SiteSettings next = settings_;
    if (checked)
        next.days.insert(day);
    else
        next.days.erase(day);
    change(next);
}

std::optional<std::string> RuleEditor::daysNote() const {
    if (settings_.days.empty()) return "No days are checked, so this never turns gray.";
    return std::nullopt;
}

// When does it turn gray?

std::vector<RuleEditor::Choice<RuleEditor::TurnGray>> RuleEditor::turnGrayChoices() {
    return {{TurnGray::rightAway, "Right away"}, {TurnGray::afterLimit, "After a limit"}};
}

RuleEditor::TurnGray RuleEditor::turnGray() const {
    return settings_.trigger.isRightAway() ? TurnGray::rightAway : TurnGray::afterLimit;
}

void RuleEditor::chooseTurnGray(TurnGray choice) {
    if (choice == turnGray()) return;
    SiteSettings next = settings_;
    next.trigger = choice == TurnGray::rightAway ? GrayTrigger::rightAway()
                                                 : GrayTrigger::afterLimit(std::nullopt, opensWhenTurnedOn,
                                                                           CountPeriod::hour);
    change(next);
}

std::vector<RuleEditor::LimitRow> RuleEditor::limitRows() const {
    const GrayTrigger::AfterLimit* limit = settings_.trigger.limit();
    std::optional<std::int64_t> minutes = limit ? limit->minutes : std::nullopt;
    std::optional<std::int64_t> opens = limit ? limit->opens : std::nullopt;
    bool onlyOne = minutes.has_value() != opens.has_value();
    LimitRow minutesRow{Limit::minutes, "Minutes on it", minutes.has_value(), !(onlyOne && minutes),
                        minutes.value_or(minutesWhenTurnedOn), 1, maximumMinutes, {}};
    minutesRow.valueText = withNoun(minutesRow.value, "minute");
    LimitRow opensRow{Limit::opens, "Opens", opens.has_value(), !(onlyOne && opens), opens.value_or(opensWhenTurnedOn),
                      1, maximumOpens, {}};
    opensRow.valueText = withNoun(opensRow.value, "open");
    return {minutesRow, opensRow};
}

void RuleEditor::setLimitOn(Limit limit, bool on) {
    SiteSettings next = settings_;
    GrayTrigger::AfterLimit* limits = next.trigger.limit();
    if (!limits) return;
    std::optional<std::int64_t>& field = limit == Limit::minutes ? limits->minutes : limits->opens;
    if (on == field.has_value()) return;
    field = on ? std::optional<std::int64_t>(limit == Limit::minutes ? minutesWhenTurnedOn : opensWhenTurnedOn)
               : std::nullopt;
    // At least one limit stays: a change that leaves none is ignored.
    if (!limits->minutes && !limits->opens) return;
    change(next);
}

void RuleEditor::setLimitValue(Limit limit, std::int64_t value) {
    SiteSettings next = settings_;
    GrayTrigger::AfterLimit* limits = next.trigger.limit();
    if (!limits) return;
    std::optional<std::int64_t>& field = limit == Limit::minutes ? limits->minutes : limits->opens;
    if (!field) return;
    field = std::clamp<std::int64_t>(value, 1, limit == Limit::minutes ? maximumMinutes : maximumOpens);
    change(next);
}

std::vector<RuleEditor::Choice<CountPeriod>> RuleEditor::countedChoices() const {
    std::vector<Choice<CountPeriod>> choices{{CountPeriod::hour, "In an hour"}, {CountPeriod::day, "In a day"}};
    if (!isApp_) choices.push_back({CountPeriod::session, "Until I quit my browsers"});
    return choices;
}

std::optional<CountPeriod> RuleEditor::counted() const {
    if (const GrayTrigger::AfterLimit* limit = settings_.trigger.limit()) return limit->per;
    return std::nullopt;
}

void RuleEditor::chooseCounted(CountPeriod period) {
    if (isApp_ && period == CountPeriod::session) return;
    SiteSettings next = settings_;
    GrayTrigger::AfterLimit* limit = next.trigger.limit();
    if (!limit) return;
    limit->per = period;
    change(next);
}

std::string RuleEditor::limitExplanation(std::optional<std::int64_t> minutes, std::optional<std::int64_t> opens) {
    if (minutes && opens)
        return "Turns gray after " + withNoun(*minutes, "minute") + " on it or " + withNoun(*opens, "open") +
               ", whichever comes first.";
    if (minutes) return "Stays in color for " + withNoun(*minutes, "minute") + " on it, then turns gray.";
    if (opens) return "The first " + withNoun(*opens, "open") + " stay in color. The next one turns gray.";
    return {};
}

std::string RuleEditor::explanation() const {
    const GrayTrigger::AfterLimit* limit = settings_.trigger.limit();
    std::string text = limit ? limitExplanation(limit->minutes, limit->opens) : std::string();
    text += " Leaving and coming back doesn't reset this.";
    if (settings_.hours) text += " Only time inside those hours counts.";
    return text;
}

// How long does it stay gray?

std::vector<RuleEditor::Choice<RuleEditor::StayKind>> RuleEditor::stayChoices() const {
    std::vector<Choice<StayKind>> choices{
        {StayKind::untilLeave, isApp_ ? "Until I leave the app" : "Until I leave the site"},
        {StayKind::forMinutes, "For a number of minutes, then color for the rest of that visit"}};
    if (!isApp_) choices.push_back({StayKind::untilChromeQuits, "Until I quit my browsers"});
    return choices;
}

RuleEditor::StayKind RuleEditor::stayKind() const {
    switch (settings_.stayGray.kind()) {
        case StayGray::Kind::untilLeave: return StayKind::untilLeave;
        case StayGray::Kind::forMinutes: return StayKind::forMinutes;
        case StayGray::Kind::untilChromeQuits: return StayKind::untilChromeQuits;
    }
    return StayKind::untilLeave;
}

void RuleEditor::chooseStay(StayKind kind) {
    if (kind == stayKind() || (isApp_ && kind == StayKind::untilChromeQuits)) return;
    SiteSettings next = settings_;
    switch (kind) {
        case StayKind::untilLeave: next.stayGray = StayGray::untilLeave(); break;
        case StayKind::forMinutes: next.stayGray = StayGray::forMinutes(stayMinutesWhenChosen); break;
        case StayKind::untilChromeQuits: next.stayGray = StayGray::untilChromeQuits(); break;
    }
    change(next);
}

std::optional<std::int64_t> RuleEditor::stayMinutes() const {
    if (const StayGray::ForMinutes* timed = settings_.stayGray.timed()) return timed->minutes;
    return std::nullopt;
}

void RuleEditor::setStayMinutes(std::int64_t minutes) {
    if (!settings_.stayGray.timed()) return;
    SiteSettings next = settings_;
    next.stayGray = StayGray::forMinutes(std::clamp<std::int64_t>(minutes, 1, maximumMinutes));
    change(next);
}

std::string RuleEditor::minutesText(std::int64_t minutes) { return withNoun(minutes, "minute"); }

}  // namespace ashview
