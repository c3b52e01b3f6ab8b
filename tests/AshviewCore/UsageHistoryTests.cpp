#include "AshviewCore/Usage/UsageHistory.h"

#include <gtest/gtest.h>

#include <limits>

namespace ashview {
namespace {

using Totals = UsageHistory::Totals;

UsageHistory parsed(const char* text) { return UsageHistory::fromJson(Json::parse(text)); }

TEST(UsageHistory, TrustsOnlyDaysAfterItBeganWithAtMostAnHourUnseen) {
    Calendar berlin("gregorian", "Europe/Berlin", "en_GB");
    LocalDays local(berlin);
    Instant day = *berlin.date(2026, 3, 29);
    UsageHistory history;
    history.days["2026-03-29"].unobservedSeconds = 3600.0;
    EXPECT_FALSE(history.covers(day, local)) << "nothing is trusted before counting began";
    history.began = day;
    EXPECT_TRUE(history.covers(day, local));
    EXPECT_TRUE(history.covers(*berlin.date(2026, 3, 30), local)) << "a day without an entry was fully watched";
    history.days["2026-03-29"].unobservedSeconds = 3600.5;
    EXPECT_FALSE(history.covers(day, local));
    history.days.clear();
    history.began = day + 1;
    EXPECT_FALSE(history.covers(day, local));

    Instant now = *berlin.date(2026, 3, 31, 9);
    EXPECT_FALSE(history.isComplete(now - 60, now, berlin)) << "today never is";
    EXPECT_TRUE(history.isComplete(now - 10 * 3600, now, Calendar("japanese", "Europe/Berlin", "ja_JP")));
}

TEST(UsageHistory, KeepsFourHundredDaysAndTheRunRecordThroughAClear) {
    LocalDays utc(Calendar::gregorianUTC());
    UsageHistory history;
    history.lastRun = UsageHistory::Run{Instant{5}, UsageHistory::Stop{Instant{5}, UsageHistory::StopReason::shutdown}};
    for (const char* key : {"2024-02-04", "2024-02-05", "2025-03-10"}) history.days[key].unobservedSeconds = 1;
    history.prune(*utc.calendar.date(2025, 3, 10, 23, 59), utc);
    EXPECT_EQ(history.days.count("2024-02-04"), 0u);
    EXPECT_EQ(history.days.size(), 2u);
    history.addUnobserved(Instant{100}, Instant{100}, utc);
    EXPECT_EQ(history.days.size(), 2u);

    UsageHistory cleared = history.cleared(Instant{9});
    EXPECT_EQ(cleared.began, Instant{9});
    EXPECT_EQ(cleared.lastRun, history.lastRun);
    EXPECT_TRUE(cleared.days.empty());
}

TEST(UsageHistory, WritesOnlyWhatCarriesInformation) {
    UsageHistory history;
    history.began = Instant{800000000.5};
    history.lastRun = UsageHistory::Run{Instant{800000100}, std::nullopt};
    history.update("busy.example", "2026-03-01", [](Totals& totals) { totals = {90.25, 0, 2, 0, 0}; });
    history.update("idle.example", "2026-03-01", [](Totals&) {});
    history.update("idle.example", "2026-03-02", [](Totals&) {});
    history.days["2026-03-03"].unobservedSeconds = 12.5;
    EXPECT_EQ(history.toJson(), Json::parse(R"({"began": 800000000.5, "lastRun": {"lastAlive": 800000100.0},
        "schemaVersion": 1, "days": {"2026-03-01": {"sites": {"busy.example": {"seconds": 90.25, "visits": 2}}},
        "2026-03-02": {}, "2026-03-03": {"unobservedSeconds": 12.5}}})"));
    // Only the all-zero host is lost on the way back.
    history.days["2026-03-01"].sites.erase("idle.example");
    history.days["2026-03-02"].sites.clear();
    EXPECT_EQ(UsageHistory::fromJson(history.toJson()), history);
    history.lastRun->stop = UsageHistory::Stop{Instant{800000200}, UsageHistory::StopReason::userQuit};
    history.update("busy.example", "2026-03-01", [](Totals& totals) { totals = {1, 0.5, 1, 2, 3}; });
    EXPECT_EQ(UsageHistory::fromJson(Json::parse(Json::encode(history.toJson()))), history);
}

TEST(UsageHistory, ReadsNullAsAbsentAndRejectsWhatItCannotUnderstand) {
    UsageHistory history = parsed(R"({"schemaVersion": 1, "began": null, "lastRun": {"lastAlive": 5, "stop": null},
        "days": {"2026-01-02": {"sites": {"x": {"visits": 3, "seconds": null}}}, "2026-01-03": {"sites": null}},
        "somethingNew": [1]})");
    EXPECT_EQ(history.began, std::nullopt);
    EXPECT_EQ(history.lastRun, (UsageHistory::Run{Instant{5}, std::nullopt}));
    EXPECT_EQ(history.days.at("2026-01-02").sites.at("x"), (Totals{0, 0, 3, 0, 0}));
    EXPECT_EQ(history.days.at("2026-01-03"), UsageHistory::Day{});
    for (const char* bad : {
             R"({"days": {}})", R"({"schemaVersion": 1, "days": null})",
             R"({"schemaVersion": 1, "days": {"d": {"sites": {"a": {"visits": 1.5}}}}})",
             R"({"schemaVersion": 1, "days": {"d": {"sites": {"a": {"seconds": "10"}}}}})",
             R"({"schemaVersion": 1, "days": {}, "lastRun": {}})",
             R"({"schemaVersion": 1, "days": {}, "lastRun": {"lastAlive": 1, "stop": {"time": 2, "reason": "crash"}}})",
         }) {
        EXPECT_THROW(parsed(bad), Json::DecodingError) << bad;
    }
    Json::Value infinite = Json::parse(R"({"schemaVersion": 1, "days": {"d": {}}})");
    infinite["days"]["d"]["unobservedSeconds"] = std::numeric_limits<double>::infinity();
    EXPECT_THROW(UsageHistory::fromJson(infinite), Json::DecodingError) << "it could not be written back";
}

}  // namespace
}  // namespace ashview
