// One listed website or app and everything the user chose for it.
#pragma once

#include "AshviewCore/Rules/SitePin.h"
#include "AshviewCore/Rules/SiteSettings.h"
#include "AshviewCore/Foundation/Uuid.h"

#include <optional>
#include <string>

namespace ashview {

struct SiteRule final {
    /// Made new when the rule is added; survives every edit.
    Uuid id;
    /// A site: its normalized host, covering the host and its subdomains.
    /// An app: its key, "app:" followed by the bundle identifier.
    std::string host;
    /// The display name: apps have one, sites none.
    std::optional<std::string> name;
    /// While true, `settings` is not consulted and the rule set's
    /// `newSiteDefaults` apply instead.
    bool usesNewSiteDefaults = true;
    SiteSettings settings;
    /// The user's override; no settings edit touches it.
    SitePin pin = SitePin::followSettings;

    /// Whether this rule stands for an app.
    bool isApp() const;
    /// The app's bundle identifier; nothing for a site.
    std::optional<std::string> bundleID() const;
    /// `name` when there is one, else `host`.
    const std::string& displayName() const { return name ? *name : host; }

    friend bool operator==(const SiteRule&, const SiteRule&) = default;
};

}  // namespace ashview
