// The user's override of one rule, held apart from its settings.
#pragma once

namespace ashview {

/// `grayThisSite` is the menu's "Keep gray", `showInColor` its "Keep in color".
enum class SitePin { followSettings, grayThisSite, showInColor };

}  // namespace ashview
