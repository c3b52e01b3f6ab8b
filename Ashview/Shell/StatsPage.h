// The content of the statistics page ("Last 7 days"): why the history is not
// kept (when it isn't), the sentences with the lead line first, one row per
// site with its figures in words, the footer with the way to clear, and the
// confirmation's words. It computes nothing of the statistic itself: it reads
// the model's summary and rules. Beyond the sentences it gives a view the
// minutes a day of the listed sites over the last two weeks, for a chart.
#pragma once

#include "Ashview/Shell/SettingsModel.h"

#include <optional>
#include <string>
#include <vector>

namespace ashview {

struct StatsPage final {
    struct Row final {
        std::string name;
        /// "2h 5m", "<1m".
        std::string duration;
        /// "1 visit", "3 visits".
        std::string visits;
        /// "same", "up 5m a day"; absent without a comparison.
        std::optional<std::string> change;
        friend bool operator==(const Row&, const Row&) = default;
    };

    /// One of the last 7 complete days, beside the same weekday a week
    /// earlier; minutes on screen of every listed site together.
    struct ChartDay final {
        /// The short weekday name ("Mon").
        std::string label;
        double minutes = 0;
        double previousMinutes = 0;
        friend bool operator==(const ChartDay&, const ChartDay&) = default;
    };

    static constexpr const char* footer = "Counted while Drabwise runs. Stays on this Mac.";
    static constexpr const char* clearTitle = "Clear history…";
    static constexpr const char* confirmationTitle = "Clear your history?";
    static constexpr const char* confirmationMessage =
        "Drabwise forgets the time and visits it has counted. This can't be undone.";
    static constexpr const char* confirmTitle = "Clear History";
    static constexpr const char* cancelTitle = "Cancel";
    static constexpr const char* chartTitle = "Minutes a day on your list";
    static constexpr const char* chartThisWeek = "Last 7 days";
    static constexpr const char* chartWeekBefore = "The 7 days before";

    std::optional<std::string> problemText;
    /// The first sentence, shown on its own.
    std::string lead;
    std::vector<std::string> otherLines;
    std::vector<Row> rows;
    /// False while the history has a problem.
    bool canClear = true;
    /// Oldest first, ending yesterday.
    std::vector<ChartDay> chart;

    static StatsPage make(SettingsModel& model);
    /// The two sentences telling why the history is not kept.
    static std::string text(UsageKeeper::Problem problem);
};

}  // namespace ashview
