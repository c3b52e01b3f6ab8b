// One read pass of the tracker at three sizes: 10 windows and 10 rules, 100
// and 100, 1,000 and 1,000. Window hosts lie several labels below their
// rule's host, so each lookup walks up the labels. Time is per pass; a pass
// must grow linearly with the size.
#include "AshviewCore/Tracking/VisitTracker.h"

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

namespace ashview {
namespace {

const Calendar& calendar() {
    static const Calendar berlin("gregorian", "Europe/Berlin", "en_US");
    return berlin;
}

RuleSet rulesOf(std::int64_t count) {
    RuleSet rules = RuleSet::fresh();
    for (std::int64_t index = 0; index < count; ++index) {
        SiteSettings settings = SiteSettings::forNewSites();
        if (index % 3 == 1) settings.trigger = GrayTrigger::afterLimit(30, 5, CountPeriod::day);
        if (index % 3 == 2) settings.hours = ActiveHours{{8, 0}, {20, 0}};
        if (index % 4 == 3) settings.stayGray = StayGray::forMinutes(5);
        rules.sites.push_back(SiteRule{Uuid::random(), "site" + std::to_string(index) + ".example.com", std::nullopt,
                                       index % 2 == 0, settings, SitePin::followSettings});
    }
    return rules;
}

std::vector<BrowserWindow> windowsOf(std::int64_t count) {
    std::vector<BrowserWindow> windows;
    for (std::int64_t index = 0; index < count; ++index) {
        std::string host = "static.cdn.eu.site" + std::to_string(index) + ".example.com";
        if (index % 10 == 9) host = "unlisted" + std::to_string(index) + ".example.org";
        windows.push_back(BrowserWindow{WindowKey{"com.google.Chrome", index}, host, index % 4 != 0});
    }
    return windows;
}

void BM_UpdatePass(benchmark::State& state) {
    std::int64_t size = state.range(0);
    RuleSet rules = rulesOf(size);
    std::vector<BrowserWindow> windows = windowsOf(size);
    VisitTracker tracker;
    Instant now = *calendar().date(2026, 11, 23, 15);
    VisitTracker::Requests requests{{WindowKey{"com.google.Chrome", 1}, WindowRequest::grayThisWindow}};
    for (int warmUp = 0; warmUp < 3; ++warmUp) {
        now = now + 5;
        tracker.update(rules, windows, now, calendar(), requests, std::nullopt);
    }
    for (auto _ : state) {
        now = now + 5;
        benchmark::DoNotOptimize(tracker.update(rules, windows, now, calendar(), requests, std::nullopt));
    }
    state.SetComplexityN(size);
    state.SetLabel(std::to_string(size) + " windows, " + std::to_string(size) + " rules");
}
BENCHMARK(BM_UpdatePass)->Arg(10)->Arg(100)->Arg(1000)->Unit(benchmark::kMicrosecond)->Complexity(benchmark::oN);

}  // namespace
}  // namespace ashview
