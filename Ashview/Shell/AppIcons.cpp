#include "Ashview/Shell/AppIcons.h"

namespace ashview {

std::shared_ptr<const AppIcon> AppIcons::icon(const std::string& bundleID) {
    if (auto kept = icons_.find(bundleID); kept != icons_.end()) return kept->second;
    std::shared_ptr<const AppIcon> found;
    if (auto path = workspace_->urlForApplication(bundleID)) found = workspace_->iconForFile(*path);
    icons_[bundleID] = found;
    return found;
}

}  // namespace ashview
