// The story `drabwise` plays when it is given no scenario file.
#pragma once

#include <string_view>

namespace ashview {

/// A short day: browsing, a limit reached, a window going gray and following
/// its moves, a pause while the displays sleep, a restart that restores the
/// counters, and the statistic.
extern const std::string_view builtInScenario;

}  // namespace ashview
