#include "AshviewCore/Usage/UsageSummary.h"

#include "AshviewCore/Usage/LocalDays.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>
#include <map>
#include <set>

namespace ashview {

namespace {

using Totals = UsageHistory::Totals;
using HostTotals = std::map<std::string, Totals>;

constexpr int daysCompared = 7;
constexpr int daysLookedAt = 2 * daysCompared + 1;

/// A whole number written out in full, without a fraction or an exponent.
std::string whole(double value) {
    int length = std::snprintf(nullptr, 0, "%.0f", value);
    std::string text(static_cast<std::size_t>(length) + 1, '\0');
    std::snprintf(text.data(), text.size(), "%.0f", value);
    text.resize(static_cast<std::size_t>(length));
    return text;
}

std::string plural(std::int64_t count) { return count == 1 ? "" : "s"; }

double wholeMinutes(double seconds) { return std::trunc(seconds / 60.0); }

UsageSummary::Period period(const HostTotals& totals) {
    UsageSummary::Period sum;
    for (const auto& [host, figures] : totals) {
        sum.seconds += figures.seconds;
        addCount(sum.visits, figures.visits);
        addCount(sum.grayLeft, figures.grayLeft);
        addCount(sum.grayCounted, figures.grayLeft);
        addCount(sum.grayCounted, figures.grayStayed);
    }
    return sum;
}

double secondsOf(const HostTotals& totals, const std::string& host) {
    auto found = totals.find(host);
    return found == totals.end() ? 0 : found->second.seconds;
}

}  // namespace

UsageSummary UsageSummary::make(const UsageHistory& history, const std::vector<std::string>& hosts, Instant now,
                                const Calendar& calendar) {
    LocalDays local(calendar);
    // Sorted and without doubles: the set is also the list in text order.
    std::set<std::string> listed(hosts.begin(), hosts.end());

    std::vector<Instant> starts;
    std::vector<std::string> keys;
    for (long daysAgo = 0; daysAgo < daysLookedAt; ++daysAgo) {
        starts.push_back(local.start(-daysAgo, now));
        keys.push_back(local.key(starts.back()));
    }
    auto totals = [&](const std::vector<int>& daysAgo) {
        HostTotals sums;
        for (int index : daysAgo) {
            auto day = history.days.find(keys[static_cast<std::size_t>(index)]);
            if (day == history.days.end()) continue;
            for (const auto& [host, figures] : day->second.sites) {
                if (listed.count(host)) sums[host].add(figures);
            }
        }
        return sums;
    };
    auto range = [](int from, int to) {
        std::vector<int> numbers;
        for (int number = from; number <= to; ++number) numbers.push_back(number);
        return numbers;
    };

    HostTotals today = totals({0});
    HostTotals recent = totals(range(1, daysCompared));
    HostTotals earlier = totals(range(daysCompared + 1, 2 * daysCompared));

    std::vector<bool> complete;
    for (Instant start : starts) complete.push_back(history.covers(start, local));
    std::vector<int> recentDays;
    std::vector<int> earlierDays;
    for (int index = 1; index <= 2 * daysCompared; ++index) {
        if (complete[static_cast<std::size_t>(index)]) (index <= daysCompared ? recentDays : earlierDays).push_back(index);
    }

    UsageSummary summary;
    bool comparing = recentDays.size() >= daysNeededPerWeek && earlierDays.size() >= daysNeededPerWeek;
    HostTotals comparedRecent;
    HostTotals comparedEarlier;
    if (comparing) {
        comparedRecent = totals(recentDays);
        comparedEarlier = totals(earlierDays);
    } else if (auto days = daysUntilComparison(complete)) {
        summary.comparisonStarts = local.start(*days, now);
    }

    if (history.began) {
        for (int index = 1; index <= daysCompared; ++index) {
            if (*history.began < starts[static_cast<std::size_t>(index - 1)]) ++summary.daysOfHistory;
        }
    }

    for (const std::string& host : listed) {
        SiteRow row{host, secondsOf(recent, host), 0, std::nullopt, std::nullopt};
        bool shown = row.seconds > 0;
        if (comparing) {
            row.dailyAverage = secondsOf(comparedRecent, host) / static_cast<double>(recentDays.size());
            row.previousDailyAverage = secondsOf(comparedEarlier, host) / static_cast<double>(earlierDays.size());
            shown = shown || *row.previousDailyAverage > 0;
        }
        if (!shown) continue;
        if (auto found = recent.find(host); found != recent.end()) row.visits = found->second.visits;
        summary.sites.push_back(std::move(row));
    }

    Period todayPeriod = period(today);
    summary.todaySeconds = todayPeriod.seconds;
    summary.todayVisits = todayPeriod.visits;
    if (comparing) {
        summary.compared = Comparison{period(comparedRecent), static_cast<std::int64_t>(recentDays.size()),
                                      period(comparedEarlier), static_cast<std::int64_t>(earlierDays.size())};
    }
    summary.current = period(recent);
    summary.previous = period(earlier);

    // Most time first; a figure that is no number sorts last rather than
    // upsetting the order.
    auto rank = [](const SiteRow& row) {
        return std::isnan(row.seconds) ? -std::numeric_limits<double>::infinity() : row.seconds;
    };
    std::stable_sort(summary.sites.begin(), summary.sites.end(),
                     [&](const SiteRow& a, const SiteRow& b) { return rank(a) > rank(b); });

    summary.lines = summary.describe(calendar);
    return summary;
}

std::optional<long> UsageSummary::daysUntilComparison(const std::vector<bool>& complete) {
    auto counts = [&](long index) {
        return index < 0 || (static_cast<std::size_t>(index) < complete.size() && complete[static_cast<std::size_t>(index)]);
    };
    for (long n = 1; n <= daysLookedAt; ++n) {
        long offset = 1 - n;
        int firstWeek = 0;
        for (long k = 0; k < daysCompared; ++k) firstWeek += counts(offset + k);
        if (firstWeek < daysNeededPerWeek) continue;
        int secondWeek = 0;
        for (long k = daysCompared; k < 2 * daysCompared; ++k) secondWeek += counts(offset + k);
        if (secondWeek >= daysNeededPerWeek) return n;
    }
    return std::nullopt;
}

std::vector<std::string> UsageSummary::describe(const Calendar& calendar) const {
    std::vector<std::string> out;
    out.push_back("Today so far: " + duration(todaySeconds) + ", " + std::to_string(todayVisits) + " visit" +
                  plural(todayVisits));
    if (daysOfHistory >= 1) {
        out.push_back(timeLine());
        out.push_back(visitsLine());
        out.push_back(grayLine());
    }
    if (comparisonStarts) out.push_back("Comparisons start on " + dateText(*comparisonStarts, calendar));
    return out;
}

std::string UsageSummary::menuLine() const {
    if (daysOfHistory < 1) return "Today so far: " + duration(todaySeconds) + "\u2026";
    return "Last 7 days: " + duration(current.seconds) + " on your sites\u2026";
}

std::string UsageSummary::timeLine() const {
    std::string time = duration(current.seconds);
    if (compared) {
        double average = compared->current.seconds / static_cast<double>(compared->currentDays);
        double earlierAverage = compared->previous.seconds / static_cast<double>(compared->previousDays);
        double delta = wholeMinutes(average) - wholeMinutes(earlierAverage);
        std::string daily = average < 60.0 ? "under 1m a day" : "about " + duration(average) + " a day";
        std::string change = delta == 0  ? "the same as"
                             : delta > 0 ? duration(std::fabs(delta) * 60) + " more than"
                                         : duration(std::fabs(delta) * 60) + " less than";
        return time + " on your sites, " + daily + ", " + change + " the 7 days before.";
    }
    if (daysOfHistory < 7) {
        return "Last " + std::to_string(daysOfHistory) + " day" + plural(daysOfHistory) + ": " + time +
               " on your sites.";
    }
    return time + " on your sites in the last 7 days.";
}

std::string UsageSummary::visitsLine() const {
    std::string base = std::to_string(current.visits) + " visit" + plural(current.visits);
    if (!compared) return base + ".";
    double average = std::round(static_cast<double>(compared->current.visits) / static_cast<double>(compared->currentDays));
    double earlierAverage =
        std::round(static_cast<double>(compared->previous.visits) / static_cast<double>(compared->previousDays));
    double delta = average - earlierAverage;
    std::string daily = average < 1.0 ? "under 1 a day" : "about " + whole(average) + " a day";
    std::string change = delta == 0  ? "the same as"
                         : delta > 0 ? whole(std::fabs(delta)) + " more than"
                                     : whole(std::fabs(delta)) + " fewer than";
    return base + ", " + daily + ", " + change + " the 7 days before.";
}

std::string UsageSummary::grayLine() const {
    if (current.grayCounted < 5) return "Not enough gray visits yet.";
    std::string line = "After a site turned gray, you left within 2 minutes in " + std::to_string(current.grayLeft) +
                       " of " + std::to_string(current.grayCounted) + " visits";
    if (compared && compared->previous.grayCounted >= 5) {
        line += " (" + std::to_string(compared->previous.grayLeft) + " of " +
                std::to_string(compared->previous.grayCounted) + " the week before)";
    }
    return line + ".";
}

std::optional<std::string> UsageSummary::SiteRow::change() const {
    if (!dailyAverage || !previousDailyAverage) return std::nullopt;
    double delta = wholeMinutes(*dailyAverage) - wholeMinutes(*previousDailyAverage);
    if (delta == 0) return "same";
    if (delta > 0) return "up " + duration(delta * 60) + " a day";
    return "down " + duration(-delta * 60) + " a day";
}

std::string UsageSummary::duration(double seconds) {
    double minutes = std::trunc(seconds / 60.0);
    if (!(minutes >= 1)) return "<1m";
    if (minutes < 60) return whole(minutes) + "m";
    double hours = std::floor(minutes / 60.0);
    double rest = std::fmod(minutes, 60.0);
    if (rest == 0) return whole(hours) + "h";
    return whole(hours) + "h " + whole(rest) + "m";
}

std::string UsageSummary::dateText(Instant date, const Calendar& calendar) { return calendar.mediumDateText(date); }

}  // namespace ashview
