// A tracker driven through made-up read passes in Berlin, for the tracker's
// suites: rules are listed directly, windows are made up, time is given in
// seconds after `start`.
#pragma once

#include "AshviewCore/Tracking/VisitTracker.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace ashview {

inline BrowserWindow shown(std::int64_t window, std::optional<std::string> host) {
    return BrowserWindow{WindowKey{"com.google.Chrome", window}, std::move(host), true};
}
inline BrowserWindow behind(std::int64_t window, std::optional<std::string> host) {
    return BrowserWindow{WindowKey{"com.google.Chrome", window}, std::move(host), false};
}
inline WindowKey key(std::int64_t window) { return WindowKey{"com.google.Chrome", window}; }

inline SiteSettings settings(GrayTrigger trigger, StayGray stayGray = StayGray::untilLeave(),
                             std::optional<ActiveHours> hours = std::nullopt, WeekdaySet days = Weekday::all()) {
    return SiteSettings{hours, std::move(days), trigger, stayGray};
}
inline SiteSettings opensPerHour(std::int64_t opens, StayGray stayGray = StayGray::untilLeave()) {
    return settings(GrayTrigger::afterLimit(std::nullopt, opens, CountPeriod::hour), stayGray);
}

class Tracking : public ::testing::Test {
protected:
    Calendar calendar{"gregorian", "Europe/Berlin", "en_GB"};
    /// Tuesday, 12 May 2026, 10:00 in Berlin.
    Instant start = *calendar.date(2026, 5, 12, 10);
    RuleSet rules = RuleSet::fresh();
    VisitTracker tracker;
    VisitTracker::Requests requests;
    std::optional<Instant> showInColorUntil;

    SiteRule& list(const std::string& host, SiteSettings own, SitePin pin = SitePin::followSettings) {
        rules.sites.push_back(SiteRule{Uuid::random(), host, std::nullopt, false, std::move(own), pin});
        return rules.sites.back();
    }
    VisitTracker::Appearances pass(double t, const std::vector<BrowserWindow>& windows) {
        return tracker.update(rules, windows, start + t, calendar, requests, showInColorUntil);
    }
    /// The appearance of window 1 after a pass at `t` with `windows`.
    Appearance first(double t, const std::vector<BrowserWindow>& windows) { return pass(t, windows).at(windows[0].id); }
    const SiteUsage& usage(const std::string& host) const { return tracker.usage().at(host); }
    std::int64_t opens(const std::string& host) const { return static_cast<std::int64_t>(usage(host).opens.size()); }
    SiteSighting sighting(const std::string& host) const {
        for (const SiteSighting& seen : tracker.sightings()) {
            if (seen.host == host) return seen;
        }
        ADD_FAILURE() << "no sighting of " << host;
        return {};
    }
};

}  // namespace ashview
