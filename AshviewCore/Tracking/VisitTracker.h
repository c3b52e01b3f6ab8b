// The decision-maker between gray and color, window by window.
//
// `VisitTracker` is a plain value. Each read pass hands it the rules, every
// window the pass could read, the time and the calendar; it credits on-screen
// time, counts opens, carries each listed site through its gray and color
// phases and answers with an `Appearance` for every window. It reads no clock,
// does no input or output and holds no reference to anything: the controller
// owns the one instance and calls it from the main thread.
//
// Counts are kept per rule `host` in a `SiteUsage`. Dated lists (`opens`,
// `onScreen`) serve the rolling hour and the local day and survive the end of a
// browsing session; running totals serve the session and are cleared by
// `browserQuit()`.
#pragma once

#include "AshviewCore/Tracking/Appearance.h"
#include "AshviewCore/Tracking/BrowserWindow.h"
#include "AshviewCore/Foundation/Calendar.h"
#include "AshviewCore/Foundation/DateInterval.h"
#include "AshviewCore/Foundation/Instant.h"
#include "AshviewCore/Rules/RuleSet.h"
#include "AshviewCore/Tracking/SiteSighting.h"
#include "AshviewCore/Tracking/SiteStatus.h"
#include "AshviewCore/Tracking/TrackerSnapshot.h"
#include "AshviewCore/Tracking/WindowKey.h"

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <variant>
#include <vector>

namespace ashview {

class VisitTracker;

/// What the tracker counts and remembers of one listed site or app.
struct SiteUsage final {
    /// Where a site stands between gray and color. Same style as the rule
    /// values: a std::variant of small structs in a value type.
    struct Phase final {
        /// Gray since `since`.
        struct Gray final {
            Instant since;
            friend bool operator==(const Gray&, const Gray&) = default;
        };
        /// In color; the limit decides at the next window.
        struct Color final {
            friend bool operator==(const Color&, const Color&) = default;
        };
        /// In color until the current visit ends, whatever the limit says.
        struct ColorForRestOfVisit final {
            friend bool operator==(const ColorForRestOfVisit&, const ColorForRestOfVisit&) = default;
        };
        enum class Kind { gray, color, colorForRestOfVisit };

        std::variant<Gray, Color, ColorForRestOfVisit> value = Color{};

        static Phase gray(Instant since) { return Phase{Gray{since}}; }
        static Phase color() { return Phase{Color{}}; }
        static Phase colorForRestOfVisit() { return Phase{ColorForRestOfVisit{}}; }

        Kind kind() const { return static_cast<Kind>(value.index()); }
        /// The gray phase when this is `gray`, else null.
        const Gray* grayPhase() const { return std::get_if<Gray>(&value); }

        friend bool operator==(const Phase&, const Phase&) = default;
    };

    /// When each open happened, oldest first; one entry per open, so several
    /// opens in one pass leave equal entries. Entries older than the
    /// retention horizon are dropped by the next pass.
    std::vector<Instant> opens;
    /// Opens since the browsing session began.
    std::int64_t sessionOpens = 0;
    /// Spans during which the site was on screen while its rule was active,
    /// oldest first, not overlapping. Trimmed like `opens`, but a span that
    /// reaches past the horizon is kept whole.
    std::vector<DateInterval> onScreen;
    /// On-screen seconds since the browsing session began.
    double sessionSeconds = 0;
    Phase phase = Phase::color();
    /// The site went gray under `untilChromeQuits` and goes gray again at once
    /// on every return, until every browser has quit.
    bool latched = false;
    /// The rule was active on the last pass.
    bool wasActive = false;
    /// The span up to the next pass is credited as on-screen time.
    bool clockRunning = false;

    /// The number of `opens` strictly after `start`.
    std::int64_t opensAfter(Instant start) const;
    /// The seconds of `onScreen` that lie after `start`; a span that began
    /// before `start` counts only its part after it.
    double secondsAfter(Instant start) const;

    friend bool operator==(const SiteUsage&, const SiteUsage&) = default;

private:
    friend class VisitTracker;

    /// Credits `interval`: it extends the last span when it touches it, and
    /// its whole duration is added to `sessionSeconds` in any case.
    void addOnScreen(DateInterval interval);
};

class VisitTracker final {
public:
    /// A gap between two passes longer than this credits no on-screen time at
    /// all, so sleep, a hung read or a clock set forward earn nothing.
    static constexpr double longestCountedGap = 15.0;
    /// Dated counts older than this (25 hours) are dropped, and a snapshot
    /// older than this restores none.
    static constexpr double retentionHorizon = 90000.0;

    using Appearances = std::unordered_map<WindowKey, Appearance>;
    using Requests = std::unordered_map<WindowKey, WindowRequest>;

    /// A tracker with nothing counted and no starting point: its first pass
    /// takes the windows as it finds them and counts no open.
    VisitTracker() = default;

    /// One read pass at `now`. Credits the span since the last pass to the
    /// sites that were on screen at its beginning, drops the counts of sites
    /// no longer listed, counts opens, advances every listed site's phase and
    /// replaces `sightings()`. Returns one `Appearance` for every window of
    /// `windows`. `requests` and a `showInColorUntil` later than `now` change
    /// only the answer, never the counting. Never fails.
    ///
    /// Windows with equal keys are not expected; `windows` is the whole of
    /// one reading, in the order the caller wants sightings and opens judged.
    Appearances update(const RuleSet& rules, const std::vector<BrowserWindow>& windows, Instant now,
                       const Calendar& calendar, const Requests& requests, std::optional<Instant> showInColorUntil);

    /// Ends the browsing session: every browser has quit. Sites forget their
    /// windows, session counts, latches and phases; their hour and day counts
    /// stay. Apps are left exactly as they were.
    void browserQuit();

    /// Where `rule` stands at `now`, for display. Changes nothing; a rule the
    /// tracker has not seen yet reads as one with nothing counted.
    SiteStatus status(const SiteRule& of, const RuleSet& rules, Instant now, const Calendar& calendar) const;

    /// The counts worth keeping over a restart, as they stand at `now`: dated
    /// entries older than the retention horizon are left out and spans that
    /// reach past it are cut at it. Changes nothing.
    TrackerSnapshot snapshot(Instant now, std::optional<Instant> sessionStart) const;
    /// Replaces the whole state by that of a new tracker holding the counts of
    /// `saved`. Dated counts come back only when `saved` is between 0 and the
    /// retention horizon old, and only the parts between the horizon and
    /// `now`; session counts come back exactly when `sessionContinues`. The
    /// next pass is a first pass: it counts no open.
    void restore(const TrackerSnapshot& saved, Instant now, bool sessionContinues);

    /// The last pass's view of each rule, in rule order.
    const std::vector<SiteSighting>& sightings() const { return sightings_; }
    /// The counts per rule `host`.
    const std::unordered_map<std::string, SiteUsage>& usage() const { return usage_; }
    /// Which rule `host` each window was last counted under.
    const std::unordered_map<WindowKey, std::string>& siteByWindow() const { return siteByWindow_; }
    /// The `now` of the last pass.
    std::optional<Instant> lastUpdate() const { return lastUpdate_; }
    /// False until the first pass after construction or `restore` is over.
    bool hasStartingPoint() const { return hasStartingPoint_; }

    friend bool operator==(const VisitTracker&, const VisitTracker&) = default;

private:
    /// Credits the span since `lastUpdate_` to every site whose clock ran,
    /// and drops dated entries older than the retention horizon.
    void addOnScreenTime(Instant until);
    /// Whether `usage` has used up what `trigger` allows at `now`.
    static bool limitPassed(const GrayTrigger& trigger, const SiteUsage& usage, Instant now, const Calendar& calendar);

    std::unordered_map<WindowKey, std::string> siteByWindow_;
    std::unordered_map<std::string, SiteUsage> usage_;
    std::optional<Instant> lastUpdate_;
    bool hasStartingPoint_ = false;
    std::vector<SiteSighting> sightings_;
};

}  // namespace ashview
