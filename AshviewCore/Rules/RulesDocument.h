// The byte form of a `RuleSet`, as it stands in the rules file.
//
// Writing follows the shared document conventions (see Json.h): pretty,
// sorted keys, optional fields left out, UUIDs in upper case, and `days`
// always in the order Monday to Sunday, so the same rules always give the
// same bytes. A trigger and a gray time are always objects with a `kind`.
//
// Reading fails whole, with `Json::DecodingError`, on a missing required key,
// a value of the wrong JSON type, an unknown case name or a UUID that does not
// parse. It ignores unknown keys, reads `kind` first and looks at no payload
// key of a case without payload, and checks no ranges: a decoded document may
// still fail `RuleSet::validate`.
#pragma once

#include "AshviewCore/Rules/ClockTime.h"
#include "AshviewCore/Rules/DayOff.h"
#include "AshviewCore/Foundation/Json.h"
#include "AshviewCore/Rules/RuleSet.h"
#include "AshviewCore/Rules/SitePin.h"
#include "AshviewCore/Rules/SiteSettings.h"
#include "AshviewCore/Rules/Weekday.h"

#include <string>
#include <string_view>

namespace ashview::RulesDocument {

/// The file's bytes for `rules`, written as they are (no validation, no
/// snapshot). Throws `Json::DecodingError` if a text in it is not UTF-8.
std::string encode(const RuleSet& rules);
/// The rules in `bytes`, whatever their `schemaVersion`. Throws
/// `Json::DecodingError` for bytes that are no such document.
RuleSet decode(std::string_view bytes);

Json::Value toJson(const RuleSet& rules);
RuleSet ruleSetFromJson(const Json::Value& value, std::string_view where);

/// The pieces, for other layouts that share them.
Json::Value toJson(const SiteSettings& settings);
SiteSettings siteSettingsFromJson(const Json::Value& value, std::string_view where);
Json::Value toJson(const DayOff& dayOff);
DayOff dayOffFromJson(const Json::Value& value, std::string_view where);
Json::Value toJson(const ClockTime& time);
ClockTime clockTimeFromJson(const Json::Value& value, std::string_view where);
/// An array of day names, Monday to Sunday, each held day once.
Json::Value toJson(const WeekdaySet& days);
/// A set of the named days; repeats are harmless.
WeekdaySet weekdaysFromJson(const Json::Value& value, std::string_view where);
SitePin sitePinFromJson(const Json::Value& value, std::string_view where);

}  // namespace ashview::RulesDocument
