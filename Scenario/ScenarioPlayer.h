// Plays a scenario: the simulated desktop does what each line says, and the
// real application (`AppDelegate` and everything it builds) runs over it on
// the virtual clock.
//
// The player writes two streams. `log` receives the program's own lines,
// exactly as the program writes them on standard error. `out` receives what a
// person would see: each line echoed with the virtual time, then, whenever it
// changed, which windows are gray and where each listed site stands.
//
// Each `start` is a new run of the program on the same data folder, as a new
// process would be: it takes the one-copy lock, loads the rules, the counters
// and the history. `stop` ends that run (and lets go of the lock, as the end
// of its process would). Single-threaded; one player plays one scenario.
#pragma once

#include "Scenario/ScenarioScript.h"

#include <filesystem>
#include <iosfwd>
#include <memory>
#include <optional>
#include <string>

namespace ashview {

class AppDelegate;
class SimApplications;
class SimDesktop;
class WindowViews;

class ScenarioPlayer final {
public:
    /// Exit statuses of a play.
    static constexpr int finished = 0;
    static constexpr int failedLine = 1;
    static constexpr int anotherCopy = 3;

    struct Options final {
        /// The program's data folder for every run.
        std::filesystem::path dataDirectory;
        /// Names the scenario in messages.
        std::string file;
        std::ostream& out;
        std::ostream& log;
        /// The windows' views; without, the player's own headless ones.
        WindowViews* views = nullptr;
    };

    explicit ScenarioPlayer(Options options);
    ScenarioPlayer(const ScenarioPlayer&) = delete;
    ScenarioPlayer& operator=(const ScenarioPlayer&) = delete;
    /// Ends a run still going, as the user quitting the program would.
    ~ScenarioPlayer();

    /// Plays every command, in order, then stops a run still going. Returns
    /// `finished`; `failedLine` after writing "FILE:LINE: ..." to `log` when
    /// a line cannot be carried out (a rule change for a site that is not
    /// listed); `anotherCopy` when a start found the data folder in use.
    int play(const ScenarioScript& script);
    /// Plays one command; the same statuses. Commands after a failure are
    /// not to be played.
    int step(const ScenarioCommand& command);
    /// Ends a run still going.
    void finish();

    /// The desktop, made by the first command (a `clock` line decides its
    /// start); absent before.
    SimDesktop* desktop();
    /// Timer and delayed-task firings of the virtual clock so far.
    std::size_t firings() const;

    // For a player that shows the desktop and plays in real time.
    /// The desktop's applications, made with it; absent before.
    SimApplications* applications();
    /// The running program; absent outside a run.
    AppDelegate* delegate();
    /// The virtual seconds a `wait` or `wait until` line lets pass from now;
    /// nothing for any other line. Such a line may be played in slices
    /// through `pass` instead of `step`.
    std::optional<double> waitSeconds(const ScenarioCommand& command) const;
    /// Lets `seconds` of virtual time pass (nothing before the desktop
    /// exists); what a person sees is written when it changed.
    void pass(double seconds);

private:
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace ashview
