// Simulated application services: an updater, a login item and user
// defaults whose answers a test or a scenario sets, and which count what the
// program asked of them.
#pragma once

#include "Platform/AppServices.h"
#include "Platform/Sim/SimNotificationCenter.h"

#include <map>
#include <string>
#include <variant>
#include <vector>

namespace ashview {

class SimUpdater final : public Updater {
public:
    /// Nothing: starting succeeds; else the description of the failure.
    std::optional<std::string> failure;
    int starts = 0;
    int checks = 0;

    std::optional<std::string> start() override {
        ++starts;
        return failure;
    }
    void checkForUpdates() override { ++checks; }
};

class SimLoginItemService final : public LoginItemService {
public:
    std::optional<std::string> bundleIdentifier = "app.drabwise.Drabwise";
    std::string folder = "/Applications";
    std::string home = "/Users/sim";
    bool enabled = false;
    /// When set, registering fails with this description.
    std::optional<std::string> registerFailure;
    std::optional<std::string> unregisterFailure;
    /// The system takes the registration but needs the user's approval, so
    /// the status does not become enabled.
    bool needsApproval = false;
    int registrations = 0;
    int settingsOpened = 0;

    std::optional<std::string> mainBundleIdentifier() override { return bundleIdentifier; }
    std::string applicationFolder() override { return folder; }
    std::string homeFolder() override { return home; }
    bool isEnabled() override { return enabled; }
    std::optional<std::string> registerItem() override {
        ++registrations;
        if (registerFailure) return registerFailure;
        enabled = !needsApproval;
        return std::nullopt;
    }
    std::optional<std::string> unregisterItem() override {
        if (unregisterFailure) return unregisterFailure;
        enabled = false;
        return std::nullopt;
    }
    void openSystemSettingsLoginItems() override { ++settingsOpened; }
};

class SimApplicationShell final : public Application {
public:
    struct Alert final {
        std::string message;
        std::string informativeText;
        friend bool operator==(const Alert&, const Alert&) = default;
    };
    std::vector<Alert> alerts;
    int activations = 0;
    int terminations = 0;

    /// Activation makes the program the active application, which its
    /// observers hear of.
    void activate() override {
        ++activations;
        becomeActive.post("NSApplicationDidBecomeActiveNotification");
    }
    void runModalAlert(const std::string& message, const std::string& informativeText) override {
        alerts.push_back(Alert{message, informativeText});
    }
    void terminate() override { ++terminations; }
    std::optional<std::string> infoDictionaryText(const std::string& key) override {
        auto found = info.find(key);
        if (found == info.end()) return std::nullopt;
        return found->second;
    }
    /// The main bundle's information; empty, as for a program run unbundled.
    std::map<std::string, std::string> info;
    std::unique_ptr<NotificationObservation> observeDidBecomeActive(std::function<void()> handler) override {
        return becomeActive.observe("NSApplicationDidBecomeActiveNotification", std::move(handler));
    }
    /// Where "the program became active" is posted.
    SimNotificationCenter becomeActive;
};

class SimUserDefaults final : public UserDefaults {
public:
    bool boolValue(std::string_view key) const override {
        auto found = values_.find(std::string(key));
        return found != values_.end() && std::holds_alternative<bool>(found->second) && std::get<bool>(found->second);
    }
    void setBool(std::string_view key, bool value) override { values_[std::string(key)] = value; }
    std::optional<std::string> stringValue(std::string_view key) const override {
        auto found = values_.find(std::string(key));
        if (found == values_.end() || !std::holds_alternative<std::string>(found->second)) return std::nullopt;
        return std::get<std::string>(found->second);
    }
    void setString(std::string_view key, const std::string& value) override { values_[std::string(key)] = value; }
    void remove(std::string_view key) override { values_.erase(std::string(key)); }
    bool has(std::string_view key) const { return values_.contains(std::string(key)); }

private:
    std::map<std::string, std::variant<bool, std::string>, std::less<>> values_;
};

}  // namespace ashview
