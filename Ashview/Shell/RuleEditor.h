// The form over one `SiteSettings` value, used for a single site or app and
// for the defaults of new sites: every choice the form offers, what it shows
// and what each choice changes.
//
// The editor keeps no pending change: every command computes a new copy of
// the settings and hands it to `onChange` (only when something changed), and
// the caller saves it and makes a new editor over the saved value. The
// "custom days" flag lives outside, in the settings model, so that it can be
// cleared when the page changes. A view reads the accessors and forwards each
// action to one command; it decides nothing. Main thread only.
#pragma once

#include "AshviewCore/Foundation/Calendar.h"
#include "AshviewCore/Rules/SiteSettings.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace ashview {

class RuleEditor final {
public:
    enum class TimeOfDay { allDay, certainHours };
    enum class DaysChoice { everyDay, weekdays, weekends, custom };
    enum class TurnGray { rightAway, afterLimit };
    enum class StayKind { untilLeave, forMinutes, untilChromeQuits };
    enum class Limit { minutes, opens };

    template <typename Value>
    struct Choice final {
        Value value;
        std::string title;
    };

    /// A checkbox with a stepper: "Minutes on it" or "Opens".
    struct LimitRow final {
        Limit limit;
        std::string title;
        bool isOn = false;
        /// False for the only limit that is on: at least one stays.
        bool isEnabled = true;
        std::int64_t value = 0;
        std::int64_t minimum = 1;
        std::int64_t maximum = 1;
        /// "10 minutes", "1 open".
        std::string valueText;
    };

    struct DayBox final {
        Weekday day;
        std::string label;
        bool isChecked = false;
    };

    /// Minutes and opens a limit may take, and what turning one on gives.
    static constexpr std::int64_t maximumMinutes = 600;
    static constexpr std::int64_t maximumOpens = 50;
    static constexpr std::int64_t minutesWhenTurnedOn = 10;
    static constexpr std::int64_t opensWhenTurnedOn = 3;
    static constexpr std::int64_t stayMinutesWhenChosen = 10;

    RuleEditor(SiteSettings settings, bool showsCustomDays, bool isApp, Calendar calendar,
               std::function<void(const SiteSettings&)> onChange, std::function<void(bool)> setShowsCustomDays);

    const SiteSettings& settings() const { return settings_; }
    bool isApp() const { return isApp_; }

    // "When does this apply?"
    static std::vector<Choice<TimeOfDay>> timeOfDayChoices();
    TimeOfDay timeOfDay() const;
    void chooseTimeOfDay(TimeOfDay choice);
    /// The start and end while hours are set; a missing component counts as 0.
    void setStart(std::int64_t hour, std::int64_t minute);
    void setEnd(std::int64_t hour, std::int64_t minute);
    /// "Pick different start and end times." or "Ends the next morning.".
    std::optional<std::string> hoursNote() const;

    static std::vector<Choice<DaysChoice>> daysChoices();
    DaysChoice daysChoice() const;
    void chooseDays(DaysChoice choice);
    /// The seven checkboxes, Monday first; shown only with `custom`.
    std::vector<DayBox> dayBoxes() const;
    void setDay(Weekday day, bool checked);
    /// "No days are checked, so this never turns gray." for an empty set.
    std::optional<std::string> daysNote() const;

    // "When does it turn gray?"
    static std::vector<Choice<TurnGray>> turnGrayChoices();
    TurnGray turnGray() const;
    void chooseTurnGray(TurnGray choice);
    /// The two rows, minutes first; only meaningful with `afterLimit`.
    std::vector<LimitRow> limitRows() const;
    void setLimitOn(Limit limit, bool on);
    void setLimitValue(Limit limit, std::int64_t value);
    /// "In an hour", "In a day" and, unless for an app, "Until I quit my
    /// browsers".
    std::vector<Choice<CountPeriod>> countedChoices() const;
    std::optional<CountPeriod> counted() const;
    void chooseCounted(CountPeriod period);
    /// The explanation under the limits, with its fixed endings.
    std::string explanation() const;
    /// The sentence for the limits alone; empty with neither.
    static std::string limitExplanation(std::optional<std::int64_t> minutes, std::optional<std::int64_t> opens);

    // "How long does it stay gray?"
    std::vector<Choice<StayKind>> stayChoices() const;
    StayKind stayKind() const;
    void chooseStay(StayKind kind);
    /// The minutes of `forMinutes`, else nothing.
    std::optional<std::int64_t> stayMinutes() const;
    void setStayMinutes(std::int64_t minutes);
    /// "{value} minute{s}".
    static std::string minutesText(std::int64_t minutes);

private:
    void change(SiteSettings settings);

    SiteSettings settings_;
    bool showsCustomDays_;
    bool isApp_;
    Calendar calendar_;
    std::function<void(const SiteSettings&)> onChange_;
    std::function<void(bool)> setShowsCustomDays_;
};

}  // namespace ashview
