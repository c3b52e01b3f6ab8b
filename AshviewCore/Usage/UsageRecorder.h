// Turns the sightings of each read pass into the figures of the usage
// history: seconds on screen and in gray, visits, and gray moments (whether a
// site turning gray made the user leave within two minutes). It also accounts
// for the time during which the program could not watch.
//
// A plain value, held by the usage keeper and driven from the main thread. It
// holds the only writable copy of the history. It never reads a clock: every
// operation is handed `now` and a calendar.
#pragma once

#include "AshviewCore/Foundation/Calendar.h"
#include "AshviewCore/Foundation/Instant.h"
#include "AshviewCore/Usage/LocalDays.h"
#include "AshviewCore/Tracking/SiteSighting.h"
#include "AshviewCore/Usage/UsageHistory.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace ashview {

class UsageRecorder final {
public:
    /// A site may be out of view this long without its visit ending.
    static constexpr double visitGrace = 30.0;
    /// Leaving within this long after a site turned gray counts as having
    /// left; staying past it as having stayed.
    static constexpr double grayWindow = 120.0;
    /// The longest gap between two passes still counted as time on screen.
    static constexpr double longestCountedGap = 15.0;

    /// Takes over a loaded history; no site is known yet.
    explicit UsageRecorder(UsageHistory history);

    const UsageHistory& history() const { return history_; }
    /// True after any change, until `markSaved`.
    bool hasUnsavedChanges() const { return hasUnsavedChanges_; }
    /// The hosts the recorder holds state for: those of the latest pass, and
    /// those still finishing a visit or a gray moment after leaving the list.
    std::vector<std::string> trackedHosts() const;

    /// One read pass at `at`. `observing` is false while the program is
    /// paused: every site then counts as out of view. The time since the
    /// previous pass is credited to what was on screen at that pass, on the
    /// days it passed in, unless the gap is longer than `longestCountedGap`
    /// or the clock went backwards. A site missing from `sightings` counts as
    /// out of view. A host named twice counts once, by its first sighting.
    void record(const std::vector<SiteSighting>& sightings, Instant at, bool observing, const Calendar& calendar);
    /// Once at the start of a run, before the first `record`: accounts for the
    /// time the program could not watch since the last run (none after a
    /// shutdown; up to the boot after a crash when `bootTime` is known), marks
    /// the run alive, sets the beginning of counting when it has none, and
    /// prunes old days.
    void appStarted(Instant at, std::optional<Instant> bootTime, const Calendar& calendar);
    /// Once at the end of a run: records the orderly stop and prunes old days.
    /// Going visits are left as they are and undecided gray moments are lost.
    void appStopping(Instant at, UsageHistory::StopReason reason, const Calendar& calendar);
    /// Forgets every day; counting begins again at `at`.
    void clearHistory(Instant at);
    /// Whoever wrote `history()` to disk calls this.
    void markSaved() { hasUnsavedChanges_ = false; }

    friend bool operator==(const UsageRecorder&, const UsageRecorder&) = default;

private:
    struct GrayMoment final {
        Instant time;
        std::string day;
        /// Absent while undecided; true if the user left within the window.
        std::optional<bool> left;

        friend bool operator==(const GrayMoment&, const GrayMoment&) = default;
    };

    /// What one pass knows, shared by every site it advances.
    struct Update final {
        Instant now;
        bool observing = false;
        std::string today;
        std::vector<LocalDays::Piece> counted;
        std::int64_t stamp = 0;
    };

    struct SiteState final {
        bool visible = false;
        bool gray = false;
        bool onVisit = false;
        std::optional<Instant> outOfViewSince;
        bool visitHasMoment = false;
        std::vector<GrayMoment> moments;
        std::int64_t stamp = 0;

        void advance(const SiteSighting& sighting, const Update& update, UsageHistory& history);
        void endVisit(Instant wentOutOfView);
        void settleMoments(const std::string& host, const Update& update, UsageHistory& history);

        friend bool operator==(const SiteState&, const SiteState&) = default;
    };

    /// Gives every site the pass did not mention an out-of-view pass, and
    /// forgets those with no visit and no moment left.
    void leaveSitesOffTheList(const Update& update);
    void forgetSites();

    UsageHistory history_;
    bool hasUnsavedChanges_ = false;
    std::map<std::string, SiteState> sites_;
    std::optional<Instant> lastUpdate_;
    std::int64_t stamp_ = 0;
};

}  // namespace ashview
