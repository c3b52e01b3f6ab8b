#include "Ashview/AppDelegate.h"

#include "Ashview/InstanceLock.h"
#include "Ashview/Log.h"
#include "Ashview/LoginItem.h"

namespace ashview {

AppDelegate::AppDelegate(Services services) : services_(services) {}

AppDelegate::~AppDelegate() = default;

void AppDelegate::applicationDidFinishLaunching() {
    RuleStore store = RuleStore::applicationSupport();
    if (!RuleStore::customDirectory()) moveLegacyDataFolder(store.directory);
    store_ = store;

    if (InstanceLock::anotherCopyIsRunning(store.directory, services_.errors)) {
        quitBecauseAnotherCopyIsRunning();
        return;
    }
    startUpdater();
    running_ = true;
    LoginItem::registerOnFirstLaunchIfInstalled(services_.loginItems, services_.defaults, services_.errors);
}

void AppDelegate::applicationWillTerminate() { running_ = false; }

void AppDelegate::checkForUpdates() { services_.updater.checkForUpdates(); }

void AppDelegate::moveLegacyDataFolder(const std::filesystem::path& to) {
    switch (RuleStore::moveLegacyFolder(RuleStore::legacyDirectory(), to)) {
        case RuleStore::FolderMove::moved:
            Log::plain(services_.errors, "moved the data folder from Ashview to Drabwise");
            break;
        case RuleStore::FolderMove::failed:
            Log::plain(services_.errors, "could not move the Ashview data folder; it was left as it is");
            break;
        case RuleStore::FolderMove::noOldFolder:
        case RuleStore::FolderMove::newFolderExists:
            break;
    }
}

void AppDelegate::startUpdater() {
    if (std::optional<std::string> failure = services_.updater.start()) {
        Log::plain(services_.errors, "not checking for updates: " + *failure);
    }
}

void AppDelegate::quitBecauseAnotherCopyIsRunning() {
    services_.application.activate();
    services_.application.runModalAlert(alreadyRunningMessage, alreadyRunningInformation);
    services_.application.terminate();
}

}  // namespace ashview
