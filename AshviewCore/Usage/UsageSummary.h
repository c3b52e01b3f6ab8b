// The read side of the usage statistic: today so far, the last seven days
// against the seven before, one row per site, and the sentences the user
// reads.
//
// A plain value, computed on demand from a history, the hosts of the current
// rules, `now` and a calendar; nothing is cached. Only sites among the given
// hosts count. Only days the history covers go into an average or a
// comparison. Sentences are English with plurals by hand; durations are never
// negative and never rounded up.
#pragma once

#include "AshviewCore/Foundation/Calendar.h"
#include "AshviewCore/Foundation/Instant.h"
#include "AshviewCore/Usage/UsageHistory.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace ashview {

struct UsageSummary final {
    /// Figures summed over some days.
    struct Period final {
        double seconds = 0;
        std::int64_t visits = 0;
        std::int64_t grayLeft = 0;
        /// `grayLeft` plus the moments after which the user stayed.
        std::int64_t grayCounted = 0;

        friend bool operator==(const Period&, const Period&) = default;
    };

    /// One site's week.
    struct SiteRow final {
        std::string host;
        /// Seconds in the last 7 days.
        double seconds = 0;
        /// Visits in the last 7 days.
        std::int64_t visits = 0;
        /// Seconds a day over the complete days of the last 7, and of the 7
        /// before; both present exactly when the summary compares.
        std::optional<double> dailyAverage;
        std::optional<double> previousDailyAverage;

        /// "same", "up 5m a day" or "down 1h a day", by whole minutes of the
        /// two daily averages; absent without them.
        std::optional<std::string> change() const;

        friend bool operator==(const SiteRow&, const SiteRow&) = default;
    };

    /// The complete days of both weeks, and how many there were of each.
    struct Comparison final {
        Period current;
        std::int64_t currentDays = 0;
        Period previous;
        std::int64_t previousDays = 0;

        friend bool operator==(const Comparison&, const Comparison&) = default;
    };

    /// Complete days needed in each week for a comparison.
    static constexpr int daysNeededPerWeek = 5;

    double todaySeconds = 0;
    std::int64_t todayVisits = 0;
    /// The seven local days before today.
    Period current;
    /// The seven days before those.
    Period previous;
    /// How many of the last 7 days lie at least partly within the history.
    std::int64_t daysOfHistory = 0;
    /// Present when both weeks have at least `daysNeededPerWeek` complete days.
    std::optional<Comparison> compared;
    /// Without a comparison: the start of the day on which one is expected to
    /// become possible, if every day to come is complete.
    std::optional<Instant> comparisonStarts;
    /// Rows, most time first, then by host.
    std::vector<SiteRow> sites;
    /// The sentences of the statistics page.
    std::vector<std::string> lines;

    /// The summary of `history` as of `now`, counting only `hosts` (doubles
    /// are ignored).
    static UsageSummary make(const UsageHistory& history, const std::vector<std::string>& hosts, Instant now,
                             const Calendar& calendar);

    /// The status-menu line; ends in "…".
    std::string menuLine() const;

    /// Whole minutes and hours, truncated: "<1m", "59m", "2h", "2h 5m".
    static std::string duration(double seconds);

    /// How many days from today the comparison rule is first met, if every day
    /// to come is complete. `complete[i]` tells whether the day `i` days ago
    /// is complete (index 0 is today). Nothing if not within 15 days.
    static std::optional<long> daysUntilComparison(const std::vector<bool>& complete);

    friend bool operator==(const UsageSummary&, const UsageSummary&) = default;

private:
    std::vector<std::string> describe(const Calendar& calendar) const;
    std::string timeLine() const;
    std::string visitsLine() const;
    std::string grayLine() const;
    static std::string dateText(Instant date, const Calendar& calendar);
};

}  // namespace ashview
