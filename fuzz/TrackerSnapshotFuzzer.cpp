// Arbitrary bytes given to the snapshot reader never crash it; what it
// accepts survives writing and reading back unchanged, and restoring it into
// a tracker, running a pass and taking a new snapshot never crashes either.
#include "AshviewCore/Foundation/Json.h"
#include "AshviewCore/Tracking/TrackerSnapshot.h"
#include "AshviewCore/Tracking/VisitTracker.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

using namespace ashview;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string_view bytes(reinterpret_cast<const char*>(data), size);
    (void)Json::probeSchemaVersion(bytes);
    TrackerSnapshot snapshot;
    try {
        snapshot = TrackerSnapshot::fromJson(Json::parse(bytes));
    } catch (const Json::DecodingError&) {
        return 0;
    }
    std::string written;
    try {
        written = Json::encode(snapshot.toJson());
    } catch (const Json::DecodingError&) {
        return 0;  // a host that is not UTF-8 cannot be written
    }
    if (TrackerSnapshot::fromJson(Json::parse(written)) != snapshot) std::abort();

    static const Calendar calendar("gregorian", "Europe/Berlin", "en_US");
    RuleSet rules = RuleSet::fresh();
    std::vector<BrowserWindow> windows;
    std::int64_t number = 0;
    for (const auto& [host, counts] : snapshot.sites) {
        rules.sites.push_back(SiteRule{Uuid::random(), host, std::nullopt, true, SiteSettings::forNewSites(),
                                       SitePin::followSettings});
        windows.push_back(BrowserWindow{WindowKey{"com.google.Chrome", number++}, host, true});
        if (rules.sites.size() >= 8) break;
    }
    for (double age : {0.0, 60.0, 90000.0}) {
        VisitTracker tracker;
        Instant now = snapshot.savedAt + age;
        tracker.restore(snapshot, now, true);
        tracker.update(rules, windows, now, calendar, {}, std::nullopt);
        tracker.update(rules, windows, now + 5, calendar, {}, std::nullopt);
        for (const SiteRule& rule : rules.sites) (void)tracker.status(rule, rules, now + 5, calendar);
        (void)tracker.snapshot(now + 5, snapshot.sessionStart);
    }
    return 0;
}
