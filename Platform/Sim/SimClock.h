// The simulated main loop: a virtual clock with a queue of timed tasks.
//
// Time stands still until a test or a scenario calls `advance`. Then every
// task that falls due on the way runs at its own due time (during a task,
// `now()` and `uptime()` read that moment), in order of due time and, at the
// same moment, in the order the tasks were queued. Tasks that a running task
// queues run in the same `advance` when they fall due before its end. Nothing
// depends on the real clock or on addresses, so the same steps always give
// the same runs.
//
// Time is kept internally in whole nanoseconds, so delays like 0.15 s add up
// exactly: advancing by 0.1 and then by 0.05 reaches a task queued 0.15 s
// ahead.
//
// Single-threaded. Not re-entrant: calling `advance` from inside a task is a
// programming error and throws std::logic_error.
#pragma once

#include "Platform/MainLoop.h"

#include <cstdint>
#include <map>
#include <vector>
#include <memory>
#include <optional>

namespace ashview {

class SimClock final : public MainLoop {
public:
    /// The default start: Monday 2026-11-23 09:00:00 UTC, a machine that has
    /// been up for one hour, the Gregorian calendar in UTC with en_US_POSIX.
    static constexpr Instant defaultStart{817117200.0};
    static constexpr double defaultUptime = 3600.0;

    SimClock();
    SimClock(Instant start, Calendar calendar, double uptime = defaultUptime);
    ~SimClock() override;

    Instant now() const override;
    double uptime() const override;
    std::optional<Instant> bootTime() const override;
    Calendar calendar() const override;
    std::shared_ptr<ScheduledTask> runAfter(double delay, std::function<void()> task) override;
    /// Throws std::invalid_argument when `interval` is not positive.
    std::shared_ptr<ScheduledTask> repeatEvery(double interval, std::function<void()> task) override;
    /// Keeps the work until `finishBackgroundWork()`: on the simulated desktop
    /// a blocking system call ends when a test or a scenario says so.
    void runInBackground(std::function<void()> work, std::function<void()> done) override;
    /// Runs every waiting background work, then its completion, in order.
    /// Returns how many ran.
    std::size_t finishBackgroundWork();
    std::size_t backgroundWorkWaiting() const { return background_.size(); }

    /// Moves both clocks forward by `seconds` (negative counts as 0), running
    /// every task due up to and including the end. `advance(0)` runs what is
    /// due now.
    void advance(double seconds);
    /// Advances to the wall-clock instant `moment`; nothing when it is not
    /// later than now (tasks due now still run).
    void advanceTo(Instant moment);
    /// Advances to the next due task and runs everything due at that moment.
    /// Returns false, without moving, when no task waits.
    bool runNext();

    /// The main thread is busy for `seconds` (negative counts as 0), as in a
    /// synchronous call that blocks: both clocks move on and nothing runs.
    /// Tasks that fell due meanwhile run late, at the next advance, in their
    /// order. May be called from inside a task.
    void block(double seconds);
    /// Moves the wall clock by `seconds` (either way) without moving uptime or
    /// running anything: a clock set by the user, or a machine that slept.
    void shiftWallClock(double seconds);
    void setCalendar(Calendar calendar);
    /// Makes `bootTime()` answer nothing (the system cannot tell) or again
    /// the instant the clocks imply.
    void setBootTimeKnown(bool known);

    /// Tasks waiting now: delayed blocks not yet run and active repeating
    /// timers, cancelled ones excluded.
    std::size_t pendingCount() const;
    /// How many delayed blocks and repeating timers were ever queued.
    std::size_t queuedCount() const { return queued_; }
    /// How many times any task ran (each firing of a repeating timer counts).
    std::size_t firedCount() const { return fired_; }
    /// The uptime at which the next task falls due, or nothing when none waits.
    std::optional<double> nextDueUptime() const;

private:
    class Task;
    using Key = std::pair<std::int64_t, std::uint64_t>;  // due time, sequence

    void runUntil(std::int64_t end);
    void enqueue(std::int64_t due, const std::shared_ptr<Task>& task);

    Instant start_;
    Calendar calendar_;
    std::int64_t startUptimeNanos_ = 0;
    std::int64_t elapsedNanos_ = 0;
    double wallShift_ = 0;
    bool bootTimeKnown_ = true;
    bool running_ = false;
    std::uint64_t sequence_ = 0;
    std::size_t queued_ = 0;
    std::size_t fired_ = 0;
    std::map<Key, std::shared_ptr<Task>> queue_;
    std::vector<std::pair<std::function<void()>, std::function<void()>>> background_;
};

}  // namespace ashview
