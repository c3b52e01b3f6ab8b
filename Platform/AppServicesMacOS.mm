// The Mac's updater and login item. The updater is Sparkle's standard
// controller when the build has Sparkle (DRABWISE_SPARKLE), and otherwise one
// that says this build has none. The login item is the main application's
// `SMAppService`. Main thread only.
#import <Foundation/Foundation.h>
#import <ServiceManagement/ServiceManagement.h>
#if DRABWISE_SPARKLE
#import <Sparkle/Sparkle.h>
#endif

#include "Platform/AppServices.h"
#include "Platform/Mac/MacConversions.h"

namespace ashview {

namespace {

#if DRABWISE_SPARKLE
class SparkleUpdater final : public Updater {
public:
    SparkleUpdater()
        : controller_([[SPUStandardUpdaterController alloc] initWithStartingUpdater:NO
                                                                    updaterDelegate:nil
                                                                 userDriverDelegate:nil]) {}
    std::optional<std::string> start() override {
        NSError* error = nil;
        if ([controller_.updater startUpdater:&error]) return std::nullopt;
        return mac::describe(error);
    }
    void checkForUpdates() override { [controller_ checkForUpdates:nil]; }

private:
    SPUStandardUpdaterController* controller_;
};
#else
class AbsentUpdater final : public Updater {
public:
    std::optional<std::string> start() override { return "this build has no updater"; }
    void checkForUpdates() override {}
};
#endif

class MacLoginItemService final : public LoginItemService {
public:
    std::optional<std::string> mainBundleIdentifier() override {
        return mac::optionalString(NSBundle.mainBundle.bundleIdentifier);
    }
    std::string applicationFolder() override {
        return mac::path(NSBundle.mainBundle.bundleURL.URLByDeletingLastPathComponent).value_or("");
    }
    std::string homeFolder() override { return mac::string(NSHomeDirectory()); }
    bool isEnabled() override { return SMAppService.mainAppService.status == SMAppServiceStatusEnabled; }
    std::optional<std::string> registerItem() override {
        NSError* error = nil;
        if ([SMAppService.mainAppService registerAndReturnError:&error]) return std::nullopt;
        return mac::describe(error);
    }
    std::optional<std::string> unregisterItem() override {
        NSError* error = nil;
        if ([SMAppService.mainAppService unregisterAndReturnError:&error]) return std::nullopt;
        return mac::describe(error);
    }
    void openSystemSettingsLoginItems() override { [SMAppService openSystemSettingsLoginItems]; }
};

}  // namespace

std::unique_ptr<Updater> AppServices::systemUpdater() {
#if DRABWISE_SPARKLE
    return std::make_unique<SparkleUpdater>();
#else
    return std::make_unique<AbsentUpdater>();
#endif
}

std::unique_ptr<LoginItemService> AppServices::systemLoginItemService() {
    return std::make_unique<MacLoginItemService>();
}

}  // namespace ashview
