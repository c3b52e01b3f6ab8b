// The setup window's model: for each installed browser whether this program
// may control it, whether it has Accessibility, and on each row the one
// action that can change that state. A view draws `browserRows()` and
// `accessibilityRow()` and the fixed texts below, and redraws on `changed`.
//
// Owned by the setup window for the life of the application. Main thread
// only, with one exception: the permission query with prompt of `ask` blocks
// until the user answers, so it runs off the main thread through the main
// loop and hands its end back to the main thread. That end holds the model
// weakly, so the model may go while a prompt is still open.
#pragma once

#include "Ashview/Shell/AutomationPermission.h"
#include "Ashview/Shell/Signal.h"
#include "Platform/Accessibility.h"
#include "Platform/AppleEvents.h"
#include "Platform/MainLoop.h"
#include "Platform/Workspace.h"

#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace ashview {

class SetupModel final {
public:
    /// The platform the model asks; each must outlive it.
    struct Services {
        Workspace& workspace;
        AppleEvents& appleEvents;
        Accessibility& accessibility;
        MainLoop& loop;
    };

    /// A browser of the catalog that was installed when the program started.
    struct CatalogEntry final {
        std::string bundleID;
        std::string name;
        friend bool operator==(const CatalogEntry&, const CatalogEntry&) = default;
    };

    struct Browser final {
        /// The bundle identifier.
        std::string id;
        std::string name;
        AutomationPermission::Access access = AutomationPermission::Access::notAsked;
        friend bool operator==(const Browser&, const Browser&) = default;
    };

    /// One row as the view shows it: a name (empty for the Accessibility
    /// row), the status in secondary style, and a button that runs `action`,
    /// or none. An action is valid while the model lives.
    struct Row final {
        std::string name;
        std::string status;
        std::optional<std::string> button;
        std::function<void()> action;
    };

    // The window's fixed texts, top to bottom.
    static constexpr const char* windowTitle = "Set Up Drabwise";
    static constexpr const char* introduction =
        "Drabwise turns a browser window gray while it shows a site on your list.";
    static constexpr const char* browserAccessTitle = "Browser access (required)";
    static constexpr const char* browserAccessNote =
        "Drabwise reads the address of the page in each window, never the page itself. macOS can only ask about a "
        "browser while it's open.";
    static constexpr const char* accessibilityTitle = "Accessibility (recommended)";
    static constexpr const char* accessibilityNote =
        "With it, tab changes show right away. Without it, they show within 5 seconds.";
    static constexpr const char* doneTitle = "Done";

    /// Where System Settings shows a privacy pane: this prefix and the
    /// pane's anchor.
    static constexpr const char* privacySettingsPrefix = "x-apple.systempreferences:com.apple.preference.security?";

    /// The catalog's browsers that the system finds installed now, in the
    /// catalog's order: what the model is made with at the start.
    static std::vector<CatalogEntry> installedCatalog(Workspace& workspace);

    /// Nothing is read until the first `refresh()`.
    SetupModel(Services services, std::vector<CatalogEntry> catalog);
    SetupModel(const SetupModel&) = delete;
    SetupModel& operator=(const SetupModel&) = delete;

    /// Re-reads whether Accessibility is allowed and, unless a prompt is
    /// open, which catalog browsers are still installed and each one's state,
    /// without prompting. A browser removed since leaves the list; while a
    /// prompt is open the rows stay exactly as they are.
    void refresh();
    /// Shows the system's prompt for `browser`: its row waits for the answer
    /// until the prompt ends, then every state is read again. Nothing while
    /// a prompt for it is already open.
    void ask(const Browser& browser);
    /// The first time in this run, the system's Accessibility prompt; after
    /// that, System Settings at the Accessibility pane.
    void allowAccessibility();
    /// True when no browser is allowed and at least one is not asked or
    /// denied. With no browser, or only ones not running, nothing lacks yet.
    bool lacksBrowserAccess() const;

    const std::vector<CatalogEntry>& catalog() const { return catalog_; }
    const std::vector<Browser>& browsers() const { return browsers_; }
    /// Bundle identifiers of the browsers whose prompt is open.
    const std::set<std::string>& asking() const { return asking_; }
    bool accessibilityAllowed() const { return accessibilityAllowed_; }
    /// The Accessibility prompt has been shown in this run.
    bool askedForAccessibility() const { return askedForAccessibility_; }

    /// One row per browser, in order.
    std::vector<Row> browserRows();
    Row accessibilityRow();

    /// Emitted after every change of the four states above.
    Signal changed;

private:
    /// Reads the states as `refresh()` does; true when any changed.
    bool reread();
    void answered(const std::string& bundleID);
    void openPrivacySettings(const std::string& anchor);

    Services services_;
    std::vector<CatalogEntry> catalog_;
    std::vector<Browser> browsers_;
    std::set<std::string> asking_;
    bool accessibilityAllowed_ = false;
    bool askedForAccessibility_ = false;
    // What the end of a prompt holds weakly: gone with the model.
    std::shared_ptr<SetupModel*> self_;
};

}  // namespace ashview
