// How much it costs to tell whether a window can be seen, over stacks of 20,
// 200 and 2,000 windows on a 2560 by 1440 desktop. Half of each stack lies
// over the screen's middle (so windows there cover one another), the rest is
// scattered; one window in ten is this program's overlay, one in twenty sits
// on a higher layer, one in twenty is fully transparent.
#include "AshviewCore/Reading/Visibility.h"

#include <benchmark/benchmark.h>

#include <random>

namespace {

using ashview::Rect;
using ashview::Visibility::Window;

constexpr std::int32_t self = 4242;

std::vector<Window> makeStack(int count) {
    std::mt19937 random(20261123);
    std::uniform_real_distribution<double> size(200, 1200);
    std::uniform_real_distribution<double> anywhere(0, 2000);
    std::uniform_real_distribution<double> middle(700, 900);
    std::vector<Window> stack;
    for (int index = 0; index < count; ++index) {
        bool covering = index % 2 == 0;
        double x = covering ? middle(random) : anywhere(random);
        double y = covering ? middle(random) / 2 : anywhere(random) / 2;
        Window window{1000 + index, Rect{x, y, size(random), size(random) * 0.7}, 500 + index % 7, 0, 1.0};
        if (index % 10 == 3) window.ownerPID = self;
        if (index % 20 == 5) window.layer = 25;
        if (index % 20 == 7) window.alpha = 0.0;
        stack.push_back(window);
    }
    return stack;
}

// The worst single question: the backmost window, with the whole stack in front.
void backmostWindow(benchmark::State& state) {
    std::vector<Window> stack = makeStack(static_cast<int>(state.range(0)));
    std::int64_t target = stack.back().number;
    for (auto _ : state) benchmark::DoNotOptimize(ashview::Visibility::uncoveredFraction(target, stack, self));
}
BENCHMARK(backmostWindow)->Arg(20)->Arg(200)->Arg(2000);

// Every window of the stack asked once, as a pass does for each window it reads.
void everyWindow(benchmark::State& state) {
    std::vector<Window> stack = makeStack(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        int visible = 0;
        for (const Window& window : stack) visible += ashview::Visibility::isVisible(window.number, stack, self);
        benchmark::DoNotOptimize(visible);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(everyWindow)->Arg(20)->Arg(200)->Arg(2000)->Unit(benchmark::kMicrosecond);

// A rectangle against that many covers, all of them touching it.
void rectangleAgainstCovers(benchmark::State& state) {
    std::vector<Rect> covers;
    for (const Window& window : makeStack(static_cast<int>(state.range(0)))) covers.push_back(window.frame);
    Rect target{600, 300, 900, 600};
    for (auto _ : state) benchmark::DoNotOptimize(ashview::Visibility::uncoveredFraction(target, covers));
}
BENCHMARK(rectangleAgainstCovers)->Arg(20)->Arg(200)->Arg(2000);

}  // namespace
