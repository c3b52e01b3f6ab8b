// A cache of application icons by bundle identifier. An app that cannot be
// found is remembered as such, so it is looked up only once. Main thread.
#pragma once

#include "Platform/Workspace.h"

#include <map>
#include <memory>
#include <string>

namespace ashview {

class AppIcons final {
public:
    /// `workspace` must outlive the cache.
    explicit AppIcons(Workspace& workspace) : workspace_(&workspace) {}
    AppIcons(const AppIcons&) = delete;
    AppIcons& operator=(const AppIcons&) = delete;

    /// The icon of the app the system knows as `bundleID`; null when there
    /// is none.
    std::shared_ptr<const AppIcon> icon(const std::string& bundleID);

private:
    Workspace* workspace_;
    std::map<std::string, std::shared_ptr<const AppIcon>> icons_;
};

}  // namespace ashview
