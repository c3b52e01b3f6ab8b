// The keeper of the usage statistic for the life of the application: it owns
// the usage history's store and recorder, loads the history once, accounts for
// the time before this run when it starts, tells an orderly quit from a
// log-out or shutdown, and writes the history only when that is safe.
//
// A history file that a newer program wrote, or one that cannot be read from
// disk, is never written to in this run: `problem` is then set for good and
// the recorder counts in memory only. A file that cannot be understood is set
// aside as "history.json.broken" and counting starts afresh.
//
// Owned by the gray controller; main thread only. The main loop, the
// workspace's notification center and the log are borrowed and must outlive
// the keeper.
#pragma once

#include "AshviewCore/Usage/UsageRecorder.h"
#include "AshviewCore/Usage/UsageStore.h"

#include <filesystem>
#include <memory>
#include <optional>

namespace ashview {

class Log;
class MainLoop;
class NotificationObservation;
class SystemNotificationCenter;

class UsageKeeper final {
public:
    /// Why the history file may not be written in this run.
    enum class Problem { needsNewerApp, unreadable };

    /// Loads the history from "history.json" in `directory`, setting a broken
    /// file aside. Never throws: whatever goes wrong becomes `problem` and a
    /// log line, and counting starts from a fresh history.
    UsageKeeper(std::filesystem::path directory, MainLoop& loop, SystemNotificationCenter& workspace, const Log& log);
    ~UsageKeeper();
    UsageKeeper(const UsageKeeper&) = delete;
    UsageKeeper& operator=(const UsageKeeper&) = delete;

    /// Once, when the controller starts: listens for the coming end of the
    /// session (log-out, restart, shutdown) and tells the recorder that a
    /// run begins, with the machine's boot time when the system knows it.
    /// Saves nothing.
    void start();
    /// Once, when the controller stops: records the end of the run, as a
    /// shutdown when the session was ending and as the user's quit
    /// otherwise, then `saveIfChanged`.
    void stop();
    /// The user's command: forgets every day, removes both history files and
    /// writes an empty history that begins now. Does nothing at all while
    /// `problem` is set.
    void clearHistory();
    /// Writes the history when `problem` is absent and something changed
    /// since the last write. On failure keeps the changes marked, so the
    /// next call tries again. Of a run of failures only the first is logged,
    /// "could not save the usage history", and the first success after it
    /// logs "saving the usage history works again": a disk that keeps
    /// refusing does not flood the log.
    void saveIfChanged();

    const std::optional<Problem>& problem() const { return problem_; }
    const UsageStore& store() const { return store_; }
    UsageRecorder& recorder() { return recorder_; }
    const UsageRecorder& recorder() const { return recorder_; }
    /// True from the log-out, restart or shutdown notice on, for good: a
    /// cancelled log-out still ends the run as a shutdown.
    bool isPoweringOff() const { return poweringOff_; }

private:
    std::optional<Problem> problem_;
    UsageStore store_;
    UsageRecorder recorder_;
    bool poweringOff_ = false;
    /// True from a failed save to the next successful one.
    bool saveFailing_ = false;
    MainLoop& loop_;
    SystemNotificationCenter& workspace_;
    const Log& log_;
    std::unique_ptr<NotificationObservation> powerOffObservation_;
};

}  // namespace ashview
