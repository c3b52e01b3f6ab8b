#include "AshviewCore/Usage/UsageHistory.h"

#include <cmath>
#include <limits>

namespace ashview {

namespace {

constexpr auto stopReasonNames = Json::caseNames<UsageHistory::StopReason>(
    std::pair{UsageHistory::StopReason::userQuit, "userQuit"},
    std::pair{UsageHistory::StopReason::shutdown, "shutdown"});

void putIfNonZero(Json::Value& object, const char* key, double value) {
    if (value != 0) object[key] = value;
}

void putIfNonZero(Json::Value& object, const char* key, std::int64_t value) {
    if (value != 0) object[key] = value;
}

double number(const Json::Object& object, std::string_view key) { return object.number(key); }

std::optional<double> optionalNumber(const Json::Object& object, std::string_view key) {
    return object.optionalNumber(key);
}

UsageHistory::Totals readTotals(const Json::Object& object) {
    UsageHistory::Totals totals;
    totals.seconds = optionalNumber(object, "seconds").value_or(0);
    totals.graySeconds = optionalNumber(object, "graySeconds").value_or(0);
    totals.visits = object.optionalInteger("visits").value_or(0);
    totals.grayLeft = object.optionalInteger("grayLeft").value_or(0);
    totals.grayStayed = object.optionalInteger("grayStayed").value_or(0);
    return totals;
}

}  // namespace

void addCount(std::int64_t& count, std::int64_t amount) {
    std::int64_t sum = 0;
    if (__builtin_add_overflow(count, amount, &sum)) {
        sum = amount > 0 ? std::numeric_limits<std::int64_t>::max() : std::numeric_limits<std::int64_t>::min();
    }
    count = sum;
}

bool UsageHistory::Totals::isZero() const {
    return seconds == 0 && graySeconds == 0 && visits == 0 && grayLeft == 0 && grayStayed == 0;
}

void UsageHistory::Totals::add(const Totals& other) {
    seconds += other.seconds;
    graySeconds += other.graySeconds;
    addCount(visits, other.visits);
    addCount(grayLeft, other.grayLeft);
    addCount(grayStayed, other.grayStayed);
}

std::string UsageHistory::dayKey(Instant date, const Calendar& calendar) { return LocalDays(calendar).key(date); }

bool UsageHistory::isComplete(Instant day, Instant now, const Calendar& calendar) const {
    LocalDays local(calendar);
    Instant dayStart = local.calendar.startOfDay(day);
    Instant today = local.calendar.startOfDay(now);
    if (!(dayStart < today)) return false;
    return covers(dayStart, local);
}

bool UsageHistory::covers(Instant dayStarting, const LocalDays& local) const {
    if (!began || *began > dayStarting) return false;
    auto found = days.find(local.key(dayStarting));
    if (found == days.end()) return true;
    return found->second.unobservedSeconds <= trustedUnobservedSeconds;
}

UsageHistory UsageHistory::cleared(Instant at) const {
    UsageHistory fresh;
    fresh.began = at;
    fresh.lastRun = lastRun;
    return fresh;
}

void UsageHistory::addUnobserved(Instant from, Instant to, const LocalDays& local) {
    for (const auto& piece : local.split(from, to)) days[piece.day].unobservedSeconds += piece.seconds;
}

Instant UsageHistory::oldestKeptDay(Instant now, const LocalDays& local) {
    return local.start(-(keptDays - 1), now);
}

void UsageHistory::prune(Instant now, const LocalDays& local) {
    std::string cutoff = local.key(oldestKeptDay(now, local));
    days.erase(days.begin(), days.lower_bound(cutoff));
}

Json::Value UsageHistory::toJson() const {
    Json::Value document = Json::Value::object();
    document["schemaVersion"] = schemaVersion;
    if (began) document["began"] = began->seconds;
    if (lastRun) {
        Json::Value run = Json::Value::object();
        run["lastAlive"] = lastRun->lastAlive.seconds;
        if (lastRun->stop) {
            run["stop"] = Json::Value{{"time", lastRun->stop->time.seconds},
                                      {"reason", stopReasonNames.name(lastRun->stop->reason)}};
        }
        document["lastRun"] = std::move(run);
    }
    Json::Value dayObjects = Json::Value::object();
    for (const auto& [key, day] : days) {
        Json::Value dayObject = Json::Value::object();
        Json::Value sites = Json::Value::object();
        for (const auto& [host, totals] : day.sites) {
            if (totals.isZero()) continue;
            Json::Value entry = Json::Value::object();
            putIfNonZero(entry, "seconds", totals.seconds);
            putIfNonZero(entry, "graySeconds", totals.graySeconds);
            putIfNonZero(entry, "visits", totals.visits);
            putIfNonZero(entry, "grayLeft", totals.grayLeft);
            putIfNonZero(entry, "grayStayed", totals.grayStayed);
            sites[host] = std::move(entry);
        }
        if (!sites.empty()) dayObject["sites"] = std::move(sites);
        putIfNonZero(dayObject, "unobservedSeconds", day.unobservedSeconds);
        dayObjects[key] = std::move(dayObject);
    }
    document["days"] = std::move(dayObjects);
    return document;
}

UsageHistory UsageHistory::fromJson(const Json::Value& document) {
    Json::Object root(document, "history");
    UsageHistory history;
    history.schemaVersion = root.integer("schemaVersion");
    if (auto began = optionalNumber(root, "began")) history.began = Instant{*began};
    if (auto run = root.optionalObject("lastRun")) {
        Run lastRun{Instant{number(*run, "lastAlive")}, std::nullopt};
        if (auto stop = run->optionalObject("stop")) {
            lastRun.stop = Stop{Instant{number(*stop, "time")},
                                stopReasonNames.read(stop->required("reason"), stop->path("reason"))};
        }
        history.lastRun = lastRun;
    }
    Json::Object dayObjects = root.object("days");
    for (const auto& [key, value] : document.at("days").items()) {
        Json::Object dayObject(value, dayObjects.path(key));
        Day day;
        day.unobservedSeconds = optionalNumber(dayObject, "unobservedSeconds").value_or(0);
        if (auto sites = dayObject.optionalObject("sites")) {
            for (const auto& [host, totals] : dayObject.required("sites").items()) {
                day.sites.emplace(host, readTotals(Json::Object(totals, sites->path(host))));
            }
        }
        history.days.emplace(key, std::move(day));
    }
    return history;
}

}  // namespace ashview
