#include "AshviewCore/Tracking/TrackerSnapshot.h"

#include <cmath>

namespace ashview {

namespace {

Json::Value instantJson(Instant instant) { return instant.seconds; }

Instant readInstant(const Json::Value& value, const std::string& where) {
    return Instant{Json::number(value, where)};
}

Json::Value intervalJson(const DateInterval& interval) {
    return {{"start", instantJson(interval.start)}, {"end", instantJson(interval.end)}};
}

DateInterval readInterval(const Json::Value& value, const std::string& where) {
    Json::Object object(value, where);
    return DateInterval{readInstant(object.required("start"), object.path("start")),
                        readInstant(object.required("end"), object.path("end"))};
}

}  // namespace

Json::Value TrackerSnapshot::toJson() const {
    Json::Value document = Json::Value::object();
    document["schemaVersion"] = schemaVersion;
    document["savedAt"] = instantJson(savedAt);
    if (sessionStart) document["sessionStart"] = instantJson(*sessionStart);
    Json::Value siteObjects = Json::Value::object();
    for (const auto& [host, counts] : sites) {
        Json::Value opens = Json::Value::array();
        for (Instant open : counts.opens) opens.push_back(instantJson(open));
        Json::Value onScreen = Json::Value::array();
        for (const DateInterval& interval : counts.onScreen) onScreen.push_back(intervalJson(interval));
        siteObjects[host] = {{"opens", std::move(opens)},
                             {"onScreen", std::move(onScreen)},
                             {"sessionOpens", counts.sessionOpens},
                             {"sessionSeconds", counts.sessionSeconds}};
    }
    document["sites"] = std::move(siteObjects);
    return document;
}

TrackerSnapshot TrackerSnapshot::fromJson(const Json::Value& document) {
    Json::Object root(document, "snapshot");
    TrackerSnapshot snapshot;
    snapshot.schemaVersion = root.integer("schemaVersion");
    snapshot.savedAt = readInstant(root.required("savedAt"), root.path("savedAt"));
    if (const Json::Value* start = root.optional("sessionStart")) {
        snapshot.sessionStart = readInstant(*start, root.path("sessionStart"));
    }
    Json::Object sites = root.object("sites");
    for (const auto& [host, value] : root.required("sites").items()) {
        std::string where = sites.path(host);
        Json::Object site(value, where);
        SiteCounts counts;
        const Json::Value& opens = site.array("opens");
        for (std::size_t index = 0; index < opens.size(); ++index) {
            counts.opens.push_back(readInstant(opens[index], site.path("opens") + "[" + std::to_string(index) + "]"));
        }
        const Json::Value& onScreen = site.array("onScreen");
        for (std::size_t index = 0; index < onScreen.size(); ++index) {
            counts.onScreen.push_back(
                readInterval(onScreen[index], site.path("onScreen") + "[" + std::to_string(index) + "]"));
        }
        counts.sessionOpens = site.integer("sessionOpens");
        counts.sessionSeconds = site.number("sessionSeconds");
        snapshot.sites.emplace(host, std::move(counts));
    }
    return snapshot;
}

}  // namespace ashview
