#include "Ashview/Shell/StatsPage.h"

namespace ashview {

namespace {

/// Minutes of every listed host on the local day starting at `day`.
double minutesOn(const UsageHistory& history, const RuleSet& rules, Instant day, const Calendar& calendar) {
    auto found = history.days.find(UsageHistory::dayKey(day, calendar));
    if (found == history.days.end()) return 0;
    double seconds = 0;
    for (const SiteRule& rule : rules.sites) {
        auto totals = found->second.sites.find(rule.host);
        if (totals != found->second.sites.end()) seconds += totals->second.seconds;
    }
    return seconds / 60.0;
}

std::vector<StatsPage::ChartDay> chartDays(SettingsModel& model) {
    const UsageHistory& history = model.controller().usage().recorder().history();
    Calendar calendar = model.calendar();
    Instant today = calendar.startOfDay(model.now());
    std::vector<StatsPage::ChartDay> days;
    for (long back = 7; back >= 1; --back) {
        Instant day = calendar.addingDays(today, -back);
        std::string label;
        if (std::optional<Weekday> weekday = Weekday::from(day, calendar)) label = weekday->shortName(calendar);
        days.push_back(StatsPage::ChartDay{label, minutesOn(history, model.rules(), day, calendar),
                                           minutesOn(history, model.rules(), calendar.addingDays(day, -7), calendar)});
    }
    return days;
}

}  // namespace

std::string StatsPage::text(UsageKeeper::Problem problem) {
    std::string first = problem == UsageKeeper::Problem::needsNewerApp
                            ? "Your history was saved by a newer version of Drabwise, so it's left as it is. "
                            : "Your history couldn't be read, so it's left as it is. ";
    return first + "This shows only what was counted since Drabwise started, and it isn't saved.";
}

StatsPage StatsPage::make(SettingsModel& model) {
    StatsPage page;
    if (model.historyProblem()) page.problemText = text(*model.historyProblem());
    page.canClear = !model.historyProblem();
    const UsageSummary& summary = model.usageSummary();
    if (!summary.lines.empty()) {
        page.lead = summary.lines.front();
        page.otherLines.assign(summary.lines.begin() + 1, summary.lines.end());
    }
    for (const UsageSummary::SiteRow& row : summary.sites) {
        page.rows.push_back(Row{model.rules().displayName(row.host), UsageSummary::duration(row.seconds),
                                std::to_string(row.visits) + (row.visits == 1 ? " visit" : " visits"), row.change()});
    }
    page.chart = chartDays(model);
    return page;
}

}  // namespace ashview
