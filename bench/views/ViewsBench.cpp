// The program's face with a long list, drawn by Qt on the offscreen platform:
// opening the status menu (a full pass, the menu model and its QMenu, shown)
// and showing the settings window (sidebar and open page built, laid out and
// painted).
// Each must stay within one frame, 16 ms, with 100 rules.
#include "Ashview/Shell/StatusMenu.h"
#include "AshviewQt/SettingsWidget.h"
#include "AshviewQt/StatusItem.h"
#include "AshviewQt/Theme.h"
#include "Platform/Sim/SimAppServices.h"

#include "AshviewQt/ShellStage.h"

#include <QApplication>

#include <benchmark/benchmark.h>

namespace ashview {
namespace {

/// A running program with `rules` listed sites and a browser window on one.
class LongList : public ShellStage {
public:
    explicit LongList(int rules) {
        startProgram();
        RuleSet list = controller->rules();
        for (int i = 0; i < rules; ++i) list.addSite("site" + std::to_string(i) + ".example.com");
        setRules(list);
        browse("https://site7.example.com/");
        advance(1);
    }
};

void settle() {
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

void BM_OpenTheStatusMenu(benchmark::State& state) {
    LongList stage(static_cast<int>(state.range(0)));
    SimLoginItemService loginItems;
    std::ostringstream errors;
    StatusMenu menu(*stage.controller, stage.appMonitor, loginItems, stage.desktop.mainLoop(), errors, {});
    StatusItem item([&] { return menu.menuNeedsUpdate(); }, SystemActions{});
    for (auto _ : state) {
        item.menu().popup(QPoint(0, 0));
        settle();
        item.menu().hide();
    }
    if (item.menu().actions().size() < 10) state.SkipWithError("the menu is incomplete");
}
BENCHMARK(BM_OpenTheStatusMenu)->Arg(100)->Unit(benchmark::kMillisecond);

void BM_ShowTheSettingsWindow(benchmark::State& state) {
    LongList stage(static_cast<int>(state.range(0)));
    SettingsModel& model = stage.settings();
    model.setPage(SettingsModel::Page::forSite(model.rules().sites[50].id));
    for (auto _ : state) {
        SettingsWidget window(model);
        window.show();
        // Lays the window out and paints it into its backing store.
        settle();
    }
}
BENCHMARK(BM_ShowTheSettingsWindow)->Arg(100)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace ashview

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    ashview::Theme::apply(application);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
