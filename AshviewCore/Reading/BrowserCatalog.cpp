#include "AshviewCore/Reading/BrowserCatalog.h"

namespace ashview::BrowserCatalog {

const std::vector<Browser>& browsers() {
    static const std::vector<Browser> all{
        {"com.google.Chrome", "Google Chrome", Dialect::chromium, true},
        {"com.google.Chrome.beta", "Google Chrome Beta", Dialect::chromium, false},
        {"com.google.Chrome.dev", "Google Chrome Dev", Dialect::chromium, false},
        {"com.google.Chrome.canary", "Google Chrome Canary", Dialect::chromium, false},
        {"org.chromium.Chromium", "Chromium", Dialect::chromium, false},
        {"com.microsoft.edgemac", "Microsoft Edge", Dialect::chromium, false},
        {"com.brave.Browser", "Brave", Dialect::chromium, false},
        {"com.vivaldi.Vivaldi", "Vivaldi", Dialect::chromium, false},
        {"com.apple.Safari", "Safari", Dialect::safari, true},
        {"com.apple.SafariTechnologyPreview", "Safari Technology Preview", Dialect::safari, false},
    };
    return all;
}

std::optional<Browser> browser(std::string_view bundleID) {
    for (const Browser& entry : browsers())
        if (entry.bundleID == bundleID) return entry;
    return std::nullopt;
}

std::optional<std::size_t> countingInstance(const std::vector<InstanceFacts>& instances) {
    std::optional<std::size_t> best;
    Instant bestDate = Instant::distantFuture();
    for (std::size_t i = 0; i < instances.size(); ++i) {
        const InstanceFacts& facts = instances[i];
        if (facts.isTerminated) continue;
        Instant date = facts.launchDate.value_or(Instant::distantFuture());
        if (!best || date < bestDate) {
            best = i;
            bestDate = date;
        }
    }
    return best;
}

}  // namespace ashview::BrowserCatalog
