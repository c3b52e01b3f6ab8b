// A scenario played against real time, as the graphical program plays it:
// each call to `advance` lets some virtual seconds pass; lines run as soon as
// their turn comes, and a `wait` or `wait until` line lets its time pass in
// slices across calls instead of at once. After the last line the clock goes
// on, so that the program's timers keep running while a person looks.
//
// Toolkit-free: the caller's timer decides how often and how much. Borrows
// the script and the player, which must outlive it. Main thread only.
#pragma once

#include "Scenario/ScenarioPlayer.h"
#include "Scenario/ScenarioScript.h"

#include <iosfwd>
#include <optional>

namespace ashview {

class RealTimePlayback final {
public:
    /// `out` receives the echo of each wait line as it begins, as the
    /// player echoes the other lines.
    RealTimePlayback(const ScenarioScript& script, ScenarioPlayer& player, std::ostream& out)
        : script_(script), player_(player), out_(out) {}

    /// Plays on for `seconds` of virtual time: the lines whose turn comes,
    /// and the waits' time. Nothing once a line has failed.
    void advance(double seconds);

    /// The player's status of the last line played: `finished` unless a line
    /// failed or another copy held the data folder.
    int status() const { return status_; }
    /// Every line has been played.
    bool isAtEnd() const { return next_ >= script_.commands.size(); }

private:
    const ScenarioScript& script_;
    ScenarioPlayer& player_;
    std::ostream& out_;
    std::size_t next_ = 0;
    /// Virtual seconds left of the wait line being played.
    std::optional<double> waiting_;
    int status_ = ScenarioPlayer::finished;
};

}  // namespace ashview
