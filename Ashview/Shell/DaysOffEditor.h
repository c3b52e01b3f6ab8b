// The days-off page: the list of shared days off, each with its date in
// words and a way to remove it, and the form that adds one (its fields live
// in the settings model). Main thread only; a short-lived object.
#pragma once

#include "Ashview/Shell/SettingsModel.h"
#include "AshviewCore/Rules/DayOff.h"

#include <string>
#include <vector>

namespace ashview {

class DaysOffEditor final {
public:
    struct Row final {
        Uuid id;
        /// The name, or "Day off" for an empty one.
        std::string name;
        std::string date;
    };

    static constexpr const char* title = "Days off";
    static constexpr const char* footer =
        "On a day off, every site and app stays in color on every display. Keep gray and Gray this window still work.";
    static constexpr const char* listTitle = "Your days off";
    static constexpr const char* emptyText = "No days off yet.";
    static constexpr const char* addTitle = "Add a day off";
    static constexpr const char* namePrompt = "Christmas";
    static constexpr const char* oneYearTitle = "This year only";
    static constexpr const char* everyYearTitle = "Every year";
    static constexpr const char* addButtonTitle = "Add day off";

    explicit DaysOffEditor(SettingsModel& model) : model_(model) {}

    std::vector<Row> rows() const;
    /// Removes the day off and saves; a failed save changes nothing.
    void remove(const Uuid& id);

    /// A dated day off in the calendar's long date form; a yearly one as the
    /// month's full name and the day in digits, then ", every year".
    static std::string describe(const DayOff& dayOff, const Calendar& calendar);

private:
    SettingsModel& model_;
};

}  // namespace ashview
