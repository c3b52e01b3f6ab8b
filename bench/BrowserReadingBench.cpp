// The cost of reading browsers, with the browsers' own answering time taken
// out: one monitor read of ten browsers with fifty windows each, and the
// pairing of two hundred reported windows with two hundred screen windows.
#include "Ashview/Reading/BrowserMonitor.h"
#include "AshviewCore/Reading/FramePairing.h"
#include "Platform/Sim/SimApplications.h"
#include "Platform/Sim/SimDesktop.h"

#include <benchmark/benchmark.h>

#include <algorithm>

namespace ashview {
namespace {

void BM_BrowserMonitorRead(benchmark::State& state) {
    SimDesktop desktop;
    SimApplications apps(desktop);
    apps.setScriptTime(0);
    for (const Browser& browser : BrowserCatalog::browsers()) {
        std::int32_t pid = apps.launchBrowser(browser.bundleID);
        for (int i = 0; i < 50; ++i)
            apps.openWindow(pid, Rect{10.0 * i, 25.0 + 7 * i, 800.0 + i, 600.0 - i},
                            "https://site" + std::to_string(i) + ".example.com/page");
    }
    BrowserMonitor monitor(ReadingPlatform{apps.workspace(), apps.appleEvents(), apps.accessibility(),
                                           desktop.windowServer(), desktop.mainLoop()});
    monitor.start();
    monitor.read();
    for (auto _ : state) {
        monitor.read();
        benchmark::DoNotOptimize(monitor.readings());
    }
    if (monitor.windows().size() != 500) state.SkipWithError("not every window was read");
}
BENCHMARK(BM_BrowserMonitorRead)->Unit(benchmark::kMicrosecond);

// The program's own share of one browser's reading: decoding a reply of 50
// windows and pairing them with 50 screen windows, with no window list.
void BM_DecodeAndPairOneBrowser(benchmark::State& state) {
    std::vector<ScriptValue> items;
    std::vector<ForeignWindow> screen;
    for (int i = 0; i < 50; ++i) {
        double left = 10.0 * i, top = 25.0 + 7 * i, width = 800.0 + i, height = 600.0 - i;
        items.push_back(ScriptValue::list({ScriptValue::number(1000 + i), ScriptValue::number(std::int64_t(left)),
                                           ScriptValue::number(std::int64_t(top)),
                                           ScriptValue::number(std::int64_t(left + width)),
                                           ScriptValue::number(std::int64_t(top + height)),
                                           ScriptValue::string("https://site" + std::to_string(i) + ".example.com/")}));
        screen.push_back(ForeignWindow{100 + (49 - i), Rect{left, 900 - top - height, width, height}, true});
    }
    std::reverse(screen.begin(), screen.end());
    ScriptValue reply = ScriptValue::list(std::move(items));
    for (auto _ : state)
        benchmark::DoNotOptimize(
            BrowserProbe::windows("com.google.Chrome", BrowserProbe::items(reply), screen, {}, 900));
}
BENCHMARK(BM_DecodeAndPairOneBrowser)->Unit(benchmark::kMicrosecond);

void BM_FramePairing(benchmark::State& state) {
    std::vector<Rect> frames, screen;
    for (int i = 0; i < 200; ++i) {
        frames.push_back(Rect{3.0 * i, 2.0 * i, 800, 600});
        screen.push_back(Rect{3.0 * (199 - i), 2.0 * (199 - i), 800, 600});
    }
    for (auto _ : state) benchmark::DoNotOptimize(FramePairing::pair(frames, screen, {}));
}
BENCHMARK(BM_FramePairing)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace ashview
