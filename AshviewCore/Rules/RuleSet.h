// The whole of what the user has chosen: the defaults for new sites, the
// listed sites and apps in the user's order, and the shared days off.
//
// A plain value. The controller owns the live copy; every other holder has a
// copy of its own. Each edit either succeeds or throws `RuleError` and leaves
// the value exactly as it was.
#pragma once

#include "AshviewCore/Foundation/Calendar.h"
#include "AshviewCore/Rules/DayOff.h"
#include "AshviewCore/Foundation/Instant.h"
#include "AshviewCore/Rules/SitePin.h"
#include "AshviewCore/Rules/SiteRule.h"
#include "AshviewCore/Rules/SiteSettings.h"
#include "AshviewCore/Foundation/Uuid.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ashview {

struct RuleSet final {
    /// The only version this program writes and accepts in `validate`.
    static constexpr std::int64_t currentSchemaVersion = 3;

    std::int64_t schemaVersion = currentSchemaVersion;
    SiteSettings newSiteDefaults;
    /// In the user's order; a new rule goes last.
    std::vector<SiteRule> sites;
    /// In the order they were added.
    std::vector<DayOff> daysOff;

    /// Version 3, the built-in defaults, no rules and no days off.
    static RuleSet fresh();

    // Reading.

    /// The rule for `host`, without a table: an app key by exact equality;
    /// otherwise the normalized host's covering rule with the longest host,
    /// the earliest among equals. Nothing when no rule covers it.
    std::optional<SiteRule> site(std::string_view matchingHost) const;
    /// The settings that apply to `rule`: the defaults while it follows them,
    /// else its own; for an app, a session period reads as a day and
    /// "until the browsers quit" as "until leave".
    SiteSettings effectiveSettings(const SiteRule& rule) const;
    /// The same settings as `effectiveSettings(rule)`, copied only when
    /// something needs translating for an app: the result refers either into
    /// this rule set or to `translated`, which is then overwritten. Valid
    /// while both stay unchanged.
    const SiteSettings& effectiveSettings(const SiteRule& rule, SiteSettings& translated) const;
    /// Whether a day off falls on the local date of `date` in `calendar`.
    bool isSharedDayOff(Instant date, const Calendar& calendar) const;
    /// The rule of the app `bundleID`, or nothing, also for an identifier
    /// that could never be an app key.
    std::optional<SiteRule> app(std::string_view bundleID) const;
    /// The sentence of the settings that apply to `rule`, followed by
    /// " Keep gray is on." or " Keep in color is on." for a pin, and by
    /// " Off today." unless the rule's days hold the weekday of `now` and
    /// `now` is no day off. The pin does not silence " Off today.".
    std::string summary(const SiteRule& rule, Instant now, const Calendar& calendar) const;
    /// The name under which `host` is shown: the name (or host) of the first
    /// rule whose host is exactly this text; else the text without a leading
    /// "app:"; else the text as it is.
    std::string displayName(std::string_view host) const;

    // Edits. Each checks everything before it changes anything.

    /// Appends a rule for the normalized `host` that follows the defaults.
    /// Throws `invalidHost` for text that names no host, `duplicateHost`
    /// when exactly that host is listed (a subdomain of a listed host may be
    /// added).
    SiteRule addSite(std::string_view host);
    /// Appends a rule for the app `bundleID` shown as `name` (trimmed).
    /// Throws `invalidApp` for an unusable identifier or a blank name,
    /// `duplicateApp` when the app is listed.
    SiteRule addApp(std::string_view bundleID, std::string_view name);
    /// Removes every rule with `id`; an unknown id is no error.
    void removeSite(const Uuid& id);
    /// Sets only the rule's pin. Throws `unknownSite`.
    void setPin(const Uuid& siteID, SitePin pin);
    /// Takes the rule off the defaults and gives it `settings`. Throws
    /// `unknownSite` first, then what `SiteSettings::validate` throws.
    void updateSettings(const Uuid& siteID, const SiteSettings& settings);
    /// Puts the rule back on the defaults, with a copy of them in its
    /// settings. Throws `unknownSite`.
    void resetToNewSiteDefaults(const Uuid& siteID);
    /// Appends a valid day off; a second one on the same date is allowed.
    /// Throws what `DayOff::validate` throws.
    void addDayOff(const DayOff& dayOff);
    /// Removes every day off with `id`; an unknown id is no error.
    void removeDayOff(const Uuid& id);

    // The whole document.

    /// A copy in which every rule that follows the defaults holds them in
    /// its settings, so that what is written shows what applied.
    RuleSet savingSnapshot() const;
    /// Throws the first problem of the document: an unsupported version,
    /// invalid defaults, then rule by rule an unusable app or host, a
    /// repeated host, or invalid settings that apply, then each day off.
    void validate() const;

    friend bool operator==(const RuleSet&, const RuleSet&) = default;
};

}  // namespace ashview
