#include "AshviewCore/Tracking/VisitTracker.h"

#include "AshviewCore/Rules/AppKey.h"
#include "AshviewCore/Rules/Policy.h"
#include "AshviewCore/Rules/SiteLookup.h"

#include <algorithm>
#include <cmath>
#include <string_view>
#include <utility>

namespace ashview {

namespace {

/// The start of the counting window of `per` at `now`; nothing for the
/// session, whose counts are running totals.
std::optional<Instant> windowStart(CountPeriod per, Instant now, const Calendar& calendar) {
    switch (per) {
    case CountPeriod::hour:
        return now - 3600.0;
    case CountPeriod::day:
        return calendar.startOfDay(now);
    case CountPeriod::session:
        return std::nullopt;
    }
    return std::nullopt;
}

/// Opens and on-screen seconds used within the window of `per`.
struct Used final {
    std::int64_t opens = 0;
    double seconds = 0;
};

Used usedIn(CountPeriod per, const SiteUsage& usage, Instant now, const Calendar& calendar) {
    std::optional<Instant> start = windowStart(per, now, calendar);
    if (!start) return Used{usage.sessionOpens, usage.sessionSeconds};
    return Used{usage.opensAfter(*start), usage.secondsAfter(*start)};
}

}  // namespace

std::int64_t SiteUsage::opensAfter(Instant start) const {
    return static_cast<std::int64_t>(
        std::count_if(opens.begin(), opens.end(), [&](Instant open) { return open > start; }));
}

double SiteUsage::secondsAfter(Instant start) const {
    double seconds = 0;
    for (const DateInterval& interval : onScreen) {
        seconds += std::max(0.0, interval.end - std::max(interval.start, start));
    }
    return seconds;
}

void SiteUsage::addOnScreen(DateInterval interval) {
    if (!onScreen.empty() && onScreen.back().end >= interval.start) {
        onScreen.back().end = std::max(onScreen.back().end, interval.end);
    } else {
        onScreen.push_back(interval);
    }
    sessionSeconds += interval.duration();
}

void VisitTracker::addOnScreenTime(Instant until) {
    std::optional<DateInterval> span;
    if (lastUpdate_) {
        double gap = until - *lastUpdate_;
        if (gap > 0 && gap <= longestCountedGap) span = DateInterval{*lastUpdate_, until};
    }
    Instant cutOff = until - retentionHorizon;
    for (auto& [host, site] : usage_) {
        if (span && site.clockRunning) site.addOnScreen(*span);
        std::erase_if(site.opens, [&](Instant open) { return open < cutOff; });
        std::erase_if(site.onScreen, [&](const DateInterval& interval) { return interval.end < cutOff; });
    }
}

bool VisitTracker::limitPassed(const GrayTrigger& trigger, const SiteUsage& usage, Instant now,
                               const Calendar& calendar) {
    const GrayTrigger::AfterLimit* limit = trigger.limit();
    if (limit == nullptr) return true;
    Used used = usedIn(limit->per, usage, now, calendar);
    // One past the opens limit: with 3 allowed, the fourth open turns gray.
    if (limit->opens && used.opens > *limit->opens) return true;
    if (!limit->minutes) return false;
    return used.seconds >= static_cast<double>(*limit->minutes) * 60.0;
}

VisitTracker::Appearances VisitTracker::update(const RuleSet& rules, const std::vector<BrowserWindow>& windows,
                                               Instant now, const Calendar& calendar, const Requests& requests,
                                               std::optional<Instant> showInColorUntil) {
    addOnScreenTime(now);
    lastUpdate_ = now;

    // Each distinct rule host has one slot, the position of the first rule
    // with it; the pass's tables per site are indexed by it, so a pass
    // allocates nothing per site. The lookup refers to the rules and copies
    // none of them.
    SiteLookup lookup(rules.sites);
    // The counts of each slot's site, where there are any; the others are
    // made when their rule is reached.
    std::vector<SiteUsage*> usageOf(rules.sites.size(), nullptr);
    for (auto entry = usage_.begin(); entry != usage_.end();) {
        if (auto slot = lookup.firstIndexOfHost(entry->first)) {
            usageOf[*slot] = &entry->second;
            ++entry;
        } else {
            entry = usage_.erase(entry);
        }
    }

    bool hadStartingPoint = hasStartingPoint_;
    hasStartingPoint_ = true;

    struct Site final {
        bool hasWindow = false;
        bool anyOnScreen = false;
        std::int64_t newOpens = 0;
        bool active = false;
        bool gray = false;
    };
    std::vector<Site> sites(rules.sites.size());

    // The slot of each window's rule, or none; found in the first sweep.
    constexpr std::size_t noRule = static_cast<std::size_t>(-1);
    std::vector<std::size_t> slotOf(windows.size(), noRule);
    auto ruleOf = [&](std::size_t index) -> const SiteRule* {
        return slotOf[index] == noRule ? nullptr : &rules.sites[slotOf[index]];
    };

    // First sweep: the rule of each window, which windows are new opens, and
    // which sites have windows. Remembered windows keep their table entries,
    // so a steady pass allocates nothing for them.
    std::unordered_map<WindowKey, std::string> nextSiteByWindow;
    nextSiteByWindow.reserve(windows.size());
    for (std::size_t index = 0; index < windows.size(); ++index) {
        const BrowserWindow& window = windows[index];
        if (!window.host) continue;
        std::optional<std::size_t> slot = lookup.indexOf(*window.host);
        if (!slot) continue;
        slotOf[index] = *slot;
        const SiteRule* rule = &rules.sites[*slot];
        Site& site = sites[*slot];
        site.hasWindow = true;
        site.anyOnScreen = site.anyOnScreen || window.isOnScreen;
        auto known = siteByWindow_.extract(window.id);
        bool countedHere = !known.empty() && known.mapped() == rule->host;
        bool newOpen = hadStartingPoint && !countedHere;
        if (!newOpen || window.isOnScreen) {
            if (known.empty()) {
                nextSiteByWindow.emplace(window.id, rule->host);
            } else {
                if (!countedHere) known.mapped() = rule->host;
                nextSiteByWindow.insert(std::move(known));
            }
        } else if (!known.empty()) {
            // Turned to this site out of sight: the open waits until the
            // window is seen, and it keeps its old site until then.
            nextSiteByWindow.insert(std::move(known));
        }
        if (newOpen && window.isOnScreen) site.newOpens += 1;
    }
    siteByWindow_ = std::move(nextSiteByWindow);

    // Second sweep: advance every listed site.
    SiteSettings translated;
    for (std::size_t ruleIndex = 0; ruleIndex < rules.sites.size(); ++ruleIndex) {
        const SiteRule& rule = rules.sites[ruleIndex];
        std::size_t slot = lookup.firstIndexOfHostOf(ruleIndex);
        Site& seen = sites[slot];
        const SiteSettings& settings = rules.effectiveSettings(rule, translated);
        bool active = Policy::ruleIsActive(settings, rules, now, calendar);
        if (usageOf[slot] == nullptr) usageOf[slot] = &usage_[rule.host];
        SiteUsage& site = *usageOf[slot];
        seen.active = active;

        if (!active) {
            // Outside the rule's time nothing is counted: the opens of this
            // pass are lost, and the latch waits for the next active time.
            site.phase = SiteUsage::Phase::color();
            site.wasActive = false;
            site.clockRunning = false;
            continue;
        }

        bool untilQuit = settings.stayGray.kind() == StayGray::Kind::untilChromeQuits;
        if (!untilQuit) site.latched = false;

        std::int64_t opened = seen.newOpens;
        // A site already on screen when its rule comes into force counts as
        // opened then, except on a first pass.
        if (opened == 0 && !site.wasActive && seen.anyOnScreen && hadStartingPoint) opened = 1;
        if (opened > 0) {
            site.opens.insert(site.opens.end(), static_cast<std::size_t>(opened), now);
            site.sessionOpens += opened;
        }
        site.wasActive = true;
        site.clockRunning = seen.anyOnScreen;

        switch (site.phase.kind()) {
        case SiteUsage::Phase::Kind::color:
            if (seen.hasWindow && (site.latched || limitPassed(settings.trigger, site, now, calendar))) {
                site.phase = SiteUsage::Phase::gray(now);
                site.latched = untilQuit;
            }
            break;
        case SiteUsage::Phase::Kind::gray:
            if (const StayGray::ForMinutes* timed = settings.stayGray.timed()) {
                double elapsed = now - site.phase.grayPhase()->since;
                if (elapsed >= static_cast<double>(timed->minutes) * 60.0) {
                    site.phase =
                        seen.hasWindow ? SiteUsage::Phase::colorForRestOfVisit() : SiteUsage::Phase::color();
                }
            } else if (!seen.hasWindow) {
                site.phase = SiteUsage::Phase::color();
            }
            break;
        case SiteUsage::Phase::Kind::colorForRestOfVisit:
            if (!seen.hasWindow) site.phase = SiteUsage::Phase::color();
            break;
        }
        if (site.phase.kind() == SiteUsage::Phase::Kind::gray) seen.gray = true;
    }

    bool showInColor = showInColorUntil && now < *showInColorUntil;
    auto requested = [&](const WindowKey& key) {
        if (requests.empty()) return false;
        auto found = requests.find(key);
        return found != requests.end() && found->second == WindowRequest::grayThisWindow;
    };

    // Third sweep: each window's appearance, by the first reason that holds.
    // What the fourth sweep needs of the on-screen windows is gathered on the way.
    struct Sighted final {
        bool visible = false;
        bool allGray = true;
        bool anyRequested = false;
    };
    std::vector<Sighted> sighted(sites.size());
    Appearances result;
    result.reserve(windows.size());
    for (std::size_t index = 0; index < windows.size(); ++index) {
        const BrowserWindow& window = windows[index];
        const SiteRule* rule = ruleOf(index);
        bool wished = requested(window.id);
        Appearance appearance;
        if (wished) {
            appearance = Appearance::gray;
        } else if (rule == nullptr) {
            appearance = Appearance::notListed;
        } else if (showInColor) {
            appearance = Appearance::color;
        } else if (rule->pin == SitePin::grayThisSite) {
            appearance = Appearance::gray;
        } else if (rule->pin == SitePin::showInColor) {
            appearance = Appearance::color;
        } else {
            const Site& site = sites[slotOf[index]];
            appearance = site.active && site.gray ? Appearance::gray : Appearance::color;
        }
        result.insert_or_assign(window.id, appearance);
        if (rule != nullptr && window.isOnScreen) {
            Sighted& seen = sighted[slotOf[index]];
            seen.visible = true;
            seen.allGray = seen.allGray && appearance == Appearance::gray;
            seen.anyRequested = seen.anyRequested || wished;
        }
    }

    // Fourth sweep: what was seen of each rule. The last pass's entries are
    // overwritten in place, so their host texts keep their storage.
    sightings_.resize(rules.sites.size());
    for (std::size_t ruleIndex = 0; ruleIndex < rules.sites.size(); ++ruleIndex) {
        const SiteRule& rule = rules.sites[ruleIndex];
        std::size_t slot = lookup.firstIndexOfHostOf(ruleIndex);
        const Site& site = sites[slot];
        const Sighted& seen = sighted[slot];
        SiteSighting& sighting = sightings_[ruleIndex];
        sighting.host = rule.host;
        sighting.visible = seen.visible;
        sighting.gray = seen.visible && seen.allGray;
        sighting.automaticGray = sighting.gray && rule.pin == SitePin::followSettings && site.active && site.gray &&
                                 !showInColor && !seen.anyRequested;
    }
    return result;
}

void VisitTracker::browserQuit() {
    std::erase_if(siteByWindow_, [](const auto& entry) { return !AppKey::isApp(entry.second); });
    for (auto& [host, site] : usage_) {
        if (AppKey::isApp(host)) continue;
        site.sessionOpens = 0;
        site.sessionSeconds = 0.0;
        site.latched = false;
        site.phase = SiteUsage::Phase::color();
        site.wasActive = false;
        site.clockRunning = false;
    }
    for (SiteSighting& sighting : sightings_) {
        if (AppKey::isApp(sighting.host)) continue;
        sighting.visible = false;
        sighting.gray = false;
        sighting.automaticGray = false;
    }
}

SiteStatus VisitTracker::status(const SiteRule& of, const RuleSet& rules, Instant now,
                                const Calendar& calendar) const {
    SiteSettings settings = rules.effectiveSettings(of);
    static const SiteUsage nothingCounted;
    auto found = usage_.find(of.host);
    const SiteUsage& site = found == usage_.end() ? nothingCounted : found->second;

    SiteStatus status;
    if (const GrayTrigger::AfterLimit* limit = settings.trigger.limit()) {
        Used used = usedIn(limit->per, site, now, calendar);
        status.opensUsed = used.opens;
        status.opensLimit = limit->opens;
        status.minutesUsed = static_cast<std::int64_t>(std::trunc(used.seconds / 60.0));
        status.minutesLimit = limit->minutes;
        status.period = limit->per;
    }

    std::optional<Weekday> today = Weekday::from(now, calendar);
    if (of.pin == SitePin::showInColor) {
        status.state = SiteStatus::State::keptInColor;
    } else if (of.pin == SitePin::grayThisSite) {
        status.state = SiteStatus::State::keptGray;
    } else if (rules.isSharedDayOff(now, calendar)) {
        status.state = SiteStatus::State::dayOff;
    } else if (!today || !settings.days.contains(*today)) {
        status.state = SiteStatus::State::notToday;
    } else if (settings.hours && !settings.hours->start.contains(now, calendar, settings.hours->end)) {
        status.state = SiteStatus::State::outsideHours;
    } else if (site.phase.kind() == SiteUsage::Phase::Kind::gray) {
        status.state = SiteStatus::State::gray;
    } else {
        status.state = SiteStatus::State::color;
    }
    return status;
}

TrackerSnapshot VisitTracker::snapshot(Instant now, std::optional<Instant> sessionStart) const {
    Instant cutOff = now - retentionHorizon;
    TrackerSnapshot saved;
    saved.schemaVersion = TrackerSnapshot::currentSchemaVersion;
    saved.savedAt = now;
    saved.sessionStart = sessionStart;
    for (const auto& [host, site] : usage_) {
        TrackerSnapshot::SiteCounts counts;
        for (Instant open : site.opens) {
            if (open >= cutOff) counts.opens.push_back(open);
        }
        for (const DateInterval& interval : site.onScreen) {
            if (interval.end >= cutOff) counts.onScreen.push_back(DateInterval{std::max(interval.start, cutOff), interval.end});
        }
        counts.sessionOpens = site.sessionOpens;
        counts.sessionSeconds = site.sessionSeconds;
        saved.sites.emplace(host, std::move(counts));
    }
    return saved;
}

void VisitTracker::restore(const TrackerSnapshot& saved, Instant now, bool sessionContinues) {
    *this = VisitTracker();
    double age = now - saved.savedAt;
    bool datedUsable = age >= 0 && age <= retentionHorizon;
    Instant cutOff = now - retentionHorizon;
    for (const auto& [host, counts] : saved.sites) {
        SiteUsage site;
        if (datedUsable) {
            for (Instant open : counts.opens) {
                if (open >= cutOff && open <= now) site.opens.push_back(open);
            }
            for (const DateInterval& interval : counts.onScreen) {
                if (interval.duration() >= 0 && interval.start <= now && interval.end >= cutOff) {
                    site.onScreen.push_back(DateInterval{interval.start, std::min(interval.end, now)});
                }
            }
        }
        if (sessionContinues) {
            site.sessionOpens = counts.sessionOpens;
            site.sessionSeconds = counts.sessionSeconds;
        }
        usage_.emplace(host, std::move(site));
    }
}

}  // namespace ashview
