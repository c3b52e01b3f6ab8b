#include "AshviewCore/Foundation/AtomicFile.h"
#include "AshviewCore/Tracking/TrackerSnapshotStore.h"
#include "TempFolder.h"
#include "TrackerFixture.h"

namespace ashview {
namespace {

TEST_F(Tracking, SnapshotKeepsTheLastTwentyFiveHoursAndCutsSpansAtThem) {
    list("example.com", opensPerHour(100));
    list("unseen.com", opensPerHour(100));
    pass(0, {});
    pass(1, {shown(1, "example.com")});
    pass(10, {shown(1, "example.com")});
    pass(20, {shown(1, "example.com")});
    VisitTracker before = tracker;

    TrackerSnapshot kept = tracker.snapshot(start + 90001.5, start - 60);
    EXPECT_EQ(tracker, before);
    TrackerSnapshot expected{1, start + 90001.5, start - 60, {}};
    expected.sites["unseen.com"] = {};
    expected.sites["example.com"] = {{}, {{start + 1.5, start + 20}}, 1, 19.0};
    EXPECT_EQ(kept, expected);
    EXPECT_EQ(tracker.snapshot(start + 90001, std::nullopt).sites.at("example.com").opens,
              std::vector<Instant>{start + 1})
        << "an open exactly at the cut-off is kept";
}

TEST(TrackerSnapshot, RestoresDatedCountsOnlyFromASnapshotOfTheLastTwentyFiveHours) {
    Instant saved{800000000};
    TrackerSnapshot snapshot{1, saved, std::nullopt, {}};
    snapshot.sites["example.com"] = TrackerSnapshot::SiteCounts{
        {saved - 10, saved, saved + 5}, {{saved - 20, saved - 10}, {saved - 5, saved + 5}, {saved - 1, saved - 3}}, 4,
        12.5};
    struct Case {
        double age;
        bool sessionContinues;
        std::vector<Instant> opens;
        std::vector<DateInterval> onScreen;
    };
    const Case cases[] = {
        {0, true, {saved - 10, saved}, {{saved - 20, saved - 10}, {saved - 5, saved}}},
        {89999, false, {saved, saved + 5}, {{saved - 5, saved + 5}}},
        {90000, true, {saved, saved + 5}, {{saved - 5, saved + 5}}},
        {90000.001, true, {}, {}},
        {90001, true, {}, {}},
        {-1, true, {}, {}},
    };
    for (const Case& c : cases) {
        VisitTracker tracker;
        tracker.update(RuleSet::fresh(), {}, saved, Calendar::gregorianUTC(), {}, std::nullopt);
        tracker.restore(snapshot, saved + c.age, c.sessionContinues);
        EXPECT_FALSE(tracker.hasStartingPoint());
        EXPECT_FALSE(tracker.lastUpdate());
        const SiteUsage& usage = tracker.usage().at("example.com");
        EXPECT_EQ(usage.opens, c.opens) << c.age;
        EXPECT_EQ(usage.onScreen, c.onScreen) << c.age;
        EXPECT_EQ(usage.sessionOpens, c.sessionContinues ? 4 : 0) << c.age;
        EXPECT_EQ(usage.sessionSeconds, c.sessionContinues ? 12.5 : 0.0) << c.age;
        EXPECT_EQ(usage.phase, SiteUsage::Phase::color());
    }
}

TEST(TrackerSnapshotStore, RoundTripsAndLeavesFilesItCannotUseAsTheyAre) {
    TempFolder folder;
    TrackerSnapshotStore store{folder.path() / "Drabwise" / "nested"};
    EXPECT_FALSE(store.load()) << "no file";

    TrackerSnapshot snapshot{1, Instant{800000000.123456789}, std::nullopt, {}};
    snapshot.sites["example.com"] = {{Instant{1.0 / 3}, Instant{799999999.987654321}},
                                     {{Instant{0.1}, Instant{0.30000000000000004}}},
                                     7,
                                     2.0 / 3};
    snapshot.sites["app:com.apple.Music"] = {};
    store.save(snapshot);
    EXPECT_EQ(store.load(), snapshot);
    EXPECT_EQ(AtomicFile::read(store.fileURL())->find("sessionStart"), std::string::npos);
    snapshot.sessionStart = Instant{799990000.5};
    store.save(snapshot);
    EXPECT_EQ(store.load(), snapshot);

    const std::string unusable[] = {
        "{\"schemaVersion\": 1, \"savedAt\": 5, \"sites\": {\"a.com\": {\"opens\": []}}}",
        "{\"schemaVersion\": 2, \"savedAt\": 5, \"sites\": {}}",
        "{\"schemaVersion\": 0, \"savedAt\": 5, \"sites\": {}}",
        "{\"schemaVersion\": 1, \"savedAt\": \"5\", \"sites\": {}}",
        "[1, 2",
    };
    for (const std::string& bytes : unusable) {
        AtomicFile::write(store.fileURL(), bytes);
        EXPECT_FALSE(store.load()) << bytes;
        EXPECT_EQ(AtomicFile::read(store.fileURL()), bytes) << "the file stays as it was";
    }
}

}  // namespace
}  // namespace ashview
