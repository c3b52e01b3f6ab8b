#include "AshviewCore/Usage/UsageRecorder.h"

#include <algorithm>
#include <utility>

namespace ashview {

UsageRecorder::UsageRecorder(UsageHistory history) : history_(std::move(history)) {}

std::vector<std::string> UsageRecorder::trackedHosts() const {
    std::vector<std::string> hosts;
    for (const auto& entry : sites_) hosts.push_back(entry.first);
    return hosts;
}

void UsageRecorder::record(const std::vector<SiteSighting>& sightings, Instant at, bool observing,
                           const Calendar& calendar) {
    LocalDays local(calendar);
    std::vector<LocalDays::Piece> counted;
    if (lastUpdate_ && *lastUpdate_ < at && at - *lastUpdate_ <= longestCountedGap) {
        counted = local.split(*lastUpdate_, at);
    }
    ++stamp_;
    Update update{at, observing, local.key(at), std::move(counted), stamp_};

    std::size_t touched = 0;
    for (const SiteSighting& sighting : sightings) {
        SiteState& state = sites_[sighting.host];
        if (state.stamp == update.stamp) continue;
        ++touched;
        bool seen = observing && sighting.visible;
        SiteSighting effective{sighting.host, seen, seen && sighting.gray, seen && sighting.automaticGray};
        state.advance(effective, update, history_);
    }
    if (touched < sites_.size()) leaveSitesOffTheList(update);

    lastUpdate_ = at;
    history_.lastRun = UsageHistory::Run{at, std::nullopt};
    hasUnsavedChanges_ = true;
}

void UsageRecorder::SiteState::advance(const SiteSighting& sighting, const Update& update, UsageHistory& history) {
    const std::string& host = sighting.host;
    // Time between two passes belongs to what was on screen at the first.
    if (visible) {
        for (const auto& piece : update.counted) {
            history.update(host, piece.day, [&](UsageHistory::Totals& totals) {
                totals.seconds += piece.seconds;
                if (gray) totals.graySeconds += piece.seconds;
            });
        }
    }
    if (outOfViewSince && update.now - *outOfViewSince >= visitGrace) endVisit(*outOfViewSince);
    if (sighting.visible) {
        if (!onVisit) {
            onVisit = true;
            history.update(host, update.today, [](UsageHistory::Totals& totals) { addCount(totals.visits, 1); });
        }
        outOfViewSince.reset();
        if (sighting.automaticGray && !visitHasMoment) {
            visitHasMoment = true;
            moments.push_back(GrayMoment{update.now, update.today, std::nullopt});
        }
    } else if (onVisit && !outOfViewSince) {
        outOfViewSince = update.now;
    }
    if (!moments.empty()) settleMoments(host, update, history);
    visible = sighting.visible;
    gray = sighting.gray;
    stamp = update.stamp;
}

void UsageRecorder::SiteState::endVisit(Instant wentOutOfView) {
    for (GrayMoment& moment : moments) {
        if (!moment.left) moment.left = wentOutOfView <= moment.time + grayWindow;
    }
    onVisit = false;
    outOfViewSince.reset();
    visitHasMoment = false;
}

void UsageRecorder::SiteState::settleMoments(const std::string& host, const Update& update, UsageHistory& history) {
    if (onVisit) {
        for (GrayMoment& moment : moments) {
            if (moment.left) continue;
            Instant deadline = moment.time + grayWindow;
            if (update.now >= deadline && (!outOfViewSince || *outOfViewSince > deadline)) moment.left = false;
            break;
        }
    }
    std::vector<GrayMoment> kept;
    for (GrayMoment& moment : moments) {
        Instant deadline = moment.time + grayWindow;
        if (!update.observing && update.now <= deadline) continue;
        if (moment.left && update.now >= deadline) {
            bool left = *moment.left;
            history.update(host, moment.day, [left](UsageHistory::Totals& totals) {
                addCount(left ? totals.grayLeft : totals.grayStayed, 1);
            });
            continue;
        }
        kept.push_back(std::move(moment));
    }
    moments = std::move(kept);
}

void UsageRecorder::leaveSitesOffTheList(const Update& update) {
    for (auto entry = sites_.begin(); entry != sites_.end();) {
        SiteState& state = entry->second;
        if (state.stamp != update.stamp) {
            state.advance(SiteSighting{entry->first, false, false, false}, update, history_);
            if (!state.onVisit && state.moments.empty()) {
                entry = sites_.erase(entry);
                continue;
            }
        }
        ++entry;
    }
}

void UsageRecorder::forgetSites() {
    sites_.clear();
    lastUpdate_.reset();
    hasUnsavedChanges_ = true;
}

void UsageRecorder::appStarted(Instant at, std::optional<Instant> bootTime, const Calendar& calendar) {
    LocalDays local(calendar);
    // Days before the oldest kept one are pruned below, so the unwatched time
    // is split from there on: the same days come out, and an instant far in
    // the past (a damaged file) costs at most the kept days, not one calendar
    // step for every day since then.
    Instant oldestKept = UsageHistory::oldestKeptDay(at, local);
    auto addUnobserved = [&](Instant from, Instant to) {
        history_.addUnobserved(std::max(from, oldestKept), to, local);
    };
    if (history_.lastRun) {
        const UsageHistory::Run& run = *history_.lastRun;
        if (run.stop) {
            if (run.stop->reason == UsageHistory::StopReason::userQuit) addUnobserved(run.stop->time, at);
        } else if (bootTime && *bootTime > run.lastAlive) {
            // The machine went down with the program: what follows the boot
            // is left uncounted rather than called unwatched.
            addUnobserved(run.lastAlive, *bootTime);
        } else {
            addUnobserved(run.lastAlive, at);
        }
    }
    if (!history_.began) history_.began = at;
    history_.lastRun = UsageHistory::Run{at, std::nullopt};
    history_.prune(at, local);
    forgetSites();
}

void UsageRecorder::appStopping(Instant at, UsageHistory::StopReason reason, const Calendar& calendar) {
    history_.lastRun = UsageHistory::Run{at, UsageHistory::Stop{at, reason}};
    history_.prune(at, LocalDays(calendar));
    forgetSites();
}

void UsageRecorder::clearHistory(Instant at) {
    history_ = history_.cleared(at);
    forgetSites();
}

}  // namespace ashview
