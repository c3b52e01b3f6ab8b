#include "Ashview/App/LoginItem.h"

#include "Platform/Sim/SimAppServices.h"

#include <gtest/gtest.h>

#include <sstream>

namespace ashview {
namespace {

TEST(LoginItem, OnlyAnInstalledBundledCopyIsOffered) {
    const std::vector<std::pair<std::string, bool>> folders{
        {"/Applications", true},           {"/Applications/", true},
        {"/Users/sim/Applications", true}, {"/Users/sim/Downloads/../Applications", true},
        {"/Applications/Utilities", false}, {"/Users/other/Applications", false},
        {"", false},
    };
    for (const auto& [folder, available] : folders) {
        SimLoginItemService service;
        service.folder = folder;
        EXPECT_EQ(LoginItem::isAvailable(service), available) << folder;
    }
    SimLoginItemService unbundled;
    unbundled.bundleIdentifier.reset();
    EXPECT_FALSE(LoginItem::isAvailable(unbundled));
    EXPECT_FALSE(LoginItem::isAvailable(*AppServices::systemLoginItemService()));
}

TEST(LoginItem, FirstLaunchRegistersOnceAndARefusalIsTriedAgain) {
    SimLoginItemService service;
    SimUserDefaults defaults;
    std::ostringstream errors;

    service.registerFailure = "Operation not permitted";
    LoginItem::registerOnFirstLaunchIfInstalled(service, defaults, errors);
    EXPECT_EQ(errors.str(), "Drabwise could not be added to login items: Operation not permitted\n");
    EXPECT_FALSE(defaults.has(LoginItem::registeredKey));

    service.registerFailure.reset();
    LoginItem::registerOnFirstLaunchIfInstalled(service, defaults, errors);
    EXPECT_EQ(service.registrations, 2);
    EXPECT_TRUE(service.enabled);
    EXPECT_TRUE(defaults.boolValue(LoginItem::registeredKey));

    // The user turned it off later: later launches respect that.
    LoginItem::setEnabled(false, service, errors);
    LoginItem::registerOnFirstLaunchIfInstalled(service, defaults, errors);
    EXPECT_FALSE(service.enabled);
    EXPECT_EQ(service.registrations, 2);

    // Already enabled by the user before the first launch: only remembered.
    SimLoginItemService enabled;
    enabled.enabled = true;
    SimUserDefaults fresh;
    LoginItem::registerOnFirstLaunchIfInstalled(enabled, fresh, errors);
    EXPECT_EQ(enabled.registrations, 0);
    EXPECT_TRUE(fresh.boolValue(LoginItem::registeredKey));

    // A copy run from elsewhere neither registers nor remembers anything.
    SimLoginItemService download;
    download.folder = "/Users/sim/Downloads";
    SimUserDefaults untouched;
    LoginItem::registerOnFirstLaunchIfInstalled(download, untouched, errors);
    EXPECT_EQ(download.registrations, 0);
    EXPECT_FALSE(untouched.has(LoginItem::registeredKey));
}

TEST(LoginItem, AChangeTheSystemDoesNotTakeOpensItsSettings) {
    std::ostringstream errors;
    SimLoginItemService approval;
    approval.needsApproval = true;
    LoginItem::setEnabled(true, approval, errors);
    EXPECT_EQ(errors.str(), "");
    EXPECT_EQ(approval.settingsOpened, 1);

    SimLoginItemService taken;
    LoginItem::setEnabled(true, taken, errors);
    EXPECT_EQ(taken.settingsOpened, 0);

    SimLoginItemService stuck;
    stuck.enabled = true;
    stuck.unregisterFailure = "Not found";
    LoginItem::setEnabled(false, stuck, errors);
    EXPECT_EQ(errors.str(), "Open at Login could not be changed: Not found\n");
    EXPECT_EQ(stuck.settingsOpened, 1);
}

}  // namespace
}  // namespace ashview
