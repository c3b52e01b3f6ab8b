#include "Ashview/App/LoginItem.h"

#include "Ashview/Controller/Log.h"

#include <filesystem>

namespace ashview::LoginItem {

namespace {

std::string standardized(const std::string& path) {
    if (path.empty()) return path;
    std::string text = std::filesystem::path(path).lexically_normal().string();
    while (text.size() > 1 && text.back() == '/') text.pop_back();
    return text;
}

}  // namespace

bool isAvailable(LoginItemService& service) {
    if (!service.mainBundleIdentifier()) return false;
    std::string folder = standardized(service.applicationFolder());
    if (folder.empty()) return false;
    std::string home = service.homeFolder();
    return folder == "/Applications" ||
           (!home.empty() && folder == standardized((std::filesystem::path(home) / "Applications").string()));
}

void registerOnFirstLaunchIfInstalled(LoginItemService& service, UserDefaults& defaults, std::ostream& errors) {
    if (!isAvailable(service) || defaults.boolValue(registeredKey)) return;
    if (!service.isEnabled()) {
        if (std::optional<std::string> failure = service.registerItem()) {
            Log::plain(errors, "Drabwise could not be added to login items: " + *failure);
            return;
        }
    }
    defaults.setBool(registeredKey, true);
}

void setEnabled(bool on, LoginItemService& service, std::ostream& errors) {
    std::optional<std::string> failure = on ? service.registerItem() : service.unregisterItem();
    if (failure) Log::plain(errors, "Open at Login could not be changed: " + *failure);
    if (on != service.isEnabled()) service.openSystemSettingsLoginItems();
}

}  // namespace ashview::LoginItem
