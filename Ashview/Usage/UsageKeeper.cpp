#include "Ashview/Usage/UsageKeeper.h"

#include "Ashview/Controller/Log.h"
#include "Platform/MainLoop.h"
#include "Platform/SystemNotifications.h"

#include <exception>
#include <utility>

namespace ashview {

namespace {

struct Opened final {
    UsageHistory history;
    std::optional<UsageKeeper::Problem> problem;
};

Opened open(const UsageStore& store, const Log& log) {
    try {
        UsageStore::Loaded loaded = store.load();
        if (loaded.setBrokenFileAside) {
            log("the usage history file could not be read, so it was set aside and a new history started");
        }
        return {std::move(loaded.history), std::nullopt};
    } catch (const UsageStoreError&) {
        log("the usage history file is from a newer version, so it is left as it is and not saved");
        return {UsageHistory{}, UsageKeeper::Problem::needsNewerApp};
    } catch (const std::exception&) {
        log("could not read the usage history file, so it is left as it is and not saved");
        return {UsageHistory{}, UsageKeeper::Problem::unreadable};
    }
}

}  // namespace

UsageKeeper::UsageKeeper(std::filesystem::path directory, MainLoop& loop, SystemNotificationCenter& workspace,
                         const Log& log)
    : store_{std::move(directory)},
      recorder_(UsageHistory{}),
      loop_(loop),
      workspace_(workspace),
      log_(log) {
    Opened opened = open(store_, log_);
    problem_ = opened.problem;
    recorder_ = UsageRecorder(std::move(opened.history));
}

UsageKeeper::~UsageKeeper() = default;

void UsageKeeper::start() {
    // The observation goes with the keeper, so the handler never outlives it.
    powerOffObservation_ = workspace_.observe(SystemNotification::willPowerOff, [this] {
        poweringOff_ = true;
        log_("logging out, restarting, or shutting down");
    });
    recorder_.appStarted(loop_.now(), loop_.bootTime(), loop_.calendar());
}

void UsageKeeper::stop() {
    auto reason = isPoweringOff() ? UsageHistory::StopReason::shutdown : UsageHistory::StopReason::userQuit;
    recorder_.appStopping(loop_.now(), reason, loop_.calendar());
    saveIfChanged();
}

void UsageKeeper::saveIfChanged() {
    if (problem_ || !recorder_.hasUnsavedChanges()) return;
    try {
        store_.save(recorder_.history());
        recorder_.markSaved();
        if (std::exchange(saveFailing_, false)) log_("saving the usage history works again");
    } catch (const std::exception&) {
        if (!std::exchange(saveFailing_, true)) log_("could not save the usage history");
    }
}

void UsageKeeper::clearHistory() {
    if (problem_) return;
    recorder_.clearHistory(loop_.now());
    try {
        store_.clear();
    } catch (const std::exception&) {
        log_("could not remove the usage history files");
    }
    saveIfChanged();
    log_("usage history cleared");
}

}  // namespace ashview
