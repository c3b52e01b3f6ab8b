#include "Ashview/App/AppDelegate.h"

#include "Ashview/Reading/AppMonitor.h"
#include "Ashview/Reading/BrowserMonitor.h"
#include "Ashview/Controller/GrayController.h"
#include "Ashview/App/InstanceLock.h"
#include "Ashview/Controller/Log.h"
#include "Ashview/App/LoginItem.h"
#include "AshviewCore/Foundation/AtomicFile.h"
#include "AshviewCore/Tracking/TrackerSnapshotStore.h"
#include "AshviewCore/Usage/UsageStore.h"

namespace ashview {

AppDelegate::AppDelegate(Services services) : services_(services) {
    Desktop& desktop = services_.desktop;
    setupWindow_ = std::make_unique<SetupWindow>(
        SetupWindow::Services{{desktop.workspace, desktop.appleEvents, desktop.accessibility, desktop.loop},
                              services_.defaults,
                              services_.application,
                              services_.views},
        SetupModel::installedCatalog(desktop.workspace));
    aboutWindow_ = std::make_unique<AboutWindow>(services_.application, services_.views);
}

AppDelegate::~AppDelegate() = default;

void AppDelegate::applicationDidFinishLaunching() {
    RuleStore store = RuleStore::applicationSupport();
    if (!RuleStore::customDirectory()) moveLegacyDataFolder(store.directory);
    store_ = store;

    if (InstanceLock::anotherCopyIsRunning(store.directory, services_.errors)) {
        quitBecauseAnotherCopyIsRunning();
        return;
    }
    removeLeftoverTemporaryFiles(store);
    startUpdater();

    const Desktop& desktop = services_.desktop;
    browsers_ = std::make_unique<BrowserMonitor>(ReadingPlatform{
        desktop.workspace, desktop.appleEvents, desktop.accessibility, desktop.windowServer, desktop.loop});
    // The controller hands the monitor its rules when it starts.
    apps_ = std::make_unique<AppMonitor>(RuleSet::fresh(), desktop.workspace, desktop.windowServer);
    controller_ = std::make_unique<GrayController>(
        store, GrayController::Services{desktop.loop, desktop.windowServer, desktop.overlayWindows,
                                        desktop.workspaceNotifications, desktop.distributedNotifications, *browsers_,
                                        *apps_, services_.errors});
    makeShell();
    controller_->start();
    running_ = true;

    LoginItem::registerOnFirstLaunchIfInstalled(services_.loginItems, services_.defaults, services_.errors);
    // A user who once closed the setup sees it again while a browser still
    // needs an answer.
    setupWindow_->showAtLaunchIfNeeded();
}

void AppDelegate::makeShell() {
    const Desktop& desktop = services_.desktop;
    settingsWindow_ = std::make_unique<SettingsWindow>(
        SettingsModel::Services{*controller_, *apps_, services_.defaults, desktop.workspace, desktop.openPanel,
                                desktop.loop},
        services_.application, services_.views);
    StatusMenu::Actions actions{
        [this](const std::optional<SiteRule>& site) { settingsWindow_->show(site); },
        [this] { setupWindow_->show(); },
        [this] { settingsWindow_->showStats(); },
        [this] { aboutWindow_->show(); },
    };
    statusMenu_ = std::make_unique<StatusMenu>(*controller_, *apps_, services_.loginItems, desktop.loop,
                                               services_.errors, std::move(actions));
}

void AppDelegate::applicationWillTerminate() {
    if (controller_) controller_->stop();
    running_ = false;
}

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

void AppDelegate::removeLeftoverTemporaryFiles(const RuleStore& store) {
    if (!InstanceLock::holds(store.directory)) return;
    std::vector<std::string> documents;
    for (const auto& path : {store.fileURL(), store.backupURL(), TrackerSnapshotStore{store.directory}.fileURL(),
                             UsageStore{store.directory}.fileURL()}) {
        documents.push_back(path.filename().string());
    }
    AtomicFile::removeLeftovers(store.directory, documents);
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
