// When a listed site or app turns gray, and the window a limit is counted in.
//
// Cases with payload are a std::variant of small structs wrapped in a value
// type; the static functions build each case, and the accessors tell which
// case is held without a visit.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <variant>

namespace ashview {

/// The window in which a limit is counted: the last 3,600 seconds, rolling;
/// the current local day; or the current browsing session, which ends when
/// every browser has quit (no meaning for an app).
enum class CountPeriod { hour, day, session };

/// The period as the end of a rule's sentence: "in an hour", "in a day",
/// "in one browsing session".
std::string_view phrase(CountPeriod period);

struct GrayTrigger final {
    /// Gray as soon as the site is open.
    struct RightAway final {
        friend bool operator==(const RightAway&, const RightAway&) = default;
    };
    /// Gray once the on-screen minutes or the opens within `per` pass their
    /// limits. A valid trigger holds at least one limit.
    struct AfterLimit final {
        std::optional<std::int64_t> minutes;
        std::optional<std::int64_t> opens;
        CountPeriod per = CountPeriod::hour;
        friend bool operator==(const AfterLimit&, const AfterLimit&) = default;
    };
    enum class Kind { rightAway, afterLimit };

    std::variant<RightAway, AfterLimit> value;

    static GrayTrigger rightAway() { return GrayTrigger{RightAway{}}; }
    static GrayTrigger afterLimit(std::optional<std::int64_t> minutes, std::optional<std::int64_t> opens,
                                  CountPeriod per) {
        return GrayTrigger{AfterLimit{minutes, opens, per}};
    }

    Kind kind() const { return std::holds_alternative<RightAway>(value) ? Kind::rightAway : Kind::afterLimit; }
    bool isRightAway() const { return kind() == Kind::rightAway; }
    /// The limits when this is `afterLimit`, else null.
    const AfterLimit* limit() const { return std::get_if<AfterLimit>(&value); }
    AfterLimit* limit() { return std::get_if<AfterLimit>(&value); }

    friend bool operator==(const GrayTrigger&, const GrayTrigger&) = default;
};

}  // namespace ashview
