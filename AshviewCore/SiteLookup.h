// A table from rule host to rule, built once per read pass, so that finding
// the rule of a window costs a few hash probes.
#pragma once

#include "AshviewCore/SiteRule.h"

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace ashview {

class SiteLookup final {
public:
    /// The table of `sites`. When two rules share a host, the first stays.
    explicit SiteLookup(const std::vector<SiteRule>& sites);

    /// The rule for `host`: an app key is looked up whole; any other text is
    /// normalized, and of the rules for it and the domains above it the one
    /// with the longest host wins. Nothing when no rule covers it.
    std::optional<SiteRule> site(std::string_view matchingHost) const;

    /// The same as `site`, without copying the rule. The pointer is valid as
    /// long as the table.
    const SiteRule* find(std::string_view matchingHost) const;

private:
    std::unordered_map<std::string, SiteRule> byHost_;
};

}  // namespace ashview
