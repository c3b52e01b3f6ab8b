// Linux has neither an updater nor login items for this program: each
// operation fails with a description that the callers' log lines carry.
#include "Platform/AppServices.h"

#include <cstdlib>
#include <filesystem>

namespace ashview {

namespace {

class LinuxUpdater final : public Updater {
public:
    std::optional<std::string> start() override { return "there is no updater in the Linux build"; }
    void checkForUpdates() override {}
};

class LinuxLoginItemService final : public LoginItemService {
public:
    std::optional<std::string> mainBundleIdentifier() override { return std::nullopt; }
    std::string applicationFolder() override {
        std::error_code error;
        std::filesystem::path self = std::filesystem::read_symlink("/proc/self/exe", error);
        return error ? std::string() : self.parent_path().string();
    }
    std::string homeFolder() override {
        const char* home = std::getenv("HOME");
        return home ? home : "";
    }
    bool isEnabled() override { return false; }
    std::optional<std::string> registerItem() override { return unsupported; }
    std::optional<std::string> unregisterItem() override { return unsupported; }
    void openSystemSettingsLoginItems() override {}

private:
    static constexpr const char* unsupported = "login items are not supported in the Linux build";
};

}  // namespace

std::unique_ptr<Updater> AppServices::systemUpdater() { return std::make_unique<LinuxUpdater>(); }

std::unique_ptr<LoginItemService> AppServices::systemLoginItemService() {
    return std::make_unique<LinuxLoginItemService>();
}

}  // namespace ashview
