// The main loop and its clocks: the one place where the application reads the
// time and asks for work to be done later.
//
// All work of the program happens on one thread, the main thread. Every task
// handed to a main loop runs on that thread, one at a time, never inside the
// call that scheduled it. Logic code never holds a main loop: the application
// layer reads `now()` and `calendar()` here and hands them down as values.
//
// The Mac implementation runs on the process's main run loop and dispatch
// queue; the simulated one (`SimClock`) runs on a virtual clock that moves only
// when a test or a scenario advances it.
#pragma once

#include "AshviewCore/Foundation/Calendar.h"
#include "AshviewCore/Foundation/Instant.h"

#include <functional>
#include <memory>
#include <optional>

namespace ashview {

/// A task waiting on a main loop: a delayed block or a repeating timer.
///
/// The loop keeps the task alive on its own; dropping the last handle does
/// not cancel it (as with a dispatched block or a scheduled timer).
class ScheduledTask {
public:
    virtual ~ScheduledTask() = default;

    /// After this returns the task never runs again, even when it is already
    /// due. Cancelling twice, or cancelling a delayed task that has run, does
    /// nothing. A repeating timer may cancel itself from inside its own run.
    virtual void cancel() = 0;
    /// True until the task is cancelled; for a delayed task also false once
    /// it has run. A repeating timer stays active between its runs.
    virtual bool isActive() const = 0;
};

class MainLoop {
public:
    MainLoop() = default;
    MainLoop(const MainLoop&) = delete;
    MainLoop& operator=(const MainLoop&) = delete;
    virtual ~MainLoop() = default;

    /// The wall-clock time. It may jump (the user sets the clock, the
    /// machine wakes up), so intervals for timing are taken from `uptime()`.
    virtual Instant now() const = 0;
    /// Seconds of a monotonic clock since the machine started. It never goes
    /// back and does not advance while the machine sleeps.
    virtual double uptime() const = 0;
    /// When the machine last started, or nothing when the system cannot tell.
    virtual std::optional<Instant> bootTime() const = 0;
    /// The user's current calendar, time zone and locale. The user may change
    /// them while the program runs, so callers read this at each use instead
    /// of keeping a copy.
    virtual Calendar calendar() const = 0;

    /// Runs `task` once on the main thread after `delay` seconds of uptime
    /// (0 or less: at the next turn of the loop). Tasks due at the same
    /// moment run in the order they were scheduled.
    virtual std::shared_ptr<ScheduledTask> runAfter(double delay, std::function<void()> task) = 0;
    /// Runs `task` on the main thread every `interval` seconds (which must be
    /// positive), the first time one interval from now, until the returned
    /// handle is cancelled. The rhythm is kept from the first firing: each
    /// due time is the previous due time plus the interval.
    virtual std::shared_ptr<ScheduledTask> repeatEvery(double interval, std::function<void()> task) = 0;
    /// Runs `work` off the main thread (a work that may block, such as a
    /// system prompt), then `done` on the main thread. `work` must touch no
    /// state of the program; `done` may.
    virtual void runInBackground(std::function<void()> work, std::function<void()> done) = 0;
};

}  // namespace ashview
