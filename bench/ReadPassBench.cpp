// One whole read pass over the simulated desktop with 20, 200 and 2,000
// windows and 100 listed sites. A quarter of the windows are browser windows
// showing listed sites (so they turn gray and carry overlays), the rest
// belong to other applications; every other window is placed over the one
// before it, so half the stack covers others. The browsers answer at once:
// what is measured is the pass itself, scripts aside.
#include "Ashview/Reading/AppSource.h"
#include "Ashview/Reading/BrowserSource.h"
#include "Ashview/Controller/GrayController.h"
#include "AshviewCore/Rules/RuleStore.h"
#include "AshviewOverlay/Geometry.h"
#include "Platform/Sim/SimDesktop.h"

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

namespace ashview {
namespace {

namespace fs = std::filesystem;

class InstantBrowsers final : public BrowserSource {
public:
    explicit InstantBrowsers(SimDesktop& desktop) : desktop_(desktop), geometry_(desktop.windowServer()) {}

    void start() override {}
    void read() override {
        readings_.clear();
        for (const auto& [key, number, host] : tabs) {
            std::optional<SimWindow> window = desktop_.window(number);
            if (!window) continue;
            readings_.push_back(
                ProbedWindow{key, ForeignWindow{number, geometry_.cocoa(window->bounds), window->isOnScreen}, host});
        }
    }
    BrowserStatus status() const override { return BrowserStatus{BrowserStatus::Kind::running, std::nullopt}; }
    std::vector<ProbedWindow> windows() const override { return readings_; }
    std::vector<Browser> notAllowed() const override { return {}; }
    std::optional<Instant> sessionStart() const override { return std::nullopt; }
    std::vector<Instant> launchDates() const override { return {}; }

    struct Tab final {
        WindowKey key;
        std::int64_t number = 0;
        std::string host;
    };
    std::vector<Tab> tabs;

private:
    SimDesktop& desktop_;
    Geometry geometry_;
    std::vector<ProbedWindow> readings_;
};

class NoApps final : public AppSource {
public:
    void start() override {}
    void setRules(const RuleSet&) override {}
    std::map<std::int32_t, ListedProcess> running() const override { return {}; }
    std::vector<ProbedWindow> windows(const std::vector<StackedWindow>&) const override { return {}; }
};

void BM_ReadPass(benchmark::State& state) {
    const int count = static_cast<int>(state.range(0));
    std::string pattern = (fs::temp_directory_path() / "drabwise-bench-XXXXXX").string();
    fs::path folder = ::mkdtemp(pattern.data());

    SimDesktop desktop;
    desktop.setDisplays({Rect{0, 0, 2560, 1440}});
    InstantBrowsers browsers(desktop);
    NoApps apps;
    std::ostringstream log;
    {
        RuleSet rules = RuleSet::fresh();
        rules.newSiteDefaults.trigger = GrayTrigger::rightAway();
        for (int index = 0; index < 100; ++index) rules.addSite("site" + std::to_string(index) + ".example");
        RuleStore(folder).save(rules);
    }
    GrayController controller(RuleStore(folder),
                              GrayController::Services{desktop.mainLoop(), desktop.windowServer(),
                                                       desktop.overlayWindows(), desktop.workspaceNotifications(),
                                                       desktop.distributedNotifications(), browsers, apps, log});
    controller.start();

    double x = 0;
    double y = 0;
    for (int index = 0; index < count; ++index) {
        // Odd windows lie half over the window opened just before them.
        Rect bounds = index % 2 == 1 ? Rect{x + 200, y + 150, 640, 480} : Rect{x, y, 640, 480};
        if (index % 2 == 0) {
            x = static_cast<double>((index * 97) % 1900);
            y = static_cast<double>((index * 53) % 940);
            bounds = Rect{x, y, 640, 480};
        }
        bool isBrowser = index % 4 == 0;
        std::int64_t number = desktop.openWindow(
            SimWindowSetup{isBrowser ? 501 : 600 + index % 20, isBrowser ? "Google Chrome" : "Other", bounds});
        if (isBrowser) {
            browsers.tabs.push_back({WindowKey{"com.google.Chrome", index},
                                     number, "site" + std::to_string(index % 100) + ".example"});
        }
    }
    controller.read();  // places the overlays and saves once
    state.counters["overlays"] = static_cast<double>(controller.grayedWindows().size());

    for (auto _ : state) {
        controller.read();
        benchmark::ClobberMemory();
    }
    state.SetLabel(std::to_string(count) + " windows");
    fs::remove_all(folder);
}

BENCHMARK(BM_ReadPass)->Arg(20)->Arg(200)->Arg(2000)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace ashview
