// Where one rule stands at a moment, for display: why its site looks as it
// does and how much of its limit is used. Made by `VisitTracker::status`; the
// menu and the settings window turn it into words.
#pragma once

#include "AshviewCore/Rules/GrayTrigger.h"

#include <cstdint>
#include <optional>
#include <string>

namespace ashview {

struct SiteStatus final {
    /// Why the site looks as it does, in order of precedence.
    enum class State {
        /// The user pinned the site gray.
        keptGray,
        /// The user pinned the site in color.
        keptInColor,
        /// Today is one of the days off shared by all rules.
        dayOff,
        /// The rule is not active on today's weekday.
        notToday,
        /// The rule has hours today and now lies outside them.
        outsideHours,
        /// The rule turned the site gray.
        gray,
        /// The site is in color under its rule.
        color,
    };

    State state = State::color;
    /// Opens counted in the period; 0 when the site turns gray right away.
    std::int64_t opensUsed = 0;
    /// The opens that stay in color; absent without an opens limit.
    std::optional<std::int64_t> opensLimit;
    /// Whole minutes on screen in the period, truncated; 0 when the site
    /// turns gray right away.
    std::int64_t minutesUsed = 0;
    /// The minutes allowed; absent without a minutes limit.
    std::optional<std::int64_t> minutesLimit;
    /// The period the figures cover; absent when the site turns gray right away.
    std::optional<CountPeriod> period;

    /// The state in a few English words, as the menu shows it: "Gray now",
    /// "Off today", "In color: 3 of 10 minutes and 1 of 2 opens this hour".
    /// The figures never show more used than the limit allows.
    std::string text() const;

    friend bool operator==(const SiteStatus&, const SiteStatus&) = default;
};

}  // namespace ashview
