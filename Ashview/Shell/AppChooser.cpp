#include "Ashview/Shell/AppChooser.h"

#include "AshviewCore/Reading/BrowserCatalog.h"

namespace ashview::AppChooser {

OpenPanelSettings settings() {
    OpenPanelSettings panel;
    panel.directory = "/Applications";
    panel.applicationsOnly = true;
    panel.canChooseDirectories = false;
    panel.allowsMultipleSelection = false;
    panel.prompt = "Add";
    panel.message = "Choose an app to add to your list.";
    return panel;
}

std::optional<std::string> chooseApp(OpenPanel& panel) {
    OpenPanelResult result = panel.runModal(settings());
    if (result.response != 1) return std::nullopt;
    return result.path;
}

std::optional<std::string> refusal(std::string_view bundleID, const std::optional<std::string>& ownBundleID) {
    if (ownBundleID && bundleID == *ownBundleID) return "Drabwise can't be on its own list.";
    if (BrowserCatalog::browser(bundleID)) return "Browsers are covered site by site. Add the sites instead.";
    return std::nullopt;
}

}  // namespace ashview::AppChooser
