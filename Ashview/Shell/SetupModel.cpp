#include "Ashview/Shell/SetupModel.h"

#include "AshviewCore/Reading/BrowserCatalog.h"

#include <algorithm>

namespace ashview {

using Access = AutomationPermission::Access;

std::vector<SetupModel::CatalogEntry> SetupModel::installedCatalog(Workspace& workspace) {
    std::vector<CatalogEntry> installed;
    for (const ashview::Browser& browser : BrowserCatalog::browsers())
        if (workspace.urlForApplication(browser.bundleID)) installed.push_back({browser.bundleID, browser.name});
    return installed;
}

SetupModel::SetupModel(Services services, std::vector<CatalogEntry> catalog)
    : services_(services), catalog_(std::move(catalog)), self_(std::make_shared<SetupModel*>(this)) {}

void SetupModel::refresh() {
    if (reread()) changed.emit();
}

bool SetupModel::reread() {
    bool trusted = services_.accessibility.isProcessTrusted();
    bool any = trusted != accessibilityAllowed_;
    accessibilityAllowed_ = trusted;
    if (!asking_.empty()) return any;

    std::vector<Browser> now;
    for (const CatalogEntry& entry : catalog_) {
        if (!services_.workspace.urlForApplication(entry.bundleID)) continue;
        std::int32_t status = services_.appleEvents.determinePermissionToAutomate(
            entry.bundleID, AppleEvents::anyEvent, AppleEvents::anyEvent, false);
        now.push_back(Browser{entry.bundleID, entry.name, AutomationPermission::access(status)});
    }
    if (now == browsers_) return any;
    browsers_ = std::move(now);
    return true;
}

void SetupModel::ask(const Browser& browser) {
    if (!asking_.insert(browser.id).second) return;
    changed.emit();
    std::weak_ptr<SetupModel*> weak = self_;
    AppleEvents& events = services_.appleEvents;
    services_.loop.runInBackground(
        // Blocks until the user has answered; the answer is read afterwards.
        [&events, id = browser.id] {
            events.determinePermissionToAutomate(id, AppleEvents::anyEvent, AppleEvents::anyEvent, true);
        },
        [weak, id = browser.id] {
            if (auto self = weak.lock()) (*self)->answered(id);
        });
}

void SetupModel::answered(const std::string& bundleID) {
    asking_.erase(bundleID);
    reread();
    changed.emit();
}

void SetupModel::allowAccessibility() {
    if (askedForAccessibility_) {
        openPrivacySettings("Privacy_Accessibility");
        return;
    }
    services_.accessibility.promptForTrust();
    askedForAccessibility_ = true;
    changed.emit();
}

bool SetupModel::lacksBrowserAccess() const {
    auto any = [this](auto test) { return std::any_of(browsers_.begin(), browsers_.end(), test); };
    if (any([](const Browser& browser) { return browser.access == Access::allowed; })) return false;
    return any([](const Browser& browser) {
        return browser.access == Access::notAsked || browser.access == Access::denied;
    });
}

std::vector<SetupModel::Row> SetupModel::browserRows() {
    std::vector<Row> rows;
    for (const Browser& browser : browsers_) {
        Row row{browser.name, {}, std::nullopt, {}};
        if (asking_.contains(browser.id)) {
            row.status = "Waiting for your answer…";
        } else {
            switch (browser.access) {
                case Access::allowed:
                    row.status = "Allowed";
                    break;
                case Access::notAsked:
                    row.status = "Not asked yet";
                    row.button = "Allow…";
                    row.action = [this, browser] { ask(browser); };
                    break;
                case Access::denied:
                    row.status = "Not allowed";
                    row.button = "Open System Settings";
                    row.action = [this] { openPrivacySettings("Privacy_Automation"); };
                    break;
                case Access::notRunning:
                    row.status = "Open " + browser.name + " first";
                    break;
            }
        }
        rows.push_back(std::move(row));
    }
    return rows;
}

SetupModel::Row SetupModel::accessibilityRow() {
    if (accessibilityAllowed_) return Row{{}, "Allowed", std::nullopt, {}};
    return Row{{}, "Not allowed", askedForAccessibility_ ? "Open System Settings" : "Allow…",
               [this] { allowAccessibility(); }};
}

void SetupModel::openPrivacySettings(const std::string& anchor) {
    services_.workspace.openURL(privacySettingsPrefix + anchor);
}

}  // namespace ashview
