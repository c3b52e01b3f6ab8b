// Opening the status menu with a long list: a full pass and the whole menu,
// with one status per rule, as a person's click does. The goal is well under
// 2 ms with 100 rules and a browser window showing a listed site.
#include "Ashview/Controller/GrayController.h"
#include "Ashview/Reading/AppMonitor.h"
#include "Ashview/Reading/BrowserMonitor.h"
#include "Ashview/Shell/StatusMenu.h"
#include "Platform/Sim/SimAppServices.h"
#include "Platform/Sim/SimApplications.h"
#include "Platform/Sim/SimDesktop.h"

#include <benchmark/benchmark.h>

#include <filesystem>
#include <sstream>

namespace ashview {
namespace {

void BM_OpenTheMenu(benchmark::State& state) {
    const auto rules = static_cast<int>(state.range(0));
    std::filesystem::path folder = std::filesystem::temp_directory_path() / "drabwise-menu-bench";
    std::filesystem::remove_all(folder);
    SimDesktop desktop;
    SimApplications apps(desktop);
    apps.setScriptTime(0);
    std::int32_t chrome = apps.launchBrowser("com.google.Chrome");
    apps.openWindow(chrome, Rect{0, 0, 800, 600}, "https://site7.example.com/");
    BrowserMonitor browsers(ReadingPlatform{apps.workspace(), apps.appleEvents(), apps.accessibility(),
                                            desktop.windowServer(), desktop.mainLoop()});
    AppMonitor appMonitor(RuleSet::fresh(), apps.workspace(), desktop.windowServer());
    std::ostringstream log;
    GrayController controller(RuleStore(folder),
                              GrayController::Services{desktop.mainLoop(), desktop.windowServer(),
                                                       desktop.overlayWindows(), desktop.workspaceNotifications(),
                                                       desktop.distributedNotifications(), browsers, appMonitor, log});
    RuleSet list = controller.rules();
    for (int i = 0; i < rules; ++i) list.addSite("site" + std::to_string(i) + ".example.com");
    controller.rulesChangedInSettings(list);
    controller.start();
    SimLoginItemService loginItems;
    StatusMenu menu(controller, appMonitor, loginItems, desktop.mainLoop(), log, StatusMenu::Actions{});
    for (auto _ : state) benchmark::DoNotOptimize(menu.menuNeedsUpdate());
    if (menu.menuNeedsUpdate().size() < 10) state.SkipWithError("the menu is incomplete");
    controller.stop();
    std::filesystem::remove_all(folder);
}
BENCHMARK(BM_OpenTheMenu)->Arg(10)->Arg(100)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace ashview
