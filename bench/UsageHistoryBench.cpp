// Load, summary and save of the largest history the program keeps: 400 days
// with 50 listed sites, every figure filled in; and the start of a run after
// a run record that lies thousands of years back, which costs no more than
// the days that are kept.
#include "AshviewCore/Usage/LocalDays.h"
#include "AshviewCore/Usage/UsageRecorder.h"
#include "AshviewCore/Usage/UsageStore.h"
#include "AshviewCore/Usage/UsageSummary.h"

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

namespace ashview {
namespace {

namespace fs = std::filesystem;

const Calendar& calendar() {
    static const Calendar berlin("gregorian", "Europe/Berlin", "en_US");
    return berlin;
}

Instant now() { return *calendar().date(2026, 11, 23, 15); }

std::vector<std::string> hosts() {
    std::vector<std::string> names;
    for (int index = 0; index < 50; ++index) names.push_back("site" + std::to_string(index) + ".example.com");
    return names;
}

UsageHistory fullHistory() {
    LocalDays local(calendar());
    UsageHistory history;
    history.began = local.start(-UsageHistory::keptDays, now());
    history.lastRun = UsageHistory::Run{now(), std::nullopt};
    std::vector<std::string> names = hosts();
    for (long daysAgo = 0; daysAgo < UsageHistory::keptDays; ++daysAgo) {
        std::string day = local.key(local.start(-daysAgo, now()));
        history.days[day].unobservedSeconds = 61.25 + static_cast<double>(daysAgo);
        for (std::size_t index = 0; index < names.size(); ++index) {
            history.update(names[index], day, [&](UsageHistory::Totals& totals) {
                totals.seconds = 1234.567 + static_cast<double>(index * 7 + static_cast<std::size_t>(daysAgo));
                totals.graySeconds = 321.5;
                totals.visits = 12;
                totals.grayLeft = 3;
                totals.grayStayed = 2;
            });
        }
    }
    return history;
}

/// A folder of its own, removed at exit.
struct Folder {
    fs::path path;
    Folder() {
        std::string pattern = (fs::temp_directory_path() / "drabwise-bench-XXXXXX").string();
        std::vector<char> name(pattern.begin(), pattern.end());
        name.push_back('\0');
        path = ::mkdtemp(name.data());
    }
    ~Folder() {
        std::error_code ignored;
        fs::remove_all(path, ignored);
    }
};

const UsageStore& store() {
    static Folder folder;
    static UsageStore saved = [] {
        UsageStore made{folder.path};
        made.save(fullHistory());
        return made;
    }();
    return saved;
}

void BM_Load(benchmark::State& state) {
    const UsageStore& files = store();
    for (auto _ : state) benchmark::DoNotOptimize(files.load());
    state.counters["fileBytes"] = static_cast<double>(fs::file_size(files.fileURL()));
}
BENCHMARK(BM_Load)->Unit(benchmark::kMillisecond);

void BM_Summary(benchmark::State& state) {
    UsageHistory history = fullHistory();
    std::vector<std::string> names = hosts();
    for (auto _ : state) benchmark::DoNotOptimize(UsageSummary::make(history, names, now(), calendar()));
}
BENCHMARK(BM_Summary)->Unit(benchmark::kMicrosecond);

void BM_Save(benchmark::State& state) {
    const UsageStore& files = store();
    UsageHistory history = fullHistory();
    for (auto _ : state) files.save(history);
    state.counters["fileBytes"] = static_cast<double>(fs::file_size(files.fileURL()));
}
BENCHMARK(BM_Save)->Unit(benchmark::kMillisecond);

void BM_StartAfterDamagedRun(benchmark::State& state) {
    UsageHistory history = fullHistory();
    history.lastRun = UsageHistory::Run{Instant{-3e12}, std::nullopt};
    for (auto _ : state) {
        UsageRecorder recorder(history);
        recorder.appStarted(now(), std::nullopt, calendar());
        benchmark::DoNotOptimize(recorder);
    }
}
BENCHMARK(BM_StartAfterDamagedRun)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace ashview
