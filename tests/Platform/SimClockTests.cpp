#include "Platform/Sim/SimClock.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace ashview {
namespace {

TEST(SimClock, RunsDueTasksInTimeOrderThenQueueOrder) {
    SimClock clock;
    std::vector<std::string> runs;
    auto record = [&](std::string name) {
        return [&runs, &clock, name] { runs.push_back(name + "@" + std::to_string(clock.uptime() - SimClock::defaultUptime)); };
    };
    clock.runAfter(2.0, record("b"));
    clock.runAfter(1.0, record("a"));
    clock.runAfter(2.0, record("c"));
    clock.runAfter(0, record("now"));
    EXPECT_TRUE(runs.empty()) << "nothing runs inside the call that schedules it";

    clock.advance(1.5);
    EXPECT_EQ(runs, (std::vector<std::string>{"now@0.000000", "a@1.000000"}));
    EXPECT_DOUBLE_EQ(clock.uptime(), SimClock::defaultUptime + 1.5);
    clock.advance(0.5);
    EXPECT_EQ(runs.size(), 4u);
    EXPECT_EQ(runs[2], "b@2.000000");
    EXPECT_EQ(runs[3], "c@2.000000");
    EXPECT_EQ(clock.queuedCount(), 4u);
    EXPECT_EQ(clock.firedCount(), 4u);
    EXPECT_EQ(clock.pendingCount(), 0u);
}

TEST(SimClock, SmallStepsAddUpExactly) {
    SimClock clock;
    int runs = 0;
    clock.runAfter(0.15, [&] { ++runs; });
    clock.advance(0.1);
    EXPECT_EQ(runs, 0);
    clock.advance(0.05);
    EXPECT_EQ(runs, 1) << "0.1 + 0.05 must reach a task queued 0.15 ahead";
}

TEST(SimClock, TasksQueuedByTasksRunInTheSameAdvance) {
    SimClock clock;
    std::vector<double> at;
    clock.runAfter(1.0, [&] {
        at.push_back(clock.now() - SimClock::defaultStart);
        clock.runAfter(0.15, [&] { at.push_back(clock.now() - SimClock::defaultStart); });
        clock.runAfter(10.0, [&] { at.push_back(-1); });
    });
    clock.advance(2.0);
    ASSERT_EQ(at.size(), 2u);
    EXPECT_DOUBLE_EQ(at[0], 1.0);
    EXPECT_NEAR(at[1], 1.15, 1e-6);  // an instant near 2026 carries about 1e-7 s
    EXPECT_EQ(clock.pendingCount(), 1u);
    ASSERT_TRUE(clock.nextDueUptime());
    EXPECT_DOUBLE_EQ(*clock.nextDueUptime(), SimClock::defaultUptime + 11.0);
}

TEST(SimClock, RepeatingTimerKeepsItsRhythmUntilCancelled) {
    SimClock clock;
    std::vector<double> at;
    auto timer = clock.repeatEvery(5.0, [&] { at.push_back(clock.now() - SimClock::defaultStart); });
    clock.advance(4.0);
    EXPECT_TRUE(at.empty());
    clock.advance(13.0);  // to 17: fires at 5, 10, 15
    EXPECT_EQ(at, (std::vector<double>{5, 10, 15}));
    EXPECT_TRUE(timer->isActive());
    EXPECT_EQ(clock.pendingCount(), 1u);
    timer->cancel();
    EXPECT_FALSE(timer->isActive());
    EXPECT_EQ(clock.pendingCount(), 0u);
    clock.advance(60);
    EXPECT_EQ(at.size(), 3u);
    EXPECT_EQ(clock.queuedCount(), 1u);
    EXPECT_EQ(clock.firedCount(), 3u);
    EXPECT_THROW(clock.repeatEvery(0, [] {}), std::invalid_argument);
}

TEST(SimClock, CancellingFromInsideAndDroppingHandles) {
    SimClock clock;
    int repeats = 0;
    std::shared_ptr<ScheduledTask> timer;
    timer = clock.repeatEvery(1.0, [&] {
        if (++repeats == 2) timer->cancel();
    });
    int delayed = 0;
    clock.runAfter(0.5, [&] { ++delayed; });  // handle dropped: still runs
    auto cancelled = clock.runAfter(0.7, [&] { delayed += 100; });
    cancelled->cancel();
    clock.advance(10);
    EXPECT_EQ(repeats, 2);
    EXPECT_EQ(delayed, 1);
    EXPECT_FALSE(cancelled->isActive());
    EXPECT_EQ(clock.firedCount(), 3u);

    // A task held only by its own block goes away once cancelled.
    auto probe = std::make_shared<int>(0);
    std::weak_ptr<int> watch = probe;
    auto task = clock.runAfter(1.0, [probe] {});
    probe.reset();
    EXPECT_FALSE(watch.expired());
    task->cancel();
    EXPECT_TRUE(watch.expired());
}

TEST(SimClock, WallClockShiftsLeaveUptimeAndTheQueueAlone) {
    SimClock clock;
    int runs = 0;
    clock.runAfter(1.0, [&] { ++runs; });
    Instant before = clock.now();
    clock.shiftWallClock(-3600);
    EXPECT_DOUBLE_EQ(clock.now() - before, -3600);
    EXPECT_DOUBLE_EQ(clock.uptime(), SimClock::defaultUptime);
    EXPECT_EQ(runs, 0);
    ASSERT_TRUE(clock.bootTime());
    EXPECT_DOUBLE_EQ(clock.now() - *clock.bootTime(), SimClock::defaultUptime);
    clock.setBootTimeKnown(false);
    EXPECT_FALSE(clock.bootTime());

    EXPECT_TRUE(clock.runNext());
    EXPECT_EQ(runs, 1);
    EXPECT_DOUBLE_EQ(clock.uptime(), SimClock::defaultUptime + 1);
    EXPECT_FALSE(clock.runNext());
}

TEST(SimClock, AdvancingFromInsideATaskIsRefused) {
    SimClock clock;
    bool threw = false;
    clock.runAfter(1, [&] {
        try {
            clock.advance(1);
        } catch (const std::logic_error&) {
            threw = true;
        }
    });
    clock.advance(1);
    EXPECT_TRUE(threw);
    clock.runAfter(1, [] {});
    clock.advance(1);  // the loop is usable again afterwards
    EXPECT_EQ(clock.firedCount(), 2u);
}

}  // namespace
}  // namespace ashview
