#import <AppKit/AppKit.h>

#include "Platform/Mac/MacAdapters.h"
#include "Platform/Mac/MacConversions.h"
#include "Platform/Mac/MacObservation.h"

namespace ashview {
namespace {

// The shared NSApplication, which exists once the toolkit's application
// object has been made.
class MacApplication final : public Application {
public:
    void activate() override { [NSApp activate]; }

    void runModalAlert(const std::string& message, const std::string& informativeText) override {
        NSAlert* alert = [[NSAlert alloc] init];
        alert.messageText = mac::nsString(message);
        alert.informativeText = mac::nsString(informativeText);
        [alert runModal];
    }

    // Inside the running event loop the toolkit turns this into its own end
    // of the loop, so the program's termination handlers run first.
    void terminate() override { [NSApp terminate:nil]; }

    std::optional<std::string> infoDictionaryText(const std::string& key) override {
        return mac::optionalString([NSBundle.mainBundle objectForInfoDictionaryKey:mac::nsString(key)]);
    }

    std::unique_ptr<NotificationObservation> observeDidBecomeActive(std::function<void()> handler) override {
        return std::make_unique<mac::Observation>(NSNotificationCenter.defaultCenter,
                                                  NSApplicationDidBecomeActiveNotification,
                                                  [handler = std::move(handler)](NSNotification*) { handler(); });
    }
};

}  // namespace

std::unique_ptr<Application> makeMacApplication() { return std::make_unique<MacApplication>(); }

}  // namespace ashview
