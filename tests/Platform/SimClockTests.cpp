#include "Platform/Sim/SimClock.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace ashview {
namespace {

TEST(SimClock, RunsDueTasksInTimeThenQueueOrderIncludingTasksQueuedByTasks) {
    SimClock clock;
    std::vector<std::string> runs;
    auto record = [&](std::string name) {
        return [&runs, &clock, name] { runs.push_back(name + "@" + std::to_string(clock.uptime() - SimClock::defaultUptime)); };
    };
    clock.runAfter(2.0, record("b"));
    clock.runAfter(1.0, [&, record] {
        record("a")();
        clock.runAfter(0.15, record("a+0.15"));
        clock.runAfter(10.0, record("late"));
    });
    clock.runAfter(2.0, record("c"));
    clock.runAfter(0, record("now"));
    EXPECT_TRUE(runs.empty()) << "nothing runs inside the call that schedules it";

    clock.advance(1.1);
    EXPECT_EQ(runs, (std::vector<std::string>{"now@0.000000", "a@1.000000"}));
    clock.advance(0.05);  // small steps add up exactly to the task queued 0.15 ahead
    EXPECT_EQ(runs.size(), 3u);
    clock.advance(0.85);
    EXPECT_EQ(runs, (std::vector<std::string>{"now@0.000000", "a@1.000000", "a+0.15@1.150000", "b@2.000000",
                                              "c@2.000000"}));
    EXPECT_DOUBLE_EQ(clock.uptime(), SimClock::defaultUptime + 2.0);
    EXPECT_EQ(clock.pendingCount(), 1u);
    EXPECT_DOUBLE_EQ(*clock.nextDueUptime(), SimClock::defaultUptime + 11.0);
}

TEST(SimClock, RepeatingTimersKeepTheirRhythmAndCancellingLetsGoOfTheTask) {
    SimClock clock;
    std::vector<double> at;
    std::shared_ptr<ScheduledTask> timer;
    timer = clock.repeatEvery(5.0, [&] {
        at.push_back(clock.now() - SimClock::defaultStart);
        if (at.size() == 3) timer->cancel();  // from inside its own run
    });
    int delayed = 0;
    clock.runAfter(0.5, [&] { ++delayed; });  // handle dropped: still runs
    clock.runAfter(0.7, [&] { delayed += 100; })->cancel();
    clock.advance(60);
    EXPECT_EQ(at, (std::vector<double>{5, 10, 15}));
    EXPECT_FALSE(timer->isActive());
    EXPECT_EQ(delayed, 1);
    EXPECT_EQ(clock.pendingCount(), 0u);
    EXPECT_EQ(clock.firedCount(), 4u);
    EXPECT_THROW(clock.repeatEvery(0, [] {}), std::invalid_argument);

    // A task held only by its own block goes away once cancelled.
    auto probe = std::make_shared<int>(0);
    std::weak_ptr<int> watch = probe;
    auto task = clock.runAfter(1.0, [probe] {});
    probe.reset();
    EXPECT_FALSE(watch.expired());
    task->cancel();
    EXPECT_TRUE(watch.expired());
}

}  // namespace
}  // namespace ashview
