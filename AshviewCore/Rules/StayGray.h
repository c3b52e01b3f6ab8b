// How long a site or app stays gray once its trigger has fired.
//
// Same style as GrayTrigger: a std::variant of small structs in a value type.
#pragma once

#include <cstdint>
#include <variant>

namespace ashview {

struct StayGray final {
    /// Gray while a window of the site is open; color again when none is left.
    struct UntilLeave final {
        friend bool operator==(const UntilLeave&, const UntilLeave&) = default;
    };
    /// Gray for `minutes` of wall-clock time, then color for the rest of that
    /// visit. A valid value is at least 1.
    struct ForMinutes final {
        std::int64_t minutes = 0;
        friend bool operator==(const ForMinutes&, const ForMinutes&) = default;
    };
    /// Gray, and gray again on every return, until every browser has quit.
    /// The name covers all browsers; it has no meaning for an app.
    struct UntilChromeQuits final {
        friend bool operator==(const UntilChromeQuits&, const UntilChromeQuits&) = default;
    };
    enum class Kind { untilLeave, forMinutes, untilChromeQuits };

    std::variant<UntilLeave, ForMinutes, UntilChromeQuits> value;

    static StayGray untilLeave() { return StayGray{UntilLeave{}}; }
    static StayGray forMinutes(std::int64_t minutes) { return StayGray{ForMinutes{minutes}}; }
    static StayGray untilChromeQuits() { return StayGray{UntilChromeQuits{}}; }

    Kind kind() const { return static_cast<Kind>(value.index()); }
    /// The minutes when this is `forMinutes`, else null.
    const ForMinutes* timed() const { return std::get_if<ForMinutes>(&value); }

    friend bool operator==(const StayGray&, const StayGray&) = default;
};

}  // namespace ashview
