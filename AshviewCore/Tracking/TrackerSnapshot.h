// The tracker's counters as they are kept over a restart, and their JSON form.
//
// Only counts are kept: phases, latches, window memory and sightings are
// worked out anew by the passes after a restart. Made by
// `VisitTracker::snapshot`, read back by `VisitTracker::restore`, kept on disk
// by `TrackerSnapshotStore`.
#pragma once

#include "AshviewCore/Foundation/DateInterval.h"
#include "AshviewCore/Foundation/Instant.h"
#include "AshviewCore/Foundation/Json.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace ashview {

struct TrackerSnapshot final {
    /// The only layout this program writes and reads.
    static constexpr std::int64_t currentSchemaVersion = 1;

    /// The counts of one rule `host`.
    struct SiteCounts final {
        std::vector<Instant> opens;
        std::vector<DateInterval> onScreen;
        std::int64_t sessionOpens = 0;
        double sessionSeconds = 0;

        friend bool operator==(const SiteCounts&, const SiteCounts&) = default;
    };

    std::int64_t schemaVersion = currentSchemaVersion;
    /// When the snapshot was taken.
    Instant savedAt;
    /// The start of the browsing session at saving, as the controller knew
    /// it; carried, never interpreted here.
    std::optional<Instant> sessionStart;
    /// Per rule `host`.
    std::map<std::string, SiteCounts> sites;

    /// The document: instants as seconds since 2001 UTC with their fraction,
    /// an interval as {"end", "start"}, no "sessionStart" key when absent.
    Json::Value toJson() const;
    /// Reads any layout number; whether it can be used is the caller's
    /// question. Throws `Json::DecodingError` when a required key is missing,
    /// a value is of the wrong type or a number is not finite.
    static TrackerSnapshot fromJson(const Json::Value& document);

    friend bool operator==(const TrackerSnapshot&, const TrackerSnapshot&) = default;
};

}  // namespace ashview
