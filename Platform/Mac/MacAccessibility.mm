#import <ApplicationServices/ApplicationServices.h>
#import <Foundation/Foundation.h>

#include "Platform/Mac/MacAdapters.h"
#include "Platform/Mac/MacConversions.h"

namespace ashview {
namespace {

// An element the system hands to a callback, valid during that call only.
class MacElement final : public AccessibilityElement {
public:
    explicit MacElement(AXUIElementRef element) : element_(element) {}
    std::optional<std::string> stringAttribute(const std::string& attribute) const override {
        CFTypeRef value = nullptr;
        AXError error = AXUIElementCopyAttributeValue(element_, (__bridge CFStringRef)mac::nsString(attribute), &value);
        if (error != kAXErrorSuccess || !value) return std::nullopt;
        return mac::optionalString(CFBridgingRelease(value));
    }

private:
    AXUIElementRef element_;
};

class MacObserver final : public AccessibilityObserver {
public:
    MacObserver(AXObserverRef observer, std::int32_t pid, Accessibility::Callback callback)
        : observer_(observer), application_(AXUIElementCreateApplication(pid)), callback_(std::move(callback)) {}
    ~MacObserver() override {
        removeFromMainRunLoop();
        if (application_) CFRelease(application_);
        CFRelease(observer_);
    }
    MacObserver(const MacObserver&) = delete;
    MacObserver& operator=(const MacObserver&) = delete;

    std::int32_t addNotification(const std::string& notification) override {
        return AXObserverAddNotification(observer_, application_, (__bridge CFStringRef)mac::nsString(notification),
                                         this);
    }
    void addToMainRunLoop() override {
        CFRunLoopAddSource(CFRunLoopGetMain(), AXObserverGetRunLoopSource(observer_), kCFRunLoopDefaultMode);
    }
    void removeFromMainRunLoop() override {
        CFRunLoopRemoveSource(CFRunLoopGetMain(), AXObserverGetRunLoopSource(observer_), kCFRunLoopDefaultMode);
    }

    // Runs on the main run loop. The handler may destroy this observer, so
    // it runs from a copy.
    static void notified(AXObserverRef, AXUIElementRef element, CFStringRef notification, void* context) {
        Accessibility::Callback callback = static_cast<MacObserver*>(context)->callback_;
        MacElement subject(element);
        callback(mac::string((__bridge NSString*)notification), subject);
    }

private:
    AXObserverRef observer_;
    AXUIElementRef application_;
    Accessibility::Callback callback_;
};

class MacAccessibility final : public Accessibility {
public:
    bool isProcessTrusted() override { return AXIsProcessTrusted(); }

    void promptForTrust() override {
        NSDictionary* options = @{(__bridge NSString*)kAXTrustedCheckOptionPrompt : @(YES)};
        AXIsProcessTrustedWithOptions((__bridge CFDictionaryRef)options);
    }

    std::unique_ptr<AccessibilityObserver> createObserver(std::int32_t pid, Callback callback) override {
        AXObserverRef observer = nullptr;
        if (AXObserverCreate(pid, &MacObserver::notified, &observer) != kAXErrorSuccess || !observer) return nullptr;
        return std::make_unique<MacObserver>(observer, pid, std::move(callback));
    }
};

}  // namespace

std::unique_ptr<Accessibility> makeMacAccessibility() { return std::make_unique<MacAccessibility>(); }

}  // namespace ashview
