#include "Platform/AppleEvents.h"

#include <cmath>
#include <limits>

namespace ashview {

std::int32_t ScriptValue::int32Value() const {
    constexpr auto low = std::numeric_limits<std::int32_t>::min();
    constexpr auto high = std::numeric_limits<std::int32_t>::max();
    if (kind == Kind::integer) return integer >= low && integer <= high ? static_cast<std::int32_t>(integer) : 0;
    if (kind == Kind::real && std::isfinite(real)) {
        double whole = std::trunc(real);
        if (whole >= low && whole <= high) return static_cast<std::int32_t>(whole);
    }
    return 0;
}

std::optional<std::string> ScriptValue::stringValue() const {
    if (kind == Kind::text) return text;
    return std::nullopt;
}

}  // namespace ashview
