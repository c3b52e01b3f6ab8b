// The first layout of the rules file, kept only to be read and carried
// forward; it is never written.
//
// An old rule had one `when` choice plus an optional number of opens an hour
// that stay in color. `converted()` maps that onto the trigger and gray time
// of today's rules; where something cannot be carried over it says so in a
// note, in words meant for the user.
#pragma once

#include "AshviewCore/Rules/ClockTime.h"
#include "AshviewCore/Rules/DayOff.h"
#include "AshviewCore/Rules/RuleSet.h"
#include "AshviewCore/Rules/SitePin.h"
#include "AshviewCore/Foundation/Uuid.h"
#include "AshviewCore/Rules/Weekday.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace ashview {

struct RuleSetV1 final {
    struct When final {
        enum class Kind { wheneverOpen, duringHours, grayForMinutes, colorThenGray, untilBrowserQuits };
        Kind kind = Kind::wheneverOpen;
        /// For `duringHours` only.
        ClockTime start;
        ClockTime end;
        /// For `grayForMinutes` and `colorThenGray` only.
        std::int64_t minutes = 0;
        friend bool operator==(const When&, const When&) = default;
    };
    struct Settings final {
        WeekdaySet days;
        std::optional<std::int64_t> opensInColorPerHour;
        SitePin pin = SitePin::followSettings;
        When when;
        friend bool operator==(const Settings&, const Settings&) = default;
    };
    struct Site final {
        Uuid id;
        std::string host;
        Settings settings;
        bool usesNewSiteDefaults = true;
        friend bool operator==(const Site&, const Site&) = default;
    };

    Settings newSiteDefaults;
    std::vector<Site> sites;
    std::vector<DayOff> daysOff;

    /// The old document in `bytes`; its `schemaVersion` is not looked at.
    /// Throws `Json::DecodingError` like the current document's reader.
    static RuleSetV1 decode(std::string_view bytes);

    /// The same rules in today's form (version 3, ids, hosts, pins and days
    /// off kept), and the notes on what could not be carried over, in order.
    /// The result is not validated.
    std::pair<RuleSet, std::vector<std::string>> converted() const;

    friend bool operator==(const RuleSetV1&, const RuleSetV1&) = default;
};

}  // namespace ashview
