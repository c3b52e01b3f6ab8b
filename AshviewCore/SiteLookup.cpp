#include "AshviewCore/SiteLookup.h"

#include "AshviewCore/AppKey.h"
#include "AshviewCore/Host.h"

namespace ashview {

SiteLookup::SiteLookup(const std::vector<SiteRule>& sites) {
    byHost_.reserve(sites.size());
    for (const SiteRule& rule : sites) byHost_.emplace(rule.host, rule);
}

const SiteRule* SiteLookup::find(std::string_view matchingHost) const {
    auto lookUp = [this](const std::string& key) -> const SiteRule* {
        auto found = byHost_.find(key);
        return found == byHost_.end() ? nullptr : &found->second;
    };
    if (AppKey::isApp(matchingHost)) return lookUp(std::string(matchingHost));
    auto normalized = Host::normalize(matchingHost);
    if (!normalized) return nullptr;
    std::string candidate = std::move(*normalized);
    while (true) {
        if (const SiteRule* rule = lookUp(candidate)) return rule;
        auto dot = candidate.find('.');
        if (dot == std::string::npos) return nullptr;
        candidate.erase(0, dot + 1);
    }
}

std::optional<SiteRule> SiteLookup::site(std::string_view matchingHost) const {
    if (const SiteRule* rule = find(matchingHost)) return *rule;
    return std::nullopt;
}

}  // namespace ashview
