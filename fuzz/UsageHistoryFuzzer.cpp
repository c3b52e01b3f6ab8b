// Arbitrary bytes given to the usage history reader never crash it, and what
// it accepts survives writing and reading back unchanged; the summary of any
// accepted history can be made, and a run can start on it in bounded time,
// whatever instants its run record holds.
#include "AshviewCore/Foundation/Json.h"
#include "AshviewCore/Usage/UsageHistory.h"
#include "AshviewCore/Usage/UsageRecorder.h"
#include "AshviewCore/Usage/UsageSummary.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

using namespace ashview;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string_view bytes(reinterpret_cast<const char*>(data), size);
    (void)Json::probeSchemaVersion(bytes);
    UsageHistory history;
    try {
        history = UsageHistory::fromJson(Json::parse(bytes));
    } catch (const Json::DecodingError&) {
        return 0;
    }
    // Writing drops all-zero hosts; from then on the form is stable.
    std::string written = Json::encode(history.toJson());
    UsageHistory reread = UsageHistory::fromJson(Json::parse(written));
    if (Json::encode(reread.toJson()) != written) std::abort();
    if (UsageHistory::fromJson(Json::parse(Json::encode(reread.toJson()))) != reread) std::abort();

    static const Calendar calendar("gregorian", "Europe/Berlin", "en_US");
    std::vector<std::string> hosts;
    for (const auto& [day, figures] : history.days) {
        for (const auto& site : figures.sites) hosts.push_back(site.first);
        if (hosts.size() > 8) break;
    }
    UsageSummary summary = UsageSummary::make(history, hosts, Instant{785000000}, calendar);
    (void)summary.menuLine();
    for (const auto& row : summary.sites) (void)row.change();

    UsageRecorder recorder(history);
    recorder.appStarted(Instant{785000000}, std::nullopt, calendar);
    if (recorder.history().days.size() > history.days.size() + UsageHistory::keptDays) std::abort();
    return 0;
}
