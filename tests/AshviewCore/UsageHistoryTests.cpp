#include "AshviewCore/UsageHistory.h"

#include <gtest/gtest.h>

#include <limits>

namespace ashview {
namespace {

using Totals = UsageHistory::Totals;

constexpr double hour = 3600.0;

Calendar berlin() { return Calendar("gregorian", "Europe/Berlin", "en_GB"); }

Instant at(long month, long day, long hourOfDay = 0, long minute = 0, long second = 0) {
    return *berlin().date(2026, month, day, hourOfDay, minute, second);
}

UsageHistory parsed(const char* text) { return UsageHistory::fromJson(Json::parse(text)); }

TEST(UsageHistory, CoversOnlyDaysAfterItBeganWithAtMostAnHourUnseen) {
    LocalDays local(berlin());
    Instant day = at(3, 29);
    UsageHistory history;
    history.update("news.example", "2026-03-29", [](Totals& totals) { totals.seconds = 50; });
    EXPECT_FALSE(history.covers(day, local)) << "no day is trusted before counting began";

    history.began = day;
    EXPECT_TRUE(history.covers(day, local));
    EXPECT_FALSE(history.covers(at(3, 20), local));
    EXPECT_TRUE(history.covers(at(3, 30), local)) << "a day without an entry was fully watched";
    history.began = day + 1;
    EXPECT_FALSE(history.covers(day, local));

    history.began = day;
    history.days["2026-03-29"].unobservedSeconds = 3600.0;
    EXPECT_TRUE(history.covers(day, local));
    history.days["2026-03-29"].unobservedSeconds = 3600.5;
    EXPECT_FALSE(history.covers(day, local));

    // Complete means: covered and over. Today never is.
    history.days.clear();
    Instant now = at(3, 31, 9);
    EXPECT_FALSE(history.isComplete(now - 60, now, berlin()));
    EXPECT_TRUE(history.isComplete(at(3, 30, 23, 59), now, berlin()));
    EXPECT_TRUE(history.isComplete(at(3, 29, 12), now, berlin()));
    EXPECT_FALSE(history.isComplete(at(3, 28, 12), now, berlin()));
    // A calendar of another system judges by the same Gregorian days.
    EXPECT_TRUE(history.isComplete(at(3, 30, 12), now, Calendar("japanese", "Europe/Berlin", "ja_JP")));
}

TEST(UsageHistory, UnobservedTimeIsSharedOutOverTheDaysItTouched) {
    LocalDays local(berlin());
    UsageHistory history;
    history.addUnobserved(at(3, 28, 22), at(3, 30, 1), local);
    EXPECT_EQ(history.days.size(), 3u);
    EXPECT_EQ(history.days["2026-03-28"].unobservedSeconds, 2 * hour);
    EXPECT_EQ(history.days["2026-03-29"].unobservedSeconds, 23 * hour);
    EXPECT_EQ(history.days["2026-03-30"].unobservedSeconds, 1 * hour);
    history.addUnobserved(at(3, 30, 5), at(3, 30, 5, 30), local);
    EXPECT_EQ(history.days["2026-03-30"].unobservedSeconds, 1.5 * hour);

    UsageHistory untouched = history;
    history.addUnobserved(at(4, 2), at(4, 2), local);
    history.addUnobserved(at(4, 2), at(4, 1), local);
    EXPECT_EQ(history, untouched);
}

TEST(UsageHistory, PruneKeepsTodayAndThe399LocalDaysBefore) {
    LocalDays utc(Calendar::gregorianUTC());
    UsageHistory history;
    for (const char* key : {"2024-02-04", "2024-02-05", "2025-03-09", "2025-03-10", "2025-03-11"}) {
        history.days[key].unobservedSeconds = 1;
    }
    history.prune(*utc.calendar.date(2025, 3, 10, 23, 59), utc);
    std::vector<std::string> kept;
    for (const auto& entry : history.days) kept.push_back(entry.first);
    EXPECT_EQ(kept, (std::vector<std::string>{"2024-02-05", "2025-03-09", "2025-03-10", "2025-03-11"}));

    // The cut-off is a local day: 23:30 UTC is already the next day in Berlin.
    history.prune(*utc.calendar.date(2025, 3, 10, 23, 30), LocalDays(berlin()));
    EXPECT_EQ(history.days.count("2024-02-05"), 0u);
}

TEST(UsageHistory, ClearingStartsOverButKeepsTheRunRecord) {
    UsageHistory history;
    history.began = at(1, 1);
    history.lastRun = UsageHistory::Run{at(3, 1), UsageHistory::Stop{at(3, 1), UsageHistory::StopReason::shutdown}};
    history.update("a.example", "2026-03-01", [](Totals& totals) { totals.visits += 2; });
    history.update("a.example", "2026-03-01", [](Totals& totals) { totals.visits += 1; });
    EXPECT_EQ(history.days["2026-03-01"].sites["a.example"].visits, 3);

    UsageHistory cleared = history.cleared(at(3, 2));
    EXPECT_EQ(cleared.schemaVersion, 1);
    EXPECT_EQ(cleared.began, at(3, 2));
    EXPECT_EQ(cleared.lastRun, history.lastRun);
    EXPECT_TRUE(cleared.days.empty());
}

TEST(UsageHistory, WritesOnlyWhatCarriesInformation) {
    UsageHistory history;
    history.began = Instant{800000000.5};
    history.lastRun = UsageHistory::Run{Instant{800000100}, std::nullopt};
    history.update("busy.example", "2026-03-01", [](Totals& totals) {
        totals.seconds = 90.25;
        totals.visits = 2;
    });
    history.update("idle.example", "2026-03-01", [](Totals&) {});
    history.update("idle.example", "2026-03-02", [](Totals&) {});
    history.days["2026-03-03"].unobservedSeconds = 12.5;
    EXPECT_EQ(Json::encode(history.toJson()), R"({
  "began": 800000000.5,
  "days": {
    "2026-03-01": {
      "sites": {
        "busy.example": {
          "seconds": 90.25,
          "visits": 2
        }
      }
    },
    "2026-03-02": {},
    "2026-03-03": {
      "unobservedSeconds": 12.5
    }
  },
  "lastRun": {
    "lastAlive": 800000100.0
  },
  "schemaVersion": 1
}
)");
    // The all-zero host is the only thing lost on the way back.
    UsageHistory back = UsageHistory::fromJson(history.toJson());
    history.days["2026-03-01"].sites.erase("idle.example");
    history.days["2026-03-02"].sites.clear();
    EXPECT_EQ(back, history);

    history.lastRun->stop = UsageHistory::Stop{Instant{800000200}, UsageHistory::StopReason::shutdown};
    history.update("busy.example", "2026-03-01", [](Totals& totals) {
        totals.graySeconds = 30;
        totals.grayLeft = 1;
        totals.grayStayed = 4;
    });
    EXPECT_EQ(UsageHistory::fromJson(Json::parse(Json::encode(history.toJson()))), history);
}

TEST(UsageHistory, ReaderFillsInDefaultsAndReadsNullAsAbsent) {
    UsageHistory history = parsed(R"({"schemaVersion": 1, "began": null, "lastRun": {"lastAlive": 5, "stop": null},
        "days": {"2026-01-02": {"sites": {"x.example": {"visits": 3, "seconds": null}}},
                 "2026-01-03": {"sites": null, "unobservedSeconds": 7}, "2026-01-04": {}},
        "somethingNew": [1, 2]})");
    EXPECT_EQ(history.began, std::nullopt);
    EXPECT_EQ(history.lastRun, (UsageHistory::Run{Instant{5}, std::nullopt}));
    EXPECT_EQ(history.days.at("2026-01-02").sites.at("x.example"), (Totals{0, 0, 3, 0, 0}));
    EXPECT_EQ(history.days.at("2026-01-03"), (UsageHistory::Day{{}, 7}));
    EXPECT_EQ(history.days.at("2026-01-04"), UsageHistory::Day{});
    EXPECT_EQ(parsed(R"({"schemaVersion": 1, "days": {}, "lastRun": {"lastAlive": 1,
                        "stop": {"time": 2, "reason": "userQuit"}}})")
                  .lastRun->stop,
              (UsageHistory::Stop{Instant{2}, UsageHistory::StopReason::userQuit}));
}

TEST(UsageHistory, ReaderRejectsWhatItCannotUnderstand) {
    for (const char* bad : {
             R"({"days": {}})",
             R"({"schemaVersion": 1})",
             R"({"schemaVersion": 1, "days": null})",
             R"({"schemaVersion": "1", "days": {}})",
             R"({"schemaVersion": 1, "days": []})",
             R"({"schemaVersion": 1, "days": {"2026-01-01": 5}})",
             R"({"schemaVersion": 1, "days": {"2026-01-01": {"sites": {"a": {"visits": 1.5}}}}})",
             R"({"schemaVersion": 1, "days": {"2026-01-01": {"sites": {"a": {"seconds": "10"}}}}})",
             R"({"schemaVersion": 1, "days": {"2026-01-01": {"sites": {"a": null}}}})",
             R"({"schemaVersion": 1, "days": {"2026-01-01": {"unobservedSeconds": true}}})",
             R"({"schemaVersion": 1, "days": {}, "began": "2026-01-01"})",
             R"({"schemaVersion": 1, "days": {}, "lastRun": {}})",
             R"({"schemaVersion": 1, "days": {}, "lastRun": {"lastAlive": 1, "stop": {"time": 2}}})",
             R"({"schemaVersion": 1, "days": {}, "lastRun": {"lastAlive": 1, "stop": {"time": 2, "reason": "crash"}}})",
             R"([])",
         }) {
        EXPECT_THROW(parsed(bad), Json::DecodingError) << bad;
    }
    // A number that could not be written back is refused too.
    Json::Value infinite = Json::parse(R"({"schemaVersion": 1, "days": {"2026-01-01": {"sites": {"a": {}}}}})");
    infinite["days"]["2026-01-01"]["sites"]["a"]["seconds"] = std::numeric_limits<double>::infinity();
    EXPECT_THROW(UsageHistory::fromJson(infinite), Json::DecodingError);
}

}  // namespace
}  // namespace ashview
