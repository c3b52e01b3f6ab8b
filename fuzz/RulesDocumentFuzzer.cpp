// Arbitrary bytes given to the rules readers (the current layout and the
// first one) never crash them. What the current reader accepts survives
// writing and reading back unchanged, and validating, snapshotting and
// looking up hosts in any accepted document are safe.
#include "AshviewCore/Foundation/Json.h"
#include "AshviewCore/Rules/Policy.h"
#include "AshviewCore/Rules/RuleError.h"
#include "AshviewCore/Rules/RuleSetV1.h"
#include "AshviewCore/Rules/RulesDocument.h"
#include "AshviewCore/Rules/SiteLookup.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

using namespace ashview;

namespace {

void exercise(const RuleSet& rules) {
    static const Calendar calendar("gregorian", "Europe/Berlin", "en_US");
    try {
        rules.validate();
    } catch (const RuleError&) {
    }
    RuleSet snapshot = rules.savingSnapshot();
    if (snapshot.sites.size() != rules.sites.size()) std::abort();
    SiteLookup lookup(rules.sites);
    for (const SiteRule& rule : rules.sites) {
        (void)lookup.site(rule.host);
        (void)rules.site(rule.host);
        SiteSettings settings = rules.effectiveSettings(rule);
        (void)Policy::ruleIsActive(settings, rules, Instant{785000000}, calendar);
    }
    for (const DayOff& dayOff : rules.daysOff) {
        try {
            dayOff.validate();
        } catch (const RuleError&) {
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string_view bytes(reinterpret_cast<const char*>(data), size);
    (void)Json::probeSchemaVersion(bytes);

    try {
        RuleSetV1 old = RuleSetV1::decode(bytes);
        exercise(old.converted().first);
    } catch (const Json::DecodingError&) {
    }

    RuleSet rules;
    try {
        rules = RulesDocument::decode(bytes);
    } catch (const Json::DecodingError&) {
        return 0;
    }
    std::string written = RulesDocument::encode(rules);
    RuleSet reread = RulesDocument::decode(written);
    if (reread != rules) std::abort();
    if (RulesDocument::encode(reread) != written) std::abort();
    exercise(rules);
    return 0;
}
