#include "Ashview/Shell/DaysOffEditor.h"

namespace ashview {

std::vector<DaysOffEditor::Row> DaysOffEditor::rows() const {
    std::vector<Row> rows;
    Calendar calendar = model_.calendar();
    for (const DayOff& dayOff : model_.rules().daysOff)
        rows.push_back(Row{dayOff.id, dayOff.name.empty() ? "Day off" : dayOff.name, describe(dayOff, calendar)});
    return rows;
}

void DaysOffEditor::remove(const Uuid& id) {
    RuleSet edited = model_.rules();
    edited.removeDayOff(id);
    model_.save(edited);
}

std::string DaysOffEditor::describe(const DayOff& dayOff, const Calendar& calendar) {
    if (dayOff.year) {
        if (std::optional<Instant> date = calendar.date(*dayOff.year, dayOff.month, dayOff.day, 12))
            return calendar.longDateText(*date);
    }
    return calendar.monthName(dayOff.month) + " " + std::to_string(dayOff.day) + ", every year";
}

}  // namespace ashview
