#include "AshviewCore/Rules/RuleSetV1.h"

#include "AshviewCore/Foundation/Json.h"
#include "AshviewCore/Rules/RulesDocument.h"

namespace ashview {

namespace {

using Kind = RuleSetV1::When::Kind;

constexpr auto whenNames = Json::caseNames<Kind>(
    std::pair{Kind::wheneverOpen, "wheneverOpen"}, std::pair{Kind::duringHours, "duringHours"},
    std::pair{Kind::grayForMinutes, "grayForMinutes"}, std::pair{Kind::colorThenGray, "colorThenGray"},
    std::pair{Kind::untilBrowserQuits, "untilBrowserQuits"});

std::string indexed(const std::string& where, std::size_t index) {
    return where + "[" + std::to_string(index) + "]";
}

RuleSetV1::When whenFromJson(const Json::Value& value, const std::string& where) {
    Json::Object object(value, where);
    RuleSetV1::When when;
    when.kind = whenNames.read(object.required("kind"), object.path("kind"));
    switch (when.kind) {
        case Kind::duringHours:
            when.start = RulesDocument::clockTimeFromJson(object.required("start"), object.path("start"));
            when.end = RulesDocument::clockTimeFromJson(object.required("end"), object.path("end"));
            break;
        case Kind::grayForMinutes:
        case Kind::colorThenGray: when.minutes = object.integer("minutes"); break;
        case Kind::wheneverOpen:
        case Kind::untilBrowserQuits: break;
    }
    return when;
}

RuleSetV1::Settings settingsFromJson(const Json::Value& value, const std::string& where) {
    Json::Object object(value, where);
    RuleSetV1::Settings settings;
    settings.days = RulesDocument::weekdaysFromJson(object.required("days"), object.path("days"));
    settings.opensInColorPerHour = object.optionalInteger("opensInColorPerHour");
    settings.pin = RulesDocument::sitePinFromJson(object.required("pin"), object.path("pin"));
    settings.when = whenFromJson(object.required("when"), object.path("when"));
    return settings;
}

/// Today's settings for one old set, adding a note when an opens limit
/// cannot be carried over.
SiteSettings convert(const RuleSetV1::Settings& old, const std::string& label, std::vector<std::string>& notes) {
    std::optional<std::int64_t> valid;
    if (old.opensInColorPerHour && *old.opensInColorPerHour >= 1) valid = old.opensInColorPerHour;
    GrayTrigger opensTrigger =
        valid ? GrayTrigger::afterLimit(std::nullopt, valid, CountPeriod::hour) : GrayTrigger::rightAway();

    SiteSettings settings{std::nullopt, old.days, opensTrigger, StayGray::untilLeave()};
    const RuleSetV1::When& when = old.when;
    switch (when.kind) {
        case Kind::wheneverOpen: break;
        case Kind::duringHours: settings.hours = ActiveHours{when.start, when.end}; break;
        case Kind::grayForMinutes:
            settings.trigger = GrayTrigger::rightAway();
            settings.stayGray = StayGray::forMinutes(when.minutes);
            if (valid) {
                notes.push_back(label + ": kept gray for " + std::to_string(when.minutes) + " minutes; its limit of " +
                                std::to_string(*valid) + " opens an hour could not be carried over.");
            }
            break;
        case Kind::colorThenGray:
            // No open was to stay in color, so the minutes are dropped on purpose.
            if (old.opensInColorPerHour == 0) {
                settings.trigger = GrayTrigger::rightAway();
            } else {
                settings.trigger = GrayTrigger::afterLimit(when.minutes, valid, CountPeriod::hour);
            }
            break;
        case Kind::untilBrowserQuits: settings.stayGray = StayGray::untilChromeQuits(); break;
    }
    return settings;
}

}  // namespace

RuleSetV1 RuleSetV1::decode(std::string_view bytes) {
    Json::Value document = Json::parse(bytes);
    Json::Object object(document, "rules");
    RuleSetV1 rules;
    rules.newSiteDefaults = settingsFromJson(object.required("newSiteDefaults"), object.path("newSiteDefaults"));
    const Json::Value& sites = object.array("sites");
    for (std::size_t index = 0; index < sites.size(); ++index) {
        Json::Object site(sites[index], indexed(object.path("sites"), index));
        rules.sites.push_back(Site{site.uuid("id"), site.string("host"),
                                   settingsFromJson(site.required("settings"), site.path("settings")),
                                   site.boolean("usesNewSiteDefaults")});
    }
    const Json::Value& daysOff = object.array("daysOff");
    for (std::size_t index = 0; index < daysOff.size(); ++index) {
        rules.daysOff.push_back(RulesDocument::dayOffFromJson(daysOff[index], indexed(object.path("daysOff"), index)));
    }
    return rules;
}

std::pair<RuleSet, std::vector<std::string>> RuleSetV1::converted() const {
    std::vector<std::string> notes;
    RuleSet rules;
    rules.schemaVersion = RuleSet::currentSchemaVersion;
    rules.newSiteDefaults = convert(newSiteDefaults, "Defaults for new sites", notes);
    for (const Site& site : sites) {
        SiteSettings settings =
            site.usesNewSiteDefaults ? rules.newSiteDefaults : convert(site.settings, site.host, notes);
        rules.sites.push_back(
            SiteRule{site.id, site.host, std::nullopt, site.usesNewSiteDefaults, settings, site.settings.pin});
    }
    rules.daysOff = daysOff;
    return {std::move(rules), std::move(notes)};
}

}  // namespace ashview
