// A simulated working day of active browsing through the whole program: ten
// browsers with three windows each, 100 listed sites, a tab change every few
// seconds so that a pass runs every few seconds, from 08:00 to 18:00 of
// virtual time. Reports virtual hours played per real second and the
// process's peak memory.
#include "Scenario/ScenarioPlayer.h"
#include "Scenario/ScenarioScript.h"

#include <benchmark/benchmark.h>

#include <filesystem>
#include <sstream>
#include <sys/resource.h>
#include <unistd.h>

namespace ashview {
namespace {

const char* const browsers[] = {"chrome", "chrome-beta", "chrome-dev", "chrome-canary", "chromium",
                                "edge",   "brave",       "vivaldi",    "safari",        "safari-preview"};

std::string day(int hours) {
    std::ostringstream text;
    text << "clock 2026-11-23 08:00 Europe/Berlin en_GB\n";
    for (const char* browser : browsers) text << "launch " << browser << "\n";
    text << "start\n";
    for (int i = 0; i < 100; ++i) {
        text << "add site site" << i << ".example\n";
        if (i % 4 == 0) text << "set site" << i << ".example gray after 30m or 20 opens per day\n";
    }
    int windows = 0;
    for (const char* browser : browsers) {
        for (int w = 0; w < 3; ++w) {
            text << "open w" << windows << " in " << browser << " at https://site" << (windows * 7) % 100
                 << ".example/ frame " << 20 * (windows % 20) << " " << 15 * (windows % 20) << " 900 650\n";
            ++windows;
        }
    }
    // A tab change every 4 seconds, round the windows and the sites.
    int steps = hours * 3600 / 4;
    for (int i = 0; i < steps; ++i) {
        int window = (i * 11) % windows;
        text << "tab w" << window << " https://site" << (i * 13) % 150 << ".example/page\n";
        if (i % 50 == 0) text << "focus w" << window << "\n";
        text << "wait 4s\n";
    }
    return text.str();
}

void SimulatedDay(benchmark::State& state) {
    const int hours = 10;
    auto parsed = ScenarioScript::parse(day(hours), "day");
    ScenarioScript script = std::get<ScenarioScript>(parsed);
    std::filesystem::path data = std::filesystem::temp_directory_path() / ("drabwise-bench-" + std::to_string(::getpid()));
    for (auto _ : state) {
        std::filesystem::remove_all(data);
        std::ostringstream out;
        std::ostringstream log;
        ScenarioPlayer player({data, "day", out, log});
        benchmark::DoNotOptimize(player.play(script));
    }
    std::filesystem::remove_all(data);
    state.counters["virtual_hours_per_second"] =
        benchmark::Counter(static_cast<double>(hours) * static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    state.counters["peak_memory_MiB"] = static_cast<double>(usage.ru_maxrss) / 1024.0;
}
BENCHMARK(SimulatedDay)->Unit(benchmark::kSecond)->Iterations(1);

}  // namespace
}  // namespace ashview
