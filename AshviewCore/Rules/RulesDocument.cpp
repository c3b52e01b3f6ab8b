#include "AshviewCore/Rules/RulesDocument.h"

namespace ashview::RulesDocument {

namespace {

constexpr auto pinNames = Json::caseNames<SitePin>(std::pair{SitePin::followSettings, "followSettings"},
                                                   std::pair{SitePin::grayThisSite, "grayThisSite"},
                                                   std::pair{SitePin::showInColor, "showInColor"});
constexpr auto periodNames = Json::caseNames<CountPeriod>(
    std::pair{CountPeriod::hour, "hour"}, std::pair{CountPeriod::day, "day"}, std::pair{CountPeriod::session, "session"});
constexpr auto triggerNames = Json::caseNames<GrayTrigger::Kind>(std::pair{GrayTrigger::Kind::rightAway, "rightAway"},
                                                                 std::pair{GrayTrigger::Kind::afterLimit, "afterLimit"});
constexpr auto stayNames = Json::caseNames<StayGray::Kind>(std::pair{StayGray::Kind::untilLeave, "untilLeave"},
                                                           std::pair{StayGray::Kind::forMinutes, "forMinutes"},
                                                           std::pair{StayGray::Kind::untilChromeQuits, "untilChromeQuits"});

std::string indexed(std::string_view where, std::size_t index) {
    return std::string(where) + "[" + std::to_string(index) + "]";
}

Json::Value triggerJson(const GrayTrigger& trigger) {
    Json::Value object = {{"kind", triggerNames.name(trigger.kind())}};
    if (const auto* limit = trigger.limit()) {
        if (limit->minutes) object["minutes"] = *limit->minutes;
        if (limit->opens) object["opens"] = *limit->opens;
        object["per"] = periodNames.name(limit->per);
    }
    return object;
}

GrayTrigger grayTriggerFromJson(const Json::Value& value, std::string_view where) {
    Json::Object object(value, std::string(where));
    switch (triggerNames.read(object.required("kind"), object.path("kind"))) {
        case GrayTrigger::Kind::rightAway: return GrayTrigger::rightAway();
        case GrayTrigger::Kind::afterLimit: {
            CountPeriod per = periodNames.read(object.required("per"), object.path("per"));
            return GrayTrigger::afterLimit(object.optionalInteger("minutes"), object.optionalInteger("opens"), per);
        }
    }
    throw Json::DecodingError(object.path("kind") + ": unknown case");
}

Json::Value stayJson(const StayGray& stay) {
    Json::Value object = {{"kind", stayNames.name(stay.kind())}};
    if (const auto* timed = stay.timed()) object["minutes"] = timed->minutes;
    return object;
}

StayGray stayGrayFromJson(const Json::Value& value, std::string_view where) {
    Json::Object object(value, std::string(where));
    switch (stayNames.read(object.required("kind"), object.path("kind"))) {
        case StayGray::Kind::untilLeave: return StayGray::untilLeave();
        case StayGray::Kind::forMinutes: return StayGray::forMinutes(object.integer("minutes"));
        case StayGray::Kind::untilChromeQuits: return StayGray::untilChromeQuits();
    }
    throw Json::DecodingError(object.path("kind") + ": unknown case");
}

Json::Value ruleJson(const SiteRule& rule) {
    Json::Value object = {
        {"host", rule.host},
        {"id", rule.id.text()},
        {"pin", pinNames.name(rule.pin)},
        {"settings", RulesDocument::toJson(rule.settings)},
        {"usesNewSiteDefaults", rule.usesNewSiteDefaults},
    };
    if (rule.name) object["name"] = *rule.name;
    return object;
}

SiteRule siteRuleFromJson(const Json::Value& value, std::string_view where) {
    Json::Object object(value, std::string(where));
    SiteRule rule;
    rule.host = object.string("host");
    rule.id = object.uuid("id");
    rule.name = object.optionalString("name");
    rule.pin = sitePinFromJson(object.required("pin"), object.path("pin"));
    rule.settings = siteSettingsFromJson(object.required("settings"), object.path("settings"));
    rule.usesNewSiteDefaults = object.boolean("usesNewSiteDefaults");
    return rule;
}

}  // namespace

Json::Value toJson(const WeekdaySet& days) {
    Json::Value array = Json::Value::array();
    // Walking the cases, never the set, keeps the order fixed.
    for (Weekday day : Weekday::allCases) {
        if (days.contains(day)) array.push_back(std::string(day.name()));
    }
    return array;
}

WeekdaySet weekdaysFromJson(const Json::Value& value, std::string_view where) {
    const Json::Value& array = Json::array(value, where);
    WeekdaySet days;
    for (std::size_t index = 0; index < array.size(); ++index) {
        std::string place = indexed(where, index);
        std::string name = Json::string(array[index], place);
        auto day = Weekday::named(name);
        if (!day) throw Json::DecodingError(place + ": unknown case \"" + name + "\"");
        days.insert(*day);
    }
    return days;
}

SitePin sitePinFromJson(const Json::Value& value, std::string_view where) { return pinNames.read(value, where); }

Json::Value toJson(const ClockTime& time) { return {{"hour", time.hour}, {"minute", time.minute}}; }

ClockTime clockTimeFromJson(const Json::Value& value, std::string_view where) {
    Json::Object object(value, std::string(where));
    return ClockTime{object.integer("hour"), object.integer("minute")};
}

Json::Value toJson(const SiteSettings& settings) {
    Json::Value object = {
        {"days", toJson(settings.days)},
        {"stayGray", stayJson(settings.stayGray)},
        {"trigger", triggerJson(settings.trigger)},
    };
    if (settings.hours) object["hours"] = {{"end", toJson(settings.hours->end)}, {"start", toJson(settings.hours->start)}};
    return object;
}

SiteSettings siteSettingsFromJson(const Json::Value& value, std::string_view where) {
    Json::Object object(value, std::string(where));
    SiteSettings settings;
    settings.days = weekdaysFromJson(object.required("days"), object.path("days"));
    if (auto hours = object.optionalObject("hours")) {
        settings.hours = ActiveHours{clockTimeFromJson(hours->required("start"), hours->path("start")),
                                     clockTimeFromJson(hours->required("end"), hours->path("end"))};
    }
    settings.stayGray = stayGrayFromJson(object.required("stayGray"), object.path("stayGray"));
    settings.trigger = grayTriggerFromJson(object.required("trigger"), object.path("trigger"));
    return settings;
}

Json::Value toJson(const DayOff& dayOff) {
    Json::Value object = {
        {"day", dayOff.day},
        {"id", dayOff.id.text()},
        {"month", dayOff.month},
        {"name", dayOff.name},
    };
    if (dayOff.year) object["year"] = *dayOff.year;
    return object;
}

DayOff dayOffFromJson(const Json::Value& value, std::string_view where) {
    Json::Object object(value, std::string(where));
    return DayOff{object.uuid("id"), object.string("name"), object.integer("month"), object.integer("day"),
                  object.optionalInteger("year")};
}

Json::Value toJson(const RuleSet& rules) {
    Json::Value sites = Json::Value::array();
    for (const SiteRule& rule : rules.sites) sites.push_back(ruleJson(rule));
    Json::Value daysOff = Json::Value::array();
    for (const DayOff& dayOff : rules.daysOff) daysOff.push_back(toJson(dayOff));
    return {
        {"daysOff", std::move(daysOff)},
        {"newSiteDefaults", toJson(rules.newSiteDefaults)},
        {"schemaVersion", rules.schemaVersion},
        {"sites", std::move(sites)},
    };
}

RuleSet ruleSetFromJson(const Json::Value& value, std::string_view where) {
    Json::Object object(value, std::string(where));
    RuleSet rules;
    rules.schemaVersion = object.integer("schemaVersion");
    rules.newSiteDefaults = siteSettingsFromJson(object.required("newSiteDefaults"), object.path("newSiteDefaults"));
    const Json::Value& sites = object.array("sites");
    for (std::size_t index = 0; index < sites.size(); ++index) {
        rules.sites.push_back(siteRuleFromJson(sites[index], indexed(object.path("sites"), index)));
    }
    const Json::Value& daysOff = object.array("daysOff");
    for (std::size_t index = 0; index < daysOff.size(); ++index) {
        rules.daysOff.push_back(dayOffFromJson(daysOff[index], indexed(object.path("daysOff"), index)));
    }
    return rules;
}

std::string encode(const RuleSet& rules) { return Json::encode(toJson(rules)); }

RuleSet decode(std::string_view bytes) { return ruleSetFromJson(Json::parse(bytes), "rules"); }

}  // namespace ashview::RulesDocument
