// A table from rule host to rule, built once per read pass, so that finding
// the rule of a window costs a few hash probes.
#pragma once

#include "AshviewCore/Rules/SiteRule.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ashview {

class SiteLookup final {
public:
    /// The table of `sites`. When two rules share a host, the first stays.
    /// The table refers to `sites` and copies no rule: `sites` must outlive
    /// it and stay unchanged while it is used.
    explicit SiteLookup(const std::vector<SiteRule>& sites);

    /// The rule for `host`: an app key is looked up whole; any other text is
    /// normalized, and of the rules for it and the domains above it the one
    /// with the longest host wins. Nothing when no rule covers it.
    std::optional<SiteRule> site(std::string_view matchingHost) const;

    /// The same as `site`, without copying the rule: a pointer into `sites`,
    /// or null.
    const SiteRule* find(std::string_view matchingHost) const;

    /// The position in `sites` of the rule that `find` gives, or nothing.
    std::optional<std::size_t> indexOf(std::string_view matchingHost) const;

    /// The position in `sites` of the first rule whose host is exactly
    /// `host`, with no normalizing; nothing when no rule has that host.
    std::optional<std::size_t> firstIndexOfHost(std::string_view host) const;

    /// The position of the first rule whose host is that of the rule at
    /// `ruleIndex`: `ruleIndex` itself unless an earlier rule has its host.
    /// Requires `ruleIndex` below the number of rules.
    std::size_t firstIndexOfHostOf(std::size_t ruleIndex) const { return firstOfRule_[ruleIndex]; }

private:
    /// One distinct host: where its text lies in `texts_`, and its first rule.
    struct Entry final {
        std::uint32_t offset;
        std::uint32_t length;
        std::uint32_t ruleIndex;
    };
    std::string_view textOf(const Entry& entry) const;
    std::size_t placeOf(std::uint64_t hash) const;
    std::size_t nextPlace(std::size_t position) const;

    const std::vector<SiteRule>* sites_;
    /// Open addressing with linear probing over three places per rule, so
    /// that at most a third are in use and a probe costs the same in a short
    /// list and in a long one. Each place has a 16-bit tag from the host's
    /// hash, 0 for a free place, so that a probe mostly reads a small array
    /// that stays in cache, and the position of its entry.
    std::vector<std::uint16_t> tags_;
    std::vector<std::uint32_t> entryAt_;
    std::vector<Entry> entries_;
    /// The distinct hosts' texts side by side.
    std::string texts_;
    std::vector<std::size_t> firstOfRule_;
};

}  // namespace ashview
