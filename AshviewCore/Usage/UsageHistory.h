// The persisted record of time spent on listed sites and apps, day by day, and
// of how each run of the program ended.
//
// A plain value. `UsageRecorder` is its only writer, `UsageStore` puts it on
// disk, `UsageSummary` reads it. Days are named by `LocalDays` keys; hosts are
// the `host` of a site rule (a site's host or an app's key).
#pragma once

#include "AshviewCore/Foundation/Calendar.h"
#include "AshviewCore/Foundation/Instant.h"
#include "AshviewCore/Foundation/Json.h"
#include "AshviewCore/Usage/LocalDays.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>

namespace ashview {

struct UsageHistory final {
    /// How a run ended in an orderly way.
    enum class StopReason { userQuit, shutdown };

    struct Stop final {
        Instant time;
        StopReason reason = StopReason::userQuit;

        friend bool operator==(const Stop&, const Stop&) = default;
    };

    /// The current or latest run. A run without `stop` is still going or died.
    struct Run final {
        /// The last moment the run was known to be alive.
        Instant lastAlive;
        std::optional<Stop> stop;

        friend bool operator==(const Run&, const Run&) = default;
    };

    /// What was counted of one host on one day.
    struct Totals final {
        /// Seconds on screen, in color or gray.
        double seconds = 0;
        /// The part of `seconds` shown gray.
        double graySeconds = 0;
        /// Visits begun that day.
        std::int64_t visits = 0;
        /// Gray moments after which the user left within the gray window.
        std::int64_t grayLeft = 0;
        /// Gray moments after which the user stayed.
        std::int64_t grayStayed = 0;

        /// True when every figure is zero; such totals are not written.
        bool isZero() const;
        /// Adds every figure of `other`; counts stop at the largest integer.
        void add(const Totals& other);

        friend bool operator==(const Totals&, const Totals&) = default;
    };

    struct Day final {
        std::map<std::string, Totals> sites;
        /// Seconds of that day during which the program could not watch.
        double unobservedSeconds = 0;

        friend bool operator==(const Day&, const Day&) = default;
    };

    /// The layout this program reads and writes.
    static constexpr std::int64_t currentSchemaVersion = 1;
    /// A day with more unobserved time than this is not trusted.
    static constexpr double trustedUnobservedSeconds = 3600.0;
    /// Days kept: today and the 399 before it.
    static constexpr long keptDays = 400;

    std::int64_t schemaVersion = currentSchemaVersion;
    /// When counting began; no day that starts before it is trusted.
    std::optional<Instant> began;
    std::optional<Run> lastRun;
    std::map<std::string, Day> days;

    static std::string dayKey(Instant date, const Calendar& calendar);

    /// True when the day holding `day` lies before the day of `now` and is
    /// covered.
    bool isComplete(Instant day, Instant now, const Calendar& calendar) const;
    /// True when the figures of the day that starts at `dayStarting` can be
    /// trusted: counting had begun by then, and at most an hour of it went
    /// unobserved (a day with no entry at all was fully observed).
    bool covers(Instant dayStarting, const LocalDays& local) const;
    /// A history with no days that began at `at`; the run record is kept so
    /// that the next start still accounts for the time before it.
    UsageHistory cleared(Instant at) const;

    /// Applies `change` (callable with `Totals&`) to the totals of `host` on
    /// `day`, creating the day and the totals when missing.
    template <class Change>
    void update(const std::string& host, const std::string& day, Change&& change) {
        std::forward<Change>(change)(days[day].sites[host]);
    }
    /// Adds the stretch [from, to) to the unobserved time of the days it
    /// touches; an empty stretch creates no day.
    void addUnobserved(Instant from, Instant to, const LocalDays& local);
    /// Keeps exactly the days from `oldestKeptDay(now, local)` onwards, by
    /// key, so days after `now` are kept too.
    void prune(Instant now, const LocalDays& local);
    /// The start of the oldest day that `prune` at `now` keeps: 399 days
    /// before the day of `now`.
    static Instant oldestKeptDay(Instant now, const LocalDays& local);

    /// The sparse document form: zero figures, empty site maps and absent
    /// values are left out, and hosts whose totals are all zero are dropped.
    Json::Value toJson() const;
    /// Reads the document form, filling in what was left out. Throws
    /// `Json::DecodingError` for a missing required key, a value of the wrong
    /// type or an unknown stop reason.
    static UsageHistory fromJson(const Json::Value& document);

    friend bool operator==(const UsageHistory&, const UsageHistory&) = default;
};

/// Adds `amount` to `count`, stopping at the ends of the 64-bit range rather
/// than wrapping.
void addCount(std::int64_t& count, std::int64_t amount);

}  // namespace ashview
